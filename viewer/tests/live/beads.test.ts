// Live pages: dots between keys, which slide along their path.

import type { Page } from "playwright-core";
import { describe, expect, test } from "vitest";
import type { Vec3 } from "../../src/source/trail";
import { useBrowser, withoutWebGl, type OpenOptions } from "../support/browser";
import { temporaryFolder } from "../support/files";
import { arcScene, CHANNELS, dragBy, keysAsEdits, PATIENT, select, spotOf, step } from "../support/handles";
import { describeLive, nativeBits, openLive, others, shownBits } from "../support/live";
import { settle } from "../support/picture";
import { example } from "../support/program";
import { press } from "../support/read";

const browser = useBrowser();
const file = temporaryFolder();
const CHANGED = "change spacing";
const scene = arcScene(file("arc.ma"));
const ARC = "|arc";

/** Between the keys at 12 and 24. */
const BEAD = 18;

const placeAt = (page: Page, trail: number, frame: number) => page.evaluate(([index, time]) => {
  const { points, startFrame, frameStep } = window.vantorelixViewer.motion.trails[index];
  const sample = Math.round((time - startFrame) / frameStep);
  return [...points.subarray(3 * sample, 3 * sample + 3)] as unknown as [number, number, number];
}, [trail, frame] as const);

/** How far the places of one text lie from the lines between those of the other, at the most. */
function offPath(points: string, path: string): number {
  const placesOf = (text: string) => {
    const numbers = text.split(",").map(Number);
    return Array.from({ length: numbers.length / 3 }, (_, k) => numbers.slice(3 * k, 3 * k + 3) as unknown as Vec3);
  };
  const lines = placesOf(path);
  const toLine = (p: Vec3, a: Vec3, b: Vec3) => {
    const way = a.map((value, k) => b[k] - value);
    const squared = way.reduce((sum, by) => sum + by * by, 0);
    const along = squared > 0 ? way.reduce((sum, by, k) => sum + by * (p[k] - a[k]), 0) / squared : 0;
    return away(p, a.map((value, k) => value + Math.max(0, Math.min(1, along)) * way[k]) as unknown as Vec3);
  };
  return Math.max(...placesOf(points).map((p) => Math.min(...lines.slice(1).map((b, k) => toLine(p, lines[k], b)))));
}

const away = (a: Vec3, b: Vec3) => Math.hypot(a[0] - b[0], a[1] - b[1], a[2] - b[2]);

/** A page with the object selected, and where it is at some frames. */
async function opened(name: string, options?: OpenOptions) {
  const page = await openLive(browser, file(name), scene, options);
  const first = await shownBits(page);
  const trail = Object.keys(first).indexOf(ARC);
  await select(page, trail);
  await settle(page);
  const at = async (frame: number) => spotOf(page, await placeAt(page, trail, frame));
  return { page, first, trail, at };
}

describe("beads", () => {
  describeLive("a dot between two keys that is dragged along its path", () => {
    test("takes its frame to where the pointer is, and leaves the path and the keys, as natively; undo brings all back", async () => {
      const { page, first, trail, at } = await opened("bead.html");
      const [from, to, wanted] = [await at(BEAD), await at(BEAD - 2), await placeAt(page, trail, BEAD - 2)];
      const far = away(wanted, await placeAt(page, trail, BEAD));
      await dragBy(page, from, to.x - from.x, to.y - from.y);
      await step(page, "undoes", CHANGED);
      expect(away(await placeAt(page, trail, BEAD), wanted)).toBeLessThan(0.02 * far);
      const after = await shownBits(page);
      const weighed = CHANNELS.map((channel) => ["setWeighted", ARC, channel, 1]);
      const edits = [...weighed, ...await keysAsEdits(page, ARC, CHANNELS)];
      expect(others(after, nativeBits(scene, edits, Object.keys(first)))).toEqual([]);
      expect(offPath(after[ARC].points, first[ARC].points)).toBeLessThan(0.03); // of 20: lines cut corners
      expect(after[ARC].keyPoints).toBe(first[ARC].keyPoints);
      await press(page, "Control+z");
      await step(page, "redoes", CHANGED);
      expect(others(await shownBits(page), first)).toEqual([]);
    });

    test("is marked under the pointer, follows it there and back, and returns with Escape", async () => {
      const { page, first, trail, at } = await opened("there.html");
      const [from, to, wanted] = [await at(BEAD), await at(BEAD + 1), await placeAt(page, trail, BEAD + 1)];
      const start = await placeAt(page, trail, BEAD);
      await page.mouse.move(from.x, from.y);
      const mark = page.locator(".viewport .bead");
      await expect.poll(() => mark.isVisible(), PATIENT).toBe(true);
      const now = async () => away(await placeAt(page, trail, BEAD), wanted) / away(start, wanted);
      await page.mouse.down();
      await page.mouse.move(to.x, to.y, { steps: 4 });
      await expect.poll(now, PATIENT).toBeLessThan(0.02);
      await page.mouse.move(from.x, from.y, { steps: 4 });
      await expect.poll(now, PATIENT).toBeGreaterThan(0.98);
      await page.mouse.move(to.x, to.y, { steps: 4 });
      await expect.poll(now, PATIENT).toBeLessThan(0.02);
      await press(page, "Escape");
      await page.mouse.up();
      await expect.poll(async () => others(await shownBits(page), first), PATIENT).toEqual([]);
      expect(await page.evaluate(() => window.vantorelixViewer.editing!.undoes)).toBe(null);
      await page.mouse.move(from.x + 200, from.y + 150);
      await expect.poll(() => mark.isVisible(), PATIENT).toBe(false);
    });

  });

  describeLive("without WebGL", () => {
    test("a dot that is dragged along its path slides as well", async () => {
      const { page, trail, at } = await opened("flat.html", { before: withoutWebGl });
      expect(await page.locator(".without-webgl").isVisible()).toBe(true);
      const [from, to, wanted] = [await at(BEAD), await at(BEAD + 1), await placeAt(page, trail, BEAD + 1)];
      const far = away(wanted, await placeAt(page, trail, BEAD));
      await dragBy(page, from, to.x - from.x, to.y - from.y);
      await step(page, "undoes", CHANGED);
      expect(away(await placeAt(page, trail, BEAD), wanted)).toBeLessThan(0.02 * far);
    });
  });

  describeLive("a dot that cannot slide", () => {
    test("turns the view where its trail is not selected", async () => {
      const { page, at } = await opened("unselected.html");
      await page.evaluate(() => window.vantorelixViewer.store.set({ selected: new Set() }));
      const from = await at(BEAD);
      const camera = () => page.evaluate(() => JSON.stringify(window.vantorelixViewer.store.state.camera));
      const before = await camera();
      await dragBy(page, from, 60, 20);
      await expect.poll(camera, PATIENT).not.toBe(before);
      expect(await page.evaluate(() => window.vantorelixViewer.editing!.undoes)).toBe(null);
    });

    test("says the engine's reason where the object's own keys do not move it", async () => {
      const page = await openLive(browser, file("turning.html"), example("arm.ma"));
      const said = await page.evaluate(async () => {
        const { editing, motion } = window.vantorelixViewer;
        const trail = motion.trails.findIndex(({ name }) => name === "forearm");
        return editing!.beginDrag({ what: "bead", trail, frame: 17 }).then(() => "", (refusal: Error) => refusal.message);
      });
      expect(said).toBe("no keys of the translation of forearm move it at frame 17");
    });
  });
});
