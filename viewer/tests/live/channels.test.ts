// Live pages: the graph of an object's channels, in which keys and tangents are dragged.

import type { Page } from "playwright-core";
import { expect, test } from "vitest";
import { useBrowser } from "../support/browser";
import { temporaryFolder } from "../support/files";
import { dragBy, keysAsEdits, PATIENT, select, step } from "../support/handles";
import { describeLive, keysOf, nativeBits, openLive, others, shownBits } from "../support/live";
import { settle } from "../support/picture";
import { example } from "../support/program";
import { press } from "../support/read";

const browser = useBrowser();
const file = temporaryFolder();
const scene = example("bounce.ma");
const CHANNEL = "translateY";

/** The page with the graph of the ball's height alone, and what a place of the graph is. */
async function opened(name: string) {
  const page = await openLive(browser, file(name), scene, { hash: "channels=1" });
  const first = await shownBits(page);
  await select(page, Object.keys(first).indexOf("|ball"));
  for (const other of ["translateX", "translateZ"]) await page.getByRole("button", { name: other }).click();
  await expect.poll(() => page.locator(".channel-plot").getAttribute("aria-label"), PATIENT).toMatch(/^Channels of ball\. translateY, keys at frames [\d., ]+$/);
  await settle(page);
  return { page, first };
}

/** Where a frame and a value are: worked out here from what the graph has to show, with the room that it leaves. */
async function spotIn(page: Page, frame: number, value: number) {
  const box = (await page.locator(".channel-plot").boundingBox())!;
  const [first, last] = await page.evaluate(() => [window.vantorelixViewer.scene.first, window.vantorelixViewer.scene.last]);
  const heights = await page.evaluate(() => {
    const { points } = window.vantorelixViewer.motion.trails.find(({ source }) => source === "|ball")!;
    return [...points].filter((_, i) => i % 3 === 1);
  });
  const [low, high] = [Math.min(...heights), Math.max(...heights)];
  const room = 0.08 * (high - low);
  return {
    x: box.x + 64 + ((box.width - 96) * (frame - first)) / (last - first),
    y: box.y + 10 + ((box.height - 18) * (high + room - value)) / (high - low + 2 * room),
  };
}

describeLive("a key in the graph of channels", () => {
  test("is dragged to another frame and value, of its channel alone, and the trails follow as natively; undo brings all back", async () => {
    const { page, first } = await opened("channels.html");
    const keys = await keysOf(page, "|ball", CHANNEL);
    const [[frame, value], sides] = [keys[2], await keysOf(page, "|ball", "scaleX")];
    const [from, to] = [await spotIn(page, frame, value), await spotIn(page, frame + 2, value - 3)];
    await dragBy(page, from, to.x - from.x, to.y - from.y);
    await step(page, "undoes");
    const moved = await keysOf(page, "|ball", CHANNEL);
    expect(moved[2][0]).toBe(frame + 2);
    expect(Math.abs(moved[2][1] - value + 3)).toBeLessThan(0.2);
    expect(await keysOf(page, "|ball", "scaleX")).toEqual(sides);
    const edits = [["moveKeys", "|ball", CHANNEL, frame, frame + 2], ...await keysAsEdits(page, "|ball", [CHANNEL])];
    expect(others(await shownBits(page), nativeBits(scene, edits, Object.keys(first)))).toEqual([]);
    await press(page, "Control+z");
    await step(page, "redoes");
    expect(others(await shownBits(page), first)).toEqual([]);
  });

  test("shows its tangents when it is clicked, which turn by their handles", async () => {
    const { page } = await opened("slopes.html");
    const keys = await keysOf(page, "|ball", CHANNEL);
    const [frame, value] = keys[2];
    const key = await spotIn(page, frame, value);
    await page.mouse.click(key.x, key.y);
    await expect.poll(() => page.evaluate(() => window.vantorelixViewer.store.state.frame)).toBe(frame);
    const third = (keys[3][0] - frame) / 3; // a flat one, a third of the way to the next key
    const end = await spotIn(page, frame + third, value);
    await settle(page);
    await dragBy(page, end, 0, 20);
    await step(page, "undoes", "change tangent");
    const [, , , , inX, inY, outX, outY] = (await keysOf(page, "|ball", CHANNEL))[2];
    expect(outY / outX).toBeLessThan(0);
    expect(inY / inX).toBeCloseTo(outY / outX, 9);
  });
});
