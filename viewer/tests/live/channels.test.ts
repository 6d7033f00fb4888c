// Live pages: the graph of an object's channels, in which keys and tangents are dragged.

import type { Page } from "playwright-core";
import { describe, expect, test } from "vitest";
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

describe("tangents in the graph of channels", () => {
  const tangentsOf = (page: Page, which: string) => page.getByRole("group", { name: `Tangents ${which}` });
  const DRAWN = "of the channels that are drawn", SELECTED = "of the selected keys";
  const kindsOf = async (page: Page, channel: string) => (await keysOf(page, "|ball", channel)).map(([frame, , into, out]) => [frame, into, out]);

  /** Goes to a key of the ball's height by a click. */
  async function clickKey(page: Page, index: number) {
    const keys = await keysOf(page, "|ball", CHANNEL);
    const [frame, value] = keys[index];
    const { x, y } = await spotIn(page, frame, value);
    await page.mouse.click(x, y);
    await expect.poll(() => page.evaluate(() => window.vantorelixViewer.store.state.frame)).toBe(frame);
    return { keys, frame, value };
  }

  const [LINEAR, FLAT] = [2, 3];
  /** The key at a frame where it has keys of its depth, too. */
  const BOTH = 3;

  describeLive("the kind of tangents that is chosen", () => {
    test("in the graph of channels is that of the drawn channels' keys there, as natively, and one step", async () => {
      const { page, first } = await opened("kinds.html");
      const { frame } = await clickKey(page, BOTH);
      const before = [await kindsOf(page, CHANNEL), await kindsOf(page, "translateZ")];
      expect(before[1].map(([at]) => at)).toContain(frame);
      await tangentsOf(page, DRAWN).getByLabel("Tangents").selectOption("Linear");
      await step(page, "undoes", "linear tangents");
      const changed = before[0].map(([at, ...kinds]) => (at === frame ? [at, LINEAR, LINEAR] : [at, ...kinds]));
      expect(changed).not.toEqual(before[0]);
      expect([await kindsOf(page, CHANNEL), await kindsOf(page, "translateZ")]).toEqual([changed, before[1]]);
      const shown = await shownBits(page);
      expect(others(shown, first)).toEqual(["|ball"]);
      expect(others(shown, nativeBits(scene, await keysAsEdits(page, "|ball", [CHANNEL]), Object.keys(first)))).toEqual([]);
      await press(page, "Control+z");
      await step(page, "redoes", "linear tangents");
      expect(others(await shownBits(page), first)).toEqual([]);
      expect(await page.evaluate(() => window.vantorelixViewer.editing!.undoes)).toBe(null);
    });

    test("for the selected keys is that of all their channels, and is told of where the current frame is", async () => {
      const { page } = await opened("selected.html");
      const { frame } = await clickKey(page, BOTH);
      const list = tangentsOf(page, SELECTED).getByLabel("Tangents");
      await list.selectOption("Flat");
      await step(page, "undoes", "flat tangents");
      for (const channel of [CHANNEL, "translateZ"]) expect(await kindsOf(page, channel)).toContainEqual([frame, FLAT, FLAT]);
      await expect.poll(() => list.inputValue()).toBe("flat");
      await page.evaluate((at) => window.vantorelixViewer.store.set({ frame: at + 1 }), frame);
      await expect.poll(() => list.isDisabled()).toBe(true);
    });
  });

  describeLive("a weighted curve", () => {
    test("keeps its shape, and lets the end of a handle be dragged to where the pointer is, as natively", async () => {
      const { page, first } = await opened("weighted.html");
      const { keys, frame, value } = await clickKey(page, 2);
      await tangentsOf(page, DRAWN).getByLabel("Weighted").check();
      await step(page, "undoes", "weigh tangents");
      const weigh = ["setWeighted", "|ball", CHANNEL, 1];
      const weighed = await shownBits(page);
      expect(others(weighed, nativeBits(scene, [weigh], Object.keys(first)))).toEqual([]);
      const heights = (bits: typeof first) => bits["|ball"].points.split(",").map(Number);
      heights(weighed).forEach((number, i) => expect(Math.abs(number - heights(first)[i])).toBeLessThan(1e-9));
      const [key, one] = [await spotIn(page, frame, value), await spotIn(page, frame + 1, value + 1)];
      const end = await spotIn(page, frame + (keys[3][0] - frame) / 3, value);
      await settle(page);
      await dragBy(page, end, 25, 18);
      await step(page, "undoes", "change tangent");
      const [, , , , , , outX, outY] = (await keysOf(page, "|ball", CHANNEL))[2];
      const now = await page.evaluate((channel) => window.vantorelixViewer.editing!.channelCurves(
        window.vantorelixViewer.motion.trails.findIndex(({ source }) => source === "|ball"), Float64Array.of(1)).then((all) => all.find((curve) => curve.channel === channel)!), CHANNEL);
      expect(now.weighted).toBe(true);
      expect([now.keys[2].tangents.outX, now.keys[2].tangents.outY]).toEqual([outX, outY]);
      const fps = await page.evaluate(() => window.vantorelixViewer.scene.fps);
      const there = { x: key.x + ((outX * fps) / 3) * (one.x - key.x), y: key.y + (outY / 3) * (one.y - key.y) }; // as the graph was then
      expect(Math.hypot(there.x - end.x - 25, there.y - end.y - 18)).toBeLessThan(3); // the places here are that exact
      const edits = [weigh, ...await keysAsEdits(page, "|ball", [CHANNEL])];
      expect(others(await shownBits(page), nativeBits(scene, edits, Object.keys(first)))).toEqual([]);
    });
  });
});
