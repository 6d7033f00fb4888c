import type { Page } from "playwright-core";
import { describe, expect, test } from "vitest";
import { chromiumTest, useBrowser } from "./support/browser";
import { expectState, inkOf, press } from "./support/read";
import { arc, figures } from "./support/scenes";
import type { SceneInput } from "./support/trails";

const browser = useBrowser();

const SMALL = { width: 640, height: 400 }; // 1280 x 800 at 200 %

const long = (): SceneInput => {
  const scene = figures();
  scene.scene = `shots/${"a_long_name_of_a_scene_".repeat(4)}.usda`;
  scene.trails = [...scene.trails, arc(`rig:${"left_upper_arm_twist_".repeat(5)}`), ...Array.from({ length: 40 }, (_, i) => arc(`o${i}`))];
  return scene;
};

interface Node {
  role: string;
  name: string;
  focusable: boolean;
}

/** What the browser tells a screen reader. */
async function spoken(page: Page): Promise<Node[]> {
  const session = await page.context().newCDPSession(page);
  const { nodes } = await session.send("Accessibility.getFullAXTree");
  return nodes.filter((node) => !node.ignored).map((node) => ({
    role: String(node.role?.value), name: String(node.name?.value ?? ""),
    focusable: node.properties?.some((p) => p.name === "focusable" && p.value.value === true) ?? false,
  }));
}

/** Boxes of what can be pressed, as far as it is not scrolled out of sight; of their labels for what labels draw. */
function targets(page: Page): Promise<{ what: string; x: number; y: number; width: number; height: number }[]> {
  return page.evaluate(() => {
    const seen = (e: Element) => {
      const { left, top, right, bottom } = e.getBoundingClientRect();
      const box = { left, top, right, bottom };
      for (let p = e.parentElement; p && p !== document.body; p = p.parentElement) {
        if (getComputedStyle(p).overflowY === "visible") continue;
        const outer = p.getBoundingClientRect();
        box.top = Math.max(box.top, outer.top);
        box.bottom = Math.min(box.bottom, outer.bottom);
      }
      return { x: box.left, y: box.top, width: box.right - box.left, height: box.bottom - box.top };
    };
    const all = [...document.querySelectorAll<HTMLElement>("button, input, select, .name-cell, .plot, .viewport")];
    return all.filter((e) => e.checkVisibility() && !e.closest("dialog"))
      .map((e) => ({
        what: e.getAttribute("aria-label") ?? e.dataset.setting ?? (e.textContent || e.className),
        ...seen(e.closest("label.check, label.segment") ?? e),
      }))
      .filter(({ height }) => height > 0);
  });
}

/** Whether the inner part of two boxes is shared. */
const overlap = (a: { x: number; y: number; width: number; height: number }, b: typeof a) =>
  a.x + 0.5 < b.x + b.width && b.x + 0.5 < a.x + a.width && a.y + 0.5 < b.y + b.height && b.y + 0.5 < a.y + a.height;

async function expectReadable(page: Page, width: number): Promise<void> {
  expect(await page.evaluate(() => document.documentElement.scrollWidth)).toBeLessThanOrEqual(width);
  const wide = await page.locator(".panel, .toolbar, .time-panel, .objects").evaluateAll((all) =>
    all.filter((e) => e.scrollWidth > e.clientWidth).map((e) => e.className));
  expect(wide).toEqual([]);
  const visible = await targets(page);
  expect(visible.length).toBeGreaterThan(20);
  const clashes = visible.flatMap((a, i) => visible.slice(i + 1).filter((b) => overlap(a, b)).map((b) => `${a.what} / ${b.what}`));
  expect(clashes).toEqual([]);
  expect(visible.filter((box) => box.x < 0 || box.x + box.width > width + 0.5).map((box) => box.what)).toEqual([]);
}

describe("a screen reader", () => {
  chromiumTest("hears a name and a role of everything that takes the focus", async () => {
    const page = await browser.open(figures());
    await press(page, "?");
    const inDialog = (await spoken(page)).filter((node) => node.focusable);
    await press(page, "Escape");
    const focusable = (await spoken(page)).filter((node) => node.focusable && node.role !== "RootWebArea");
    expect(focusable.length).toBeGreaterThan(40);
    for (const node of [...inDialog, ...focusable]) {
      expect(node.name, JSON.stringify(node)).not.toBe("");
      expect(["generic", "none", "unknown"], JSON.stringify(node)).not.toContain(node.role);
    }
  });

  chromiumTest("hears no two buttons or sliders of the same name", async () => {
    const page = await browser.open(figures());
    const names = (await spoken(page)).filter(({ role }) => ["button", "slider", "spinbutton", "combobox"].includes(role)).map(({ role, name }) => `${role} ${name}`);
    expect(names.length).toBeGreaterThan(30);
    expect(names.filter((name, i) => names.indexOf(name) !== i)).toEqual([]);
  });

  chromiumTest("finds its way by landmarks and regions", async () => {
    const page = await browser.open(figures());
    const nodes = await spoken(page);
    const names = (role: string) => nodes.filter((node) => node.role === role).map((node) => node.name);
    expect(names("banner").length).toBe(1);
    expect(names("main").length).toBe(1);
    expect(names("region").sort()).toEqual(["Also show", "Colour", "Lines and dots", "Objects", "Settings", "Spacing graph", "Time"]);
    expect(names("application")).toEqual(["Trails"]);
    expect(names("treegrid")).toEqual(["Objects"]);
    expect(names("row").length).toBe(4);
    expect(nodes.filter((node) => node.role === "heading").map((node) => node.name)[0]).toBe("walk.usda");
  });

  test("is told what a key did", async () => {
    const page = await browser.open(figures());
    await press(page, "Shift+Digit2");
    const message = page.locator(".message");
    expect(await message.getAttribute("aria-live")).toBe("polite");
    expect(await message.textContent()).toBe("Colour mode Spacing");
  });
});

describe("the keyboard", () => {
  test("reaches everything in the order in which it is read, and shows where it is", async () => {
    const page = await browser.open(figures());
    const seen: string[] = [];
    for (let i = 0; i < 60; ++i) {
      await press(page, "Tab");
      const at = await page.evaluate(() => {
        const e = document.activeElement as HTMLElement;
        if (e === document.body) return null;
        const marked = e.matches("input[type=radio]") ? e.nextElementSibling! : e;
        const style = getComputedStyle(marked);
        const area = e.closest("header, .list, main, .settings, .time-panel");
        return { area: area?.className ?? e.className, outline: style.outlineStyle !== "none" && parseFloat(style.outlineWidth) >= 2 };
      });
      if (!at) break;
      expect(at.outline, `focus ${i} in ${at.area}`).toBe(true);
      if (seen[seen.length - 1] !== at.area) seen.push(at.area);
    }
    expect(seen).toEqual(["skip", "toolbar", "panel list", "stage", "panel settings", "time-panel"]);
  });

  test("skips to the trails first", async () => {
    const page = await browser.open(figures());
    await press(page, "Tab");
    const link = page.getByRole("link", { name: "Skip to the trails" });
    await expect.poll(async () => (await link.boundingBox())!.y).toBeGreaterThanOrEqual(0);
    await press(page, "Enter");
    expect(await page.evaluate(() => document.activeElement!.id)).toBe("viewport");
    await press(page, "ArrowRight");
    await expectState(page, "frame", 2);
  });
});

describe("at 200 %", () => {
  test("nothing is cut off or covered, and the viewport has its height", async () => {
    const page = await browser.open(long(), { viewport: SMALL });
    await expectReadable(page, SMALL.width);
    expect((await page.locator(".viewport").boundingBox())!.height).toBeGreaterThanOrEqual(260);
    expect(await page.evaluate(() => document.documentElement.scrollHeight > innerHeight)).toBe(true);
    await page.getByRole("button", { name: "Objects" }).click();
    await page.getByRole("button", { name: "Settings" }).click();
    await expectReadable(page, SMALL.width);
    expect(await page.locator(".settings").isVisible()).toBe(true);
  });

  test("and at 400 % neither", async () => {
    const page = await browser.open(long(), { viewport: { width: 320, height: 512 } });
    await page.getByRole("button", { name: "Objects" }).click();
    await page.getByRole("button", { name: "Settings" }).click();
    await expectReadable(page, 320);
  });

  test("the help can be read to its end", async () => {
    const page = await browser.open(figures(), { viewport: SMALL });
    await press(page, "?");
    const body = page.locator(".help-body");
    expect(await body.evaluate((e) => e.scrollWidth <= e.clientWidth)).toBe(true);
    await body.focus();
    await press(page, "End");
    await expect.poll(() => body.evaluate((e) => e.scrollTop + e.clientHeight >= e.scrollHeight - 1)).toBe(true);
  });
});

test("what is pressed has 24 pixels or more", async () => {
  const page = await browser.open(figures());
  await page.setViewportSize({ width: 1280, height: 1600 }); // nothing is scrolled
  const small = (await targets(page)).filter(({ width, height }) => width < 24 || height < 24);
  expect(small).toEqual([]);
  const handles = await page.locator(".handle").evaluateAll((all) => all.map((e) => [e.clientWidth, e.clientHeight]));
  expect(handles).toEqual([[24, 24], [24, 24]]);
});

test("on a large page nothing is covered either", async () => {
  const page = await browser.open(long());
  await expectReadable(page, 1280);
});

/** Texts whose contrast with what is behind them is below 4.5 to 1. */
function paleTexts(page: Page): Promise<{ checked: number; pale: string[] }> {
  return page.evaluate(() => {
    const pen = document.createElement("canvas").getContext("2d", { willReadFrequently: true })!;
    const paint = (color: string, over: number[] | null) => {
      pen.clearRect(0, 0, 1, 1);
      if (over) {
        pen.fillStyle = `rgb(${over.join(",")})`;
        pen.fillRect(0, 0, 1, 1);
      }
      pen.fillStyle = color;
      pen.fillRect(0, 0, 1, 1);
      return [...pen.getImageData(0, 0, 1, 1).data];
    };
    const behind = (e: Element): number[] => {
      const above = e.parentElement ? behind(e.parentElement) : [255, 255, 255];
      return paint(getComputedStyle(e).backgroundColor, above).slice(0, 3);
    };
    const light = (c: number[]) => {
      const [r, g, b] = c.map((v) => (v / 255 <= 0.04045 ? v / 255 / 12.92 : ((v / 255 + 0.055) / 1.055) ** 2.4));
      return 0.2126 * r + 0.7152 * g + 0.0722 * b;
    };
    const pale: string[] = [];
    let checked = 0;
    const texts = document.createTreeWalker(document.getElementById("app")!, NodeFilter.SHOW_TEXT);
    while (texts.nextNode()) {
      const e = texts.currentNode.parentElement!;
      if (!texts.currentNode.textContent!.trim() || !e.checkVisibility() || e.closest(".hidden, .viewport")) continue;
      ++checked;
      const back = behind(e);
      const [a, b] = [light(paint(getComputedStyle(e).color, back).slice(0, 3)), light(back)].sort((x, y) => y - x);
      if ((a + 0.05) / (b + 0.05) < 4.5) pale.push(`${texts.currentNode.textContent}: ${((a + 0.05) / (b + 0.05)).toFixed(2)}`);
    }
    return { checked, pale };
  });
}

describe("contrast of text is at least 4.5 to 1", () => {
  for (const colorScheme of ["light", "dark"] as const)
    test(colorScheme, async () => {
      const page = await browser.open(figures(), { colorScheme, hash: "select=0-1&hide=2&solo=0&relative=1&palette=safe&mode=1" });
      const reader = await paleTexts(page);
      expect(reader.checked).toBeGreaterThan(60);
      expect(reader.pale).toEqual([]);
      await press(page, "?");
      expect((await paleTexts(page)).pale).toEqual([]);
    });
});

describe("what the reader prefers", () => {
  chromiumTest("less motion: nothing fades", async () => {
    const page = await browser.open(figures(), { reducedMotion: "reduce" });
    const times = () => page.evaluate(() => [...document.querySelectorAll("*")].filter((e) => getComputedStyle(e).transitionDuration !== "0s").length);
    expect(await times()).toBe(0);
    await page.emulateMedia({ reducedMotion: "no-preference" });
    expect(await times()).toBeGreaterThan(0);
  });

  chromiumTest("colours of the system: what is chosen still differs, and the canvases have them too", async () => {
    const page = await browser.open(figures(), { forcedColors: "active", hash: "select=0" });
    const background = (name: string) => page.locator(".object").filter({ hasText: name }).evaluate((e) => getComputedStyle(e).backgroundColor);
    expect(await background("hand_L")).not.toBe(await background("hand_R"));
    const grey = await page.evaluate(() => {
      const probe = document.createElement("div");
      probe.style.color = "GrayText";
      document.body.append(probe);
      return getComputedStyle(probe).color.match(/\d+/g)!.slice(0, 3).join(",");
    });
    await expect.poll(async () => (await inkOf(page, ".timeline-layer"))[grey] ?? 0).toBeGreaterThan(100);
  });
});
