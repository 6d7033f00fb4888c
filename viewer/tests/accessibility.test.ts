import type { Page } from "playwright-core";
import { describe, expect, test } from "vitest";
import { chromiumTest, useBrowser } from "./support/browser";
import { expectState, inkOf, press } from "./support/read";
import { arc, figures, tree } from "./support/scenes";
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
    const sheet = [...document.querySelectorAll<HTMLElement>(".panel")].find((e) => !e.hidden && getComputedStyle(e).position === "fixed");
    return all.filter((e) => e.checkVisibility() && !e.closest("dialog") && (!sheet || sheet.contains(e)))
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
  expect(visible.length).toBeGreaterThan(7);
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
    expect(names("region").sort()).toEqual(["Also show", "Colour", "Keyboard", "Lines and dots", "Objects", "Onion skins", "Settings", "Spacing graph", "Time", "Window in time"]);
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
    for (let i = 0; i < 70; ++i) {
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
    expect(seen).toEqual(["skip", "toolbar", "panel list", "stage", "time-panel", "panel settings"]);
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

/** Opens a panel where it is a sheet; what it covers is not looked at. */
async function expectReadableSheet(page: Page, name: string, width: number): Promise<void> {
  await page.getByRole("button", { name, exact: true }).click();
  const sheet = page.getByRole("region", { name, exact: true });
  const { x, y, width: wide, height } = (await sheet.boundingBox())!;
  const size = page.viewportSize()!;
  expect([x >= 0, y >= 0, x + wide <= size.width, y + height <= size.height]).toEqual([true, true, true, true]);
  await expectReadable(page, width);
  await page.getByRole("button", { name: `Close ${name}` }).click();
  expect(await sheet.count()).toBe(0);
}

const SCREENS = [["200 %", SMALL, 2], ["a phone", { width: 390, height: 844 }, 3], ["400 %", { width: 320, height: 512 }, 4]] as const;

describe("on a small screen", () => {
  for (const [name, viewport, deviceScaleFactor] of SCREENS)
    test(`nothing is cut off or covered, and nearly half is the viewport: ${name}`, async () => {
      const page = await browser.open(long(), { viewport, deviceScaleFactor });
      await expectReadable(page, viewport.width);
      const stage = (await page.locator(".viewport").boundingBox())!;
      expect(Math.min(stage.y + stage.height, viewport.height) - stage.y).toBeGreaterThanOrEqual(0.45 * viewport.height - 0.5);
      for (const panel of ["Objects", "Settings"]) await expectReadableSheet(page, panel, viewport.width);
    });

  test("one sheet at a time is open", async () => {
    const page = await browser.open(figures(), { viewport: { width: 390, height: 844 } });
    for (const panel of ["Objects", "Settings", "Objects"]) {
      await page.getByRole("button", { name: panel, exact: true }).click();
      expect(await page.locator(".panel:visible").evaluateAll((all) => all.map((e) => e.getAttribute("aria-label")))).toEqual([panel]);
    }
  });

  test("a sheet takes the focus and gives it back, by button and by Escape", async () => {
    const page = await browser.open(figures(), { viewport: { width: 390, height: 844 } });
    const opener = page.getByRole("button", { name: "Objects", exact: true });
    const focused = () => page.evaluate(() => document.activeElement!.getAttribute("aria-label") ?? document.activeElement!.textContent);
    await opener.click();
    expect(await focused()).toBe("Close Objects");
    await press(page, "Tab");
    await page.keyboard.type("hand");
    await press(page, "Escape"); // empties the search
    await expectState(page, "search", "");
    expect(await page.locator("#objects").isVisible()).toBe(true);
    await press(page, "Escape");
    expect(await page.locator("#objects").isVisible()).toBe(false);
    expect(await focused()).toBe("Objects");
    await press(page, "Enter", "Enter");
    expect(await page.locator("#objects").isVisible()).toBe(false);
  });

  test("a sheet goes away when the focus moves to what it covers", async () => {
    const page = await browser.open(figures(), { viewport: { width: 390, height: 844 }, hash: "settings=1" });
    expect(await page.locator("#settings").isVisible()).toBe(true);
    await page.locator(".viewport").focus();
    expect(await page.locator("#settings").isVisible()).toBe(true);
    await page.getByRole("slider", { name: "Current frame" }).focus();
    expect(await page.locator("#settings").isVisible()).toBe(false);
  });

  test("the help can be read to its end", async () => {
    const page = await browser.open(figures(), { viewport: SMALL });
    await press(page, "?");
    const body = page.locator(".help .reading-body");
    expect(await body.evaluate((e) => e.scrollWidth <= e.clientWidth)).toBe(true);
    await body.focus();
    await press(page, "End");
    await expect.poll(() => body.evaluate((e) => e.scrollTop + e.clientHeight >= e.scrollHeight - 1)).toBe(true);
  });
});

test("what is pressed has 24 pixels or more", async () => {
  const page = await browser.open(tree(), { hash: "moving=0" });
  await page.setViewportSize({ width: 1280, height: 1600 }); // nothing is scrolled
  const small = (await targets(page)).filter(({ width, height }) => width < 24 || height < 24);
  expect(small).toEqual([]);
  const triangles = await page.locator("[aria-expanded] > .name-cell > .twisty").evaluateAll((all) => all.map((e) => [e.clientWidth, e.clientHeight]));
  expect(triangles.length).toBeGreaterThan(1);
  expect(triangles.flat().filter((side) => side < 24)).toEqual([]);
  await page.setViewportSize({ width: 390, height: 2400 });
  expect((await targets(page)).filter(({ width, height }) => width < 24 || height < 24)).toEqual([]);
  const handles = await page.locator(".handle").evaluateAll((all) => all.map((e) => [e.clientWidth, e.clientHeight]));
  expect(handles).toEqual([[24, 24], [24, 24]]);
});

describe("keys that type a character", () => {
  const keys = (page: Page) => page.getByRole("checkbox", { name: "Shortcuts of one letter, digit or sign" });

  test("can be switched off; Space, arrows and keys with Ctrl still work, and so do the buttons", async () => {
    const page = await browser.open(figures(), { hash: "select=0&mode=0" });
    await keys(page).uncheck();
    await page.locator(".viewport").focus();
    await press(page, "c", "Shift+Digit4", "h", "Shift+P", "?", ".", "1", "t", "Shift+B", "Shift+O", "Shift+W");
    for (const [key, value] of [["colorBy", "mode"], ["mode", 0], ["hidden", []], ["frame", 1], ["timeSpan", null], ["showBones", true], ["onion", "off"], ["window", false]] as const)
      await expectState(page, key, value);
    expect(await page.getByRole("dialog").count()).toBe(0);
    await press(page, "ArrowRight", "Shift+ArrowRight");
    await expectState(page, "frame", 12);
    await press(page, "End");
    await expectState(page, "frame", 24);
    await press(page, "Home", " ");
    await expectState(page, "playing", true);
    await press(page, " ");
    await page.locator(".name-cell").first().focus();
    await press(page, "Control+a");
    await expectState(page, "selected", [0, 1, 2, 3]);
    await page.getByRole("button", { name: "Help" }).click();
    expect(await page.getByRole("dialog").isVisible()).toBe(true);
  });

  test("stay off when a link is opened, and are on again with the settings reset", async () => {
    const page = await browser.open(figures(), { hash: "letters=0" });
    expect(await keys(page).isChecked()).toBe(false);
    await page.getByRole("button", { name: "Reset settings" }).click();
    expect(await keys(page).isChecked()).toBe(true);
    await press(page, "c", "Shift+B", "Shift+O", "Shift+W");
    for (const [key, value] of [["colorBy", "object"], ["showBones", false], ["onion", "frames"], ["window", true]] as const) await expectState(page, key, value);
  });
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
