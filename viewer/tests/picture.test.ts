// A picture that is saved: its size, and what stands around the viewport's own picture.

import type { Page } from "playwright-core";
import { PNG } from "pngjs";
import { describe, expect, test } from "vitest";
import type { Vec3 } from "../src/source/trail";
import { useBrowser } from "./support/browser";
import { near, poseHash, project, settle, type Pose } from "./support/picture";
import { press } from "./support/read";
import { savedBy } from "./support/saved";
import type { SceneInput } from "./support/trails";

const browser = useBrowser();

const TEAL: Vec3 = [38, 191, 166];
const points = Array.from({ length: 25 }, (_, i): Vec3 => [i - 12, 3 * Math.sin(i / 4), 0]);
const scene: SceneInput = { scene: "shots/walk.usda", range: [1, 25], trails: [{ name: "a", points, colorMode: 0, lineWidth: 3, showDots: false }] };
const view: Pose = { view: "front", target: [0, 0, 0], distance: 40, azimuth: 0, elevation: 0 };

async function opened(): Promise<{ page: Page; width: number; height: number }> {
  const page = await browser.open(scene, { hash: `keys=0&labels=0&${poseHash(view)}` });
  await settle(page);
  const [width, height] = await page.locator(".viewport").evaluate((e) => [e.clientWidth, e.clientHeight]);
  return { page, width, height };
}

const saved = async (page: Page, save: () => Promise<unknown>): Promise<PNG> => PNG.sync.read((await savedBy(page, save)).content);

const colorAt = ({ data, width }: PNG, x: number, y: number): Vec3 => {
  const i = 4 * (Math.floor(y) * width + Math.floor(x));
  return [data[i], data[i + 1], data[i + 2]];
};

/** Pixels in some rows that differ from the first one there. */
function ink(png: PNG, top: number, bottom: number): number {
  const ground = colorAt(png, 1, top + 1);
  let found = 0;
  for (let y = top; y < bottom; ++y) for (let x = 0; x < png.width; ++x) if (!near(colorAt(png, x, y), ground, 40)) ++found;
  return found;
}

const options = async (page: Page, ...labels: string[]) => {
  await page.getByRole("button", { name: "Picture options" }).click();
  for (const label of labels) await page.getByRole("dialog").getByLabel(label).check();
};

const saveByButton = (page: Page) => page.getByRole("dialog").getByRole("button", { name: "Save" }).click();

describe("a saved picture", () => {
  for (const scale of [1, 3])
    test(`has ${scale} times the size of the viewport, and everything in its place`, async () => {
      const { page, width, height } = await opened();
      await options(page, `${scale} ×`);
      const png = await saved(page, () => saveByButton(page));
      expect([png.width, png.height]).toEqual([scale * width, scale * height]);
      for (const p of [points[6], points[12], points[20]]) {
        const { x, y } = project(view, p, png.width, png.height);
        expect(near(colorAt(png, x, y), TEAL, 30)).toBe(true);
        expect(near(colorAt(png, x, y + 6 * scale), TEAL, 60)).toBe(false); // the line is as wide as the picture is large
      }
    });

  test("has title, frame and legend where they are wanted, and Shift+P saves with the last choice", async () => {
    const { page, width, height } = await opened();
    await options(page, "Title above", "2 ×");
    const titled = await saved(page, () => saveByButton(page));
    expect([titled.width, titled.height]).toEqual([2 * width, 2 * (height + 36)]);
    expect(ink(titled, 0, 72)).toBeGreaterThan(200);
    await options(page, "Current frame above", "What the colours mean, below");
    await press(page, "Escape");
    const all = await saved(page, () => press(page, "Shift+P"));
    expect([all.width, all.height]).toEqual([2 * width, 2 * (height + 36 + 30)]);
    expect(ink(all, 0, 72)).toBeGreaterThan(ink(titled, 0, 72) + 100);
    const legend = Array.from({ length: 400 }, (_, x) => colorAt(all, x, all.height - 30)).filter((color) => near(color, TEAL));
    expect(legend.length).toBeGreaterThan(15);
    const { x, y } = project(view, points[12], 2 * width, 2 * height);
    expect(near(colorAt(all, x, y + 72), TEAL, 30)).toBe(true);
  });

  test("leaves the viewport as it was", async () => {
    const { page, width } = await opened();
    const canvas = page.locator(".viewport canvas:not(.overlay)");
    await options(page, "4 ×");
    await saved(page, () => saveByButton(page));
    expect(await canvas.evaluate((e: HTMLCanvasElement) => e.width)).toBe(width);
    await page.getByRole("button", { name: "Picture options" }).click();
    await press(page, "Escape");
    expect(await page.getByRole("dialog").count()).toBe(0);
  });
});
