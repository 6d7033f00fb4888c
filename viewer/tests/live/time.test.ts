// Live pages: keys that are moved in time, on the timeline and along their paths.

import { expect, test } from "vitest";
import type { Vec3 } from "../../src/source/trail";
import { useBrowser } from "../support/browser";
import { temporaryFolder } from "../support/files";
import { dragBy, PATIENT, select, spotOf, step } from "../support/handles";
import { describeLive, keysOf, nativeBits, openLive, others, shownBits } from "../support/live";
import { example } from "../support/program";
import { press } from "../support/read";

const browser = useBrowser();
const file = temporaryFolder();
const MOVED = "move key in time";
const frameOf = (page: Parameters<typeof step>[0]) => page.evaluate(() => window.vantorelixViewer.store.state.frame);

/** Where a frame's key is marked on the timeline. */
async function markOf(page: Parameters<typeof step>[0], frame: number) {
  const box = (await page.locator(".track").boundingBox())!;
  const [first, last] = await page.evaluate(() => [window.vantorelixViewer.scene.first, window.vantorelixViewer.scene.last]);
  return { x: box.x + 64 + ((box.width - 64 - 32) * (frame - first)) / (last - first), y: box.y + 31 };
}

describeLive("a key on the timeline that is dragged", () => {
  test("moves the trails as the native engine does, stops before its neighbour, and takes the current frame along", async () => {
    const scene = example("bounce.ma");
    const page = await openLive(browser, file("time.html"), scene);
    const first = await shownBits(page);
    const sources = Object.keys(first);
    await select(page, sources.indexOf("|ball"));
    const [key, next] = (await keysOf(page, "|ball", "translateY")).slice(2, 4).map(([frame]) => frame);
    const [from, to] = [await markOf(page, key), await markOf(page, key + 2)];
    await dragBy(page, from, to.x - from.x, 0);
    await step(page, "undoes", MOVED);
    expect(others(await shownBits(page), nativeBits(scene, [["moveKeys", "|ball", "", key, key + 2]], sources))).toEqual([]);
    expect(await frameOf(page)).toBe(key + 2);
    await press(page, "Control+z");
    await step(page, "redoes", MOVED);
    expect(others(await shownBits(page), first)).toEqual([]);
    const [again, beyond] = [await markOf(page, key), await markOf(page, next + 3)];
    await dragBy(page, again, beyond.x - again.x, 0);
    await step(page, "undoes", MOVED);
    expect(others(await shownBits(page), nativeBits(scene, [["moveKeys", "|ball", "", key, next - 1]], sources))).toEqual([]);
  });

  test("goes back with Escape, and a mark that is only clicked is where the current frame goes", async () => {
    const page = await openLive(browser, file("escape.html"), example("bounce.ma"));
    const first = await shownBits(page);
    const sources = Object.keys(first);
    await select(page, sources.indexOf("|ball"));
    const key = Number(first["|ball"].keyTimes.split(",")[1]);
    const from = await markOf(page, key);
    await page.mouse.click(from.x, from.y);
    await expect.poll(() => frameOf(page)).toBe(key);
    await page.mouse.move(from.x, from.y);
    await page.mouse.down();
    await page.mouse.move(from.x + 60, from.y, { steps: 4 });
    await expect.poll(async () => others(await shownBits(page), first).length, PATIENT).toBeGreaterThan(0);
    await press(page, "Escape");
    await page.mouse.up();
    await expect.poll(async () => others(await shownBits(page), first), PATIENT).toEqual([]);
    expect(await page.evaluate(() => window.vantorelixViewer.editing!.undoes)).toBe(null);
  });
});

describeLive("a key that is dragged along its path with Ctrl", () => {
  test("goes to the frame that was where the pointer is, as natively", async () => {
    const scene = example("bounce.ma");
    const page = await openLive(browser, file("path.html"), scene);
    const sources = Object.keys(await shownBits(page));
    const [key] = (await keysOf(page, "|ball", "translateY"))[2];
    const at = async (frame: number) => spotOf(page, await page.evaluate(([index, time]) => {
      const { points, startFrame, frameStep } = window.vantorelixViewer.motion.trails[index];
      const sample = Math.round((time - startFrame) / frameStep);
      return [...points.subarray(3 * sample, 3 * sample + 3)] as unknown as Vec3;
    }, [sources.indexOf("|ball"), frame] as const));
    const [from, to] = [await at(key), await at(key + 3)];
    await page.keyboard.down("Control");
    await dragBy(page, from, to.x - from.x, to.y - from.y);
    await page.keyboard.up("Control");
    await step(page, "undoes", MOVED);
    const wanted = nativeBits(scene, [["moveKeys", "|ball", "", key, key + 3]], sources);
    expect(others(await shownBits(page), wanted)).toEqual([]);
  });
});
