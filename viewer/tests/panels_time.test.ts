import type { Page } from "playwright-core";
import { describe, expect, test } from "vitest";
import { frameScale } from "../src/panels/frame_scale";
import { chromiumTest, useBrowser } from "./support/browser";
import { IN_FIREFOX } from "./support/launch";
import { expectState, inkOf, press, stateOf } from "./support/read";
import { arc, figures } from "./support/scenes";

const browser = useBrowser();

/** Where a frame is in the timeline and in the graph, which are as wide as the page. */
const frameX = (frame: number, width = 1280) => frameScale(1, 24, width).x(frame);

const track = (page: Page) => page.getByRole("slider", { name: "Current frame" });

async function drag(page: Page, selector: string, from: readonly [number, number], to: readonly [number, number]): Promise<void> {
  const box = (await page.locator(selector).boundingBox())!;
  await page.mouse.move(box.x + from[0], box.y + from[1]);
  await page.mouse.down();
  await page.mouse.move(box.x + to[0], box.y + to[1], { steps: 4 });
  await page.mouse.up();
}

/** Firefox counts no double click when its protocol presses twice (it does when a mouse does): there the event is sent by hand. */
async function doubleClick(page: Page, selector: string, position: { x: number; y: number }): Promise<void> {
  await page.locator(selector).dblclick({ position });
  if (IN_FIREFOX) await page.locator(selector).dispatchEvent("dblclick");
}

describe("the transport", () => {
  test("goes to frames and keys", async () => {
    const page = await browser.open(figures(), { hash: "select=0" });
    const click = (name: string) => page.getByRole("button", { name, exact: true }).click();
    await click("Next frame");
    await expectState(page, "frame", 2);
    await click("Next key");
    await expectState(page, "frame", 12);
    await click("Last frame");
    await expectState(page, "frame", 24);
    await click("Previous frame");
    await click("Previous key");
    await expectState(page, "frame", 12);
    await click("First frame");
    await expectState(page, "frame", 1);
    await click("Previous key");
    expect(await page.locator(".message").textContent()).toBe("No earlier key");
  });

  test("plays and stops, at the scene's rate", async () => {
    const page = await browser.open({ ...figures(), fps: 50 });
    await page.getByRole("button", { name: "Play" }).click();
    await expectState(page, "playing", true);
    await expect.poll(() => stateOf(page, "frame")).not.toBe(1);
    await page.getByRole("button", { name: "Stop" }).click();
    await expectState(page, "playing", false);
    expect(await page.getByRole("button", { name: "Play" }).count()).toBe(1);
    expect(await page.locator(".rate").textContent()).toBe("50 fps");
  });

  test("takes frames that are typed, within the range", async () => {
    const page = await browser.open(figures());
    const field = page.getByRole("spinbutton", { name: "Frame" });
    await field.fill("7.5");
    await field.press("Enter");
    await expectState(page, "frame", 7.5);
    await field.fill("99");
    await field.press("Enter");
    await expectState(page, "frame", 24);
    expect(await field.inputValue()).toBe("24");
    await field.press("ArrowDown");
    await expectState(page, "frame", 23);
    await field.fill("");
    await field.press("Enter");
    expect(await field.inputValue()).toBe("23");
    await track(page).focus();
    await press(page, "ArrowLeft");
    expect(await field.inputValue()).toBe("22");
  });

  test("plays a range that is typed, and the whole one again", async () => {
    const page = await browser.open(figures());
    const type = async (name: string, text: string) => {
      await page.getByRole("spinbutton", { name, exact: true }).fill(text);
      await page.keyboard.press("Enter");
    };
    await type("Range", "5");
    await type("to", "9");
    await expectState(page, "playFirst", 5);
    await expectState(page, "playLast", 9);
    await type("to", "2"); // not before its start
    await expectState(page, "playLast", 5);
    await page.getByRole("button", { name: "Whole" }).click();
    await expectState(page, "playFirst", 1);
    await expectState(page, "playLast", 24);
  });
});

describe("the timeline", () => {
  test("says where it is", async () => {
    const page = await browser.open(figures());
    const said = () => track(page).evaluate((e) => ["min", "max", "now", "text"].map((name) => e.getAttribute(`aria-value${name}`)));
    expect(await said()).toEqual(["1", "24", "1", "Frame 1, a key"]);
    await press(page, "ArrowRight");
    expect(await said()).toEqual(["1", "24", "2", "Frame 2"]);
  });

  test("is scrubbed with the pointer, also beyond its ends", async () => {
    const page = await browser.open(figures(), { hash: "select=0" });
    await drag(page, ".track", [frameX(10), 40], [frameX(17) + 2, 40]);
    await expectState(page, "frame", 17);
    await drag(page, ".track", [frameX(10), 40], [1279, 90]);
    await expectState(page, "frame", 24);
  });

  test("is stepped with its own keys", async () => {
    const page = await browser.open(figures(), { hash: "select=0" });
    await track(page).focus();
    await press(page, "ArrowRight", "ArrowUp", "PageUp");
    await expectState(page, "frame", 13);
    await press(page, "ArrowLeft", "Shift+ArrowLeft");
    await expectState(page, "frame", 1);
    await press(page, "End");
    await expectState(page, "frame", 24);
    await press(page, "PageDown", "Shift+ArrowLeft");
    await expectState(page, "frame", 12);
    await press(page, "Home", "n", "ArrowDown");
    await expectState(page, "frame", 1);
  });

  test("has ends of the range that are dragged, never past each other", async () => {
    const page = await browser.open(figures());
    await drag(page, ".handle.start", [18, 12], [18 + frameX(6) - frameX(1), 12]);
    await expectState(page, "playFirst", 6);
    const box = (await page.locator(".handle.end").boundingBox())!;
    await drag(page, ".handle.end", [6, 12], [6 + frameX(2) - frameX(24), 12]);
    await expectState(page, "playLast", 6);
    expect((await page.locator(".handle.end").boundingBox())!.x).toBeCloseTo(box.x + frameX(6) - frameX(24), 0);
    await expectState(page, "frame", 1); // the ends scrub nothing
  });

  test("has ends of the range with keys of their own", async () => {
    const page = await browser.open(figures());
    await page.getByRole("slider", { name: "End of the range" }).focus();
    await press(page, "ArrowLeft", "ArrowLeft", "PageDown");
    await expectState(page, "playLast", 12);
    await page.getByRole("slider", { name: "Start of the range" }).focus();
    await press(page, "PageUp", "PageUp");
    await expectState(page, "playFirst", 12);
    await press(page, "Home");
    await expectState(page, "playFirst", 1);
    expect(await page.getByRole("slider", { name: "End of the range" }).getAttribute("aria-valuenow")).toBe("12");
  });

  test("shows the current frame and the selection's keys in their places", async () => {
    const page = await browser.open(figures(), { hash: "frame=6&select=0" });
    const columns = (color: string) =>
      page.evaluate((wanted) => {
        const probe = document.createElement("canvas").getContext("2d")!;
        probe.fillStyle = getComputedStyle(document.documentElement).getPropertyValue(wanted);
        probe.fillRect(0, 0, 1, 1);
        const [r, g, b] = probe.getImageData(0, 0, 1, 1).data;
        const canvas = document.querySelector<HTMLCanvasElement>(".timeline-layer")!;
        const { data, width } = canvas.getContext("2d")!.getImageData(0, 31, canvas.width, 1); // the row of the keys
        return Array.from({ length: width }, (_, x) => x).filter((x) => data[4 * x] === r && data[4 * x + 1] === g && data[4 * x + 2] === b);
      }, color);
    const near = (xs: number[], frame: number) => xs.filter((x) => Math.abs(x - frameX(frame)) <= 5).length;
    await expect.poll(async () => (await columns("--key")).length).toBeGreaterThan(10);
    const keys = await columns("--key");
    expect([1, 12, 24].map((frame) => near(keys, frame) > 4)).toEqual([true, true, true]);
    expect(keys.length).toBe(near(keys, 1) + near(keys, 12) + near(keys, 24));
    const now = await columns("--accent");
    expect(now.length).toBe(2);
    expect(near(now, 6)).toBe(2);
  });
});

describe("the time that is seen", () => {
  const span = async (page: Page) => (await stateOf(page, "timeSpan")) as [number, number] | null;
  const hoverAt = async (page: Page, selector: string, frame: number) => {
    const box = (await page.locator(selector).boundingBox())!;
    await page.mouse.move(box.x + frameX(frame), box.y + box.height - 8);
  };
  const spanX = (frame: number, [first, last]: [number, number]) => frameScale(first, last, 1280).x(frame);

  for (const selector of [".track", ".plot"])
    test(`is zoomed by the wheel over ${selector}, at the pointer, and is whole again by double click`, async () => {
      const page = await browser.open(figures(), { hash: "select=0" });
      await hoverAt(page, selector, 8);
      await page.mouse.wheel(0, -400);
      await expect.poll(() => span(page)).not.toBeNull();
      const seen = (await span(page))!;
      expect(seen[1] - seen[0]).toBeCloseTo(23 * Math.exp(-0.8), 6);
      expect(Math.abs(spanX(8, seen) - frameX(8))).toBeLessThan(1); // the pointer is on whole pixels
      for (const place of [".track", ".plot"]) { // both show the same
        const box = (await page.locator(place).boundingBox())!;
        await page.mouse.click(box.x + spanX(10, seen), box.y + box.height - 8);
        await expectState(page, "frame", 10);
        await page.mouse.click(box.x + spanX(7, seen), box.y + box.height - 8);
        await expectState(page, "frame", 7);
      }
      await doubleClick(page, selector, { x: 500, y: 40 });
      expect(await span(page)).toBeNull();
    });

  test("moves with Shift and the wheel, and with the middle button", async () => {
    const page = await browser.open(figures(), { hash: "time=5,11" });
    await hoverAt(page, ".plot", 12);
    await page.keyboard.down("Shift");
    await page.mouse.wheel(0, (1280 - 64 - 32) / 4); // a quarter of what is seen
    await expect.poll(async () => (await span(page))![0]).toBeCloseTo(6.5, 6);
    await page.keyboard.up("Shift");
    const { x, y } = (await page.locator(".track").boundingBox())!;
    await page.mouse.move(x + 600, y + 40);
    await page.mouse.down({ button: "middle" });
    await page.mouse.move(x + 600 + (1280 - 64 - 32) / 8, y + 40);
    await page.mouse.up({ button: "middle" });
    expect((await span(page))!.map((frame) => Number(frame.toFixed(6)))).toEqual([5.75, 11.75]);
    await expectState(page, "frame", 1); // nothing of this is a step in time
  });

  test("changes by buttons and by keys", async () => {
    const page = await browser.open(figures(), { hash: "frame=1" });
    const whole = page.getByRole("button", { name: "Show all of the time" });
    expect(await whole.isDisabled()).toBe(true);
    await page.getByRole("button", { name: "Show less time, larger" }).click();
    expect((await span(page))![1]).toBeCloseTo(1 + 23 / 1.5, 9);
    await press(page, "t");
    expect((await span(page))![1]).toBeCloseTo(1 + 23 / 2.25, 9);
    await press(page, "b");
    expect((await span(page))![0]).toBeCloseTo(1 + 23 / 4.5, 9);
    await press(page, "v", "Shift+T");
    expect((await span(page))![1]).toBeCloseTo(1 + 23 / 1.5, 9);
    await whole.click();
    expect(await span(page)).toBeNull();
  });

  chromiumTest("is pinched with two fingers", async () => {
    const page = await browser.open(figures());
    const { x, y } = (await page.locator(".plot").boundingBox())!;
    const frameAt500 = Math.round(frameScale(1, 24, 1280).frame(500));
    const session = await page.context().newCDPSession(page);
    const touch = (type: "touchStart" | "touchMove" | "touchEnd", ...places: number[]) =>
      session.send("Input.dispatchTouchEvent", { type, touchPoints: places.map((at, id) => ({ x: x + at, y: y + 40, id })) });
    await touch("touchStart", 500, 700);
    await touch("touchMove", 400, 800);
    await touch("touchEnd");
    await expect.poll(() => span(page)).not.toBeNull();
    const [first, last] = (await span(page))!;
    expect(last - first).toBeCloseTo(11.5, 6);
    expect(spanX(frameScale(1, 24, 1280).frame(600), [first, last])).toBeCloseTo(600, 4);
    await expectState(page, "frame", frameAt500); // that of the first finger
  });

  test("follows the current frame", async () => {
    const page = await browser.open(figures(), { hash: "time=1,8&frame=8" });
    await press(page, "ArrowRight");
    const seen = (await span(page))!;
    expect(seen[0]).toBeGreaterThan(8);
    expect(seen[0]).toBeLessThanOrEqual(9);
    await page.evaluate(() => window.vantorelixViewer.store.set({ playing: true }));
    await expect.poll(async () => (await span(page))![1], { timeout: 5000 }).toBe(24);
    await page.evaluate(() => window.vantorelixViewer.store.set({ playing: false }));
  });

  test("hides the ends of the range that it does not have, and is kept in the address", async () => {
    const page = await browser.open(figures(), { hash: "time=5,11" });
    expect(await page.locator(".handle:visible").count()).toBe(0);
    await press(page, "w");
    expect(await page.locator(".handle:visible").count()).toBe(2);
    await press(page, "t");
    await expect.poll(() => page.evaluate(() => location.hash)).toMatch(/time=1%2C16\.33/);
    const wrong = await browser.open(figures(), { hash: "time=9,3" });
    expect(await span(wrong)).toBeNull();
  });
});

describe("the choice of graph", () => {
  const chosen = (page: Page) => page.getByLabel("Graph", { exact: true });

  test("is of seven, each with its unit, and is kept in the address", async () => {
    const page = await browser.open(figures(), { hash: "select=2" });
    expect(await chosen(page).locator("option").allTextContents()).toEqual([
      "Spacing", "Speed", "Acceleration", "Jerk", "Curvature", "Pops", "Sliding"]);
    expect(await page.locator(".graph-unit").textContent()).toBe("cm per frame");
    await chosen(page).selectOption("Speed");
    expect(await page.locator(".graph-unit").textContent()).toBe("cm per second");
    expect(await page.getByRole("region", { name: "Speed graph" }).count()).toBe(1);
    expect(await page.locator(".plot").getAttribute("aria-label")).toContain("Foot.L: fastest 24 cm per second from frame");
    await expect.poll(() => page.evaluate(() => location.hash)).toContain("graph=speed");
    await press(page, "Shift+G");
    expect(await page.getByRole("region", { name: "Acceleration graph" }).count()).toBe(1);
    expect(await page.locator(".message").textContent()).toBe("Graph of acceleration");
  });

  test("comes from the address", async () => {
    const page = await browser.open(figures(), { hash: "select=3&graph=acceleration" });
    expect(await chosen(page).inputValue()).toBe("2");
    await page.evaluate(() => window.vantorelixViewer.store.set({ hover: { trail: 3, sample: 10 } }));
    expect(await page.locator(".graph-value").textContent()).toBe("Frame 11: 57.6 cm per second squared"); // 0.1 * 24 * 24
  });

  test("draws the values of samples around them", async () => {
    const page = await browser.open(figures(), { hash: "select=3&graph=acceleration" });
    const drawn = (frame: number) =>
      page.evaluate((x) => {
        const canvas = document.querySelector<HTMLCanvasElement>(".curves")!;
        const { data } = canvas.getContext("2d")!.getImageData(Math.round(x), 0, 1, 100);
        return data.some((value, i) => i % 4 === 0 && Math.abs(value - data[i + 2]) > 60); // red or blue, and not the grey of the axis
      }, frameX(frame));
    await expect.poll(() => drawn(12)).toBe(true);
    expect(await drawn(4.3)).toBe(true);
    expect(await drawn(2.7)).toBe(false);
  });
});

describe("the measures", () => {
  const measured = () => {
    const scene = figures();
    const measures = [{ name: "top_speed", unit: "cm per second" }, { name: "top_speed_frame", unit: "frames" }, { name: "sparc", unit: "1" }];
    return { ...scene, measures, trails: scene.trails.map((trail, i) => ({ ...trail, measures: [i + 0.5, 8 + i, i === 2 ? null : -2.25] })) };
  };
  const open = (page: Page) => page.getByRole("button", { name: "Measures" }).click();
  const dialog = (page: Page) => page.getByRole("dialog", { name: "Measures" });

  test("of the selected objects stand side by side", async () => {
    const page = await browser.open(measured(), { hash: "select=1.2" });
    await open(page);
    expect(await dialog(page).getByRole("row").allTextContents()).toEqual([
      "Measurehand_RFoot.LUnit", "Top speed1.5 frame 92.5 frame 10cm per second", "SPARC-2.25–"]);
  });

  test("lead to the frames where they are so", async () => {
    const page = await browser.open(measured(), { hash: "select=1" });
    await open(page);
    await dialog(page).getByRole("button", { name: "frame 9" }).click();
    await expectState(page, "frame", 9);
    expect(await dialog(page).count()).toBe(0);
  });

  test("are of six objects at most, and of some", async () => {
    const page = await browser.open({ ...figures(), trails: Array.from({ length: 8 }, (_, i) => arc(`o${i}`)) }, { hash: "select=0-7" });
    await open(page);
    expect(await dialog(page).getByRole("columnheader").count()).toBe(8);
    expect(await dialog(page).textContent()).toContain("The first 6 of 8 selected objects.");
    await page.keyboard.press("Escape");
    await page.getByRole("button", { name: "None" }).click();
    await open(page);
    expect(await dialog(page).textContent()).toContain("Select objects to see their measures.");
  });
});

describe("the spacing graph", () => {
  test("says in words what it draws", async () => {
    const page = await browser.open(figures(), { hash: "select=2" });
    const plot = page.locator(".plot");
    expect(await plot.getAttribute("role")).toBe("img");
    expect(await plot.getAttribute("aria-label")).toContain("Foot.L: fastest 1 cm per frame from frame");
    await press(page, "Shift+H");
    await page.getByRole("button", { name: "None" }).click();
    expect(await plot.getAttribute("aria-label")).toContain("nothing is selected");
    expect(await page.getByText("Select objects to see their spacing.").isVisible()).toBe(true);
  });

  test("draws one trail in its spacing colours, several in the objects'", async () => {
    const colors = new Array(24).fill([255, 0, 255]);
    const page = await browser.open({ ...figures(), trails: ["a", "b", "c"].map((name) => arc(name, { colors })) }, { hash: "select=0" });
    await expect.poll(async () => (await inkOf(page, ".curves"))["255,0,255"] ?? 0).toBeGreaterThan(1000);
    await page.getByRole("button", { name: "All", exact: true }).click();
    await expect.poll(async () => (await inkOf(page, ".curves"))["255,0,255"] ?? 0).toBe(0);
    await expect.poll(async () => (await inkOf(page, ".curves"))["0,158,115"] ?? 0).toBeGreaterThan(200); // of the third
    expect(await page.locator(".graph-names li").allTextContents()).toEqual(["a", "b", "c"]);
  });

  test("has the height of the spacing", async () => {
    const points = Array.from({ length: 24 }, (_, i) => [i < 12 ? i : 11 + 4 * (i - 11), 0, 0] as const); // 1, then 4 a frame
    const page = await browser.open({ ...figures(), trails: [{ name: "a", points, colors: new Array(24).fill([255, 0, 255]) }] });
    const height = (frame: number) =>
      page.evaluate((x) => {
        const canvas = document.querySelector<HTMLCanvasElement>(".curves")!;
        const { data } = canvas.getContext("2d")!.getImageData(Math.round(x), 0, 1, canvas.height);
        const drawn = Array.from({ length: canvas.height }, (_, y) => y).filter((y) => data[4 * y] > 200 && data[4 * y + 1] < 200);
        return drawn.length;
      }, frameX(frame));
    await expect.poll(() => height(15.5)).toBeGreaterThan(80);
    expect((await height(15.5)) / (await height(5.5))).toBeGreaterThan(3.4);
    expect((await height(15.5)) / (await height(5.5))).toBeLessThan(4.6);
  });

  test("points at the sample under the pointer, and goes to its frame by click", async () => {
    const page = await browser.open(figures(), { hash: "select=0.3" });
    const plot = (await page.locator(".plot").boundingBox())!;
    await page.mouse.move(plot.x + frameX(20) + 3, plot.y + 14); // where only the fast one is
    await expectState(page, "hover", { trail: 3, sample: 19 });
    expect(await page.locator(".graph-value").textContent()).toBe("head, frame 20: 1.9 cm per frame");
    await page.mouse.move(plot.x + frameX(20) + 3, plot.y + 70);
    await expectState(page, "hover", { trail: 0, sample: 19 });
    await page.mouse.click(plot.x + frameX(8), plot.y + 60);
    await expectState(page, "frame", 8);
    await expectState(page, "hover", { trail: 0, sample: 7 });
    await page.mouse.move(plot.x + 300, plot.y - 10); // to the names above it
    await expectState(page, "hover", null);
  });

  test("shows the sample that the viewport points at", async () => {
    const page = await browser.open(figures(), { hash: "select=3" });
    const ink = async () => (await inkOf(page, ".moving"))["204,121,167"] ?? 0; // in the object's colour
    expect(await ink()).toBe(0);
    await page.evaluate(() => window.vantorelixViewer.store.set({ hover: { trail: 3, sample: 10 } }));
    await expect.poll(ink).toBeGreaterThan(20);
    expect(await page.locator(".graph-value").textContent()).toBe("Frame 11: 1 cm per frame");
  });

  test("measures relative to the chosen object", async () => {
    const page = await browser.open(figures(), { hash: "select=2" });
    await page.evaluate(() => window.vantorelixViewer.store.set({ relativeTo: 2 }));
    expect(await page.locator(".plot").getAttribute("aria-label")).toContain("fastest 0 cm per frame");
  });

  test("draws fifty trails at most, and says so", async () => {
    const page = await browser.open({ ...figures(), trails: Array.from({ length: 60 }, (_, i) => arc(`o${i}`)) });
    await page.getByRole("button", { name: "All", exact: true }).click();
    expect(await page.locator(".graph-names li").last().textContent()).toBe("and 54 more; the first 50 are drawn");
  });
});
