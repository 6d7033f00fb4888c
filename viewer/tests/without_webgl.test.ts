// The page where the browser has no WebGL, or takes it away.

import type { Page } from "playwright-core";
import { describe, expect, test } from "vitest";
import type { Vec3 } from "../src/source/trail";
import { useBrowser, withoutWebGl } from "./support/browser";
import { along, distanceTo, near, Picture, poseHash, project, type Pose } from "./support/picture";
import { expectState, inkOf, press, stateOf } from "./support/read";
import { savedBy } from "./support/saved";
import type { SceneInput } from "./support/trails";

const browser = useBrowser();

const TEAL: Vec3 = [38, 191, 166];
const DIMMED: Vec3 = [193, 232, 228]; // a quarter of it on the background
const SELECTED: Vec3 = [31, 95, 208];
const bow = (y: number) => Array.from({ length: 25 }, (_, i): Vec3 => [i - 12, y + Math.sin(i / 4), i / 3]);
const scene: SceneInput = {
  range: [1, 25],
  trails: ["high", "low"].map((name, i) => ({ name, points: bow(4 - 8 * i), colorMode: 0, lineWidth: 3, showDots: false, keyTimes: [1, 13] })),
};
const view: Pose = { view: "persp", target: [0, 0, 4], distance: 45, azimuth: 20, elevation: 15 };
const hash = `keys=0&labels=0&mode=0&select=1&${poseHash(view)}`;

async function open(): Promise<Page> {
  const page = await browser.open(scene, { hash, before: withoutWebGl });
  await page.waitForSelector(".viewport[data-drawn=still]");
  return page;
}

async function expectTrails(page: Page): Promise<void> {
  const picture = await Picture.ofViewport(page);
  for (const [i, { points }] of scene.trails.entries()) {
    const pixels = picture.pixelsOf(i === 1 ? TEAL : DIMMED);
    const line = along(points.map((p) => project(view, p, picture.width, picture.height))).slice(20); // the first spot has a ring
    expect(line.filter((p) => distanceTo(pixels, p) > 1.5)).toEqual([]);
  }
  const beside = (p: Vec3) => {
    const { x, y } = project(view, p, picture.width, picture.height);
    return near(picture.at({ x, y: y + 3 }), SELECTED, 40) || near(picture.at({ x, y: y - 3 }), SELECTED, 40);
  };
  expect([bow(4)[12], bow(-4)[12]].map(beside)).toEqual([false, true]);
}

describe("without WebGL", () => {
  test("the trails are where they belong, the selected one lit, and a line of text says how they are drawn", async () => {
    const page = await open();
    await expectTrails(page);
    expect(await page.locator(".without-webgl").textContent()).toContain("without WebGL");
  });

  test("pointing, selecting, turning and the current position work", async () => {
    const page = await open();
    const box = (await page.locator(".viewport").boundingBox())!;
    const { x, y } = project(view, bow(4)[12], Math.round(box.width), box.height);
    await page.mouse.move(box.x + x, box.y + y);
    await expectState(page, "hover", { trail: 0, sample: 12 });
    await page.mouse.click(box.x + x, box.y + y);
    await expectState(page, "selected", [0]);
    const before = await inkOf(page, ".viewport canvas:not(.overlay)");
    await press(page, "l");
    await page.waitForSelector(".viewport[data-drawn=still]");
    expect(await inkOf(page, ".viewport canvas:not(.overlay)")).not.toEqual(before);
  });

  test("the list, the timeline, the graph and the tables work", async () => {
    const page = await open();
    await page.locator(".object .name-cell").first().click();
    await expectState(page, "selected", [0]);
    await press(page, "ArrowRight");
    await expectState(page, "frame", 2);
    expect(await page.locator(".plot").getAttribute("aria-label")).toContain("high");
    expect((await savedBy(page, () => page.getByRole("button", { name: "CSV", exact: true }).click())).name).toMatch(/\.csv$/);
  });
});

test("WebGL that is taken away and does not come back is done without", async () => {
  const page = await browser.open(scene, { hash });
  await page.waitForSelector(".viewport[data-drawn=still]");
  expect(await page.locator(".without-webgl").count()).toBe(0);
  await page.evaluate(() => {
    const canvas = document.querySelector<HTMLCanvasElement>(".viewport canvas:not(.overlay)")!;
    canvas.getContext("webgl2")!.getExtension("WEBGL_lose_context")!.loseContext();
  });
  await page.waitForSelector(".without-webgl");
  await expectTrails(page);
  expect(await stateOf(page, "selected")).toEqual([1]);
  browser.problems.splice(0); // three writes that the context is lost
});
