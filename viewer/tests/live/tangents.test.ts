// Live pages: the tangents of the selected key, as handles on its path.

import type { Page } from "playwright-core";
import { expect, test } from "vitest";
import type { PathTangents, Vec3 } from "../../src/source/trail";
import { useBrowser } from "../support/browser";
import { temporaryFolder } from "../support/files";
import { aim, arcScene, CHANNELS, dragBy, keysAsEdits, PATIENT, select, spotOf, step, type Aim } from "../support/handles";
import { describeLive, nativeBits, openLive, others, shownBits } from "../support/live";
import { press } from "../support/read";

const browser = useBrowser();
const file = temporaryFolder();
const CHANGED = "change tangent";

const scene = arcScene(file("arc.ma"));

const tangentsOf = async (page: Page, { trail, frame }: Aim) =>
  (await page.evaluate(([index, at]) => window.vantorelixViewer.editing!.pathTangents([index], at), [trail, frame] as const))[0]!;

/** The slope in space of a side, from its key. */
const along = ({ place }: PathTangents, end: readonly number[]) => end.map((value, k) => value - place[k]);

/** A page whose selected key has two handles apart from it, and where the one that leaves it is. */
async function opened(name: string): Promise<{ page: Page; found: Aim; out: { x: number; y: number } }> {
  const page = await openLive(browser, file(name), scene);
  const found = (await aim(page, true))!;
  await select(page, found.trail);
  await page.mouse.click(found.at.x, found.at.y);
  await expect.poll(() => page.evaluate(() => window.vantorelixViewer.store.state.frame)).toBe(found.frame);
  const { out } = await tangentsOf(page, found);
  await page.waitForTimeout(300); // until the handles were asked for and drawn
  return { page, found, out: await spotOf(page, out as unknown as Vec3) };
}

describeLive("a tangent of the selected key", () => {
  test("follows the pointer by its handle with the other side in line, and moves the trails as natively; undo brings all back", async () => {
    const { page, found, out } = await opened("tangent.html");
    const first = await shownBits(page);
    await dragBy(page, out, 31, -19);
    await step(page, "undoes", CHANGED);
    const now = await tangentsOf(page, found);
    const end = await spotOf(page, now.out as unknown as Vec3);
    expect(Math.hypot(end.x - out.x - 31, end.y - out.y + 19)).toBeLessThan(0.5);
    expect(now.broken).toBe(false);
    const edits = await keysAsEdits(page, found.source, CHANNELS);
    const after = await shownBits(page);
    expect(others(after, first)).toContain(found.source);
    expect(others(after, nativeBits(scene, edits, Object.keys(first)))).toEqual([]);
    await press(page, "Control+z");
    await step(page, "redoes", CHANGED);
    expect(others(await shownBits(page), first)).toEqual([]);
  });

  test("turns alone after it was broken, and with the other side again after both were unified", async () => {
    const { page, found, out } = await opened("broken.html");
    const before = await tangentsOf(page, found);
    await press(page, "Shift+U");
    await dragBy(page, out, 31, -19);
    await step(page, "undoes", CHANGED);
    const apart = await tangentsOf(page, found);
    expect(apart.broken).toBe(true);
    along(apart, apart.in!).forEach((value, k) => expect(value).toBeCloseTo(along(before, before.in!)[k], 9));
    await page.getByRole("button", { name: "Unify them: both sides turn together" }).click();
    await step(page, "undoes", "unify tangents");
    await expect.poll(async () => (await tangentsOf(page, found)).broken, PATIENT).toBe(false);
    const whole = await tangentsOf(page, found);
    expect(along(whole, whole.in!)).not.toEqual(along(apart, apart.in!));
    along(whole, whole.out!).forEach((value, k) => expect(value).toBeCloseTo(along(apart, apart.out!)[k], 9));
  });
});
