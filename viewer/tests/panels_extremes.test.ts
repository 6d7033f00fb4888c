// Scenes whose numbers are very large or very small.

import type { Page } from "playwright-core";
import { describe, expect, test } from "vitest";
import type { Vec3 } from "../src/source/trail";
import { useBrowser } from "./support/browser";
import { expectState, press, writeDown, written } from "./support/read";
import { points } from "./support/scenes";
import type { SceneInput } from "./support/trails";

const browser = useBrowser();

/** Moves by this a frame. */
const sized = (step: number): SceneInput => ({
  scene: "extreme.ma", range: [1, 24], unit: "cm", trails: ["a", "b"].map((name, k) => ({
    name, points: points(24, (i): Vec3 => [i * step, k * step, (i % 2) * step * 0.1]), keyTimes: [1, 12, 24] })),
});

/** What the canvases of a page are told to write at first. */
async function opened(scene: SceneInput): Promise<{ page: Page; texts: string[] }> {
  const page = await browser.open(scene, { hash: "select=0-1", before: writeDown });
  await page.waitForSelector(".viewport[data-drawn=still]");
  return { page, texts: await written(page) };
}

describe("lengths", () => {
  for (const [size, largest] of [[1e300, "1.005e300"], [1e-30, "1.005e-30"], [1e12, "1.005e12"], [88.99992, "89.44"]] as const)
    test(`of ${size} can be read everywhere`, async () => {
      const { page, texts } = await opened(sized(size));
      expect(texts.length).toBeGreaterThan(10);
      expect(texts.filter((text) => /NaN|Infinity|undefined/.test(text))).toEqual([]);
      expect(Math.max(...texts.filter((text) => /^[-\d.e]+$/.test(text)).map((text) => text.length))).toBeLessThanOrEqual(9);
      expect(await page.locator(".plot").getAttribute("aria-label")).toContain(`a: fastest ${largest} cm per frame`);
      expect(await page.locator(".graph-value").textContent()).toBe(`a, frame 1: ${largest} cm per frame`);
      await page.evaluate(() => window.vantorelixViewer.store.set({ hover: { trail: 0, sample: 5 } }));
      await press(page, "a", "f", "2", "1", "t", "r", "r", "ArrowRight");
      expect(await page.evaluate(() => document.documentElement.scrollWidth <= innerWidth)).toBe(true);
      expect(await page.locator(".left-out").textContent()).toBe("all move");
    });
});

describe("frames", () => {
  test("of 1e12 have labels that leave each other room, and fields in which they can be read", async () => {
    const scene = sized(1);
    const { page, texts } = await opened({ ...scene, range: [1e12, 1e12 + 23], current: 1e12, keyTimeBytes: 8,
      trails: scene.trails.map((trail) => ({ ...trail, startFrame: 1e12, keyTimes: [1e12, 1e12 + 11] })) });
    const labels = [...new Set(texts.filter((text) => /^1000000000\d{3}$/.test(text)))];
    expect(labels.length).toBeGreaterThan(3);
    expect(labels.length).toBeLessThan(12); // each is some 90 pixels wide
    const field = page.getByRole("spinbutton", { name: "Frame" });
    expect(await field.inputValue()).toBe("1000000000000");
    expect(await field.evaluate((e) => e.scrollWidth <= e.clientWidth)).toBe(true);
    await press(page, "ArrowRight");
    await expectState(page, "frame", 1e12 + 1);
  });

  test("between whole ones are rounded for the reader alone", async () => {
    const page = await browser.open(sized(1), { hash: "frame=23.99992" });
    expect(await page.getByRole("spinbutton", { name: "Frame" }).inputValue()).toBe("24");
    await expectState(page, "frame", 23.99992);
  });
});
