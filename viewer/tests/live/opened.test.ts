// A scene that is edited, beside itself as it was opened.

import type { Page } from "playwright-core";
import { expect, test } from "vitest";
import type { Vec3 } from "../../src/source/trail";
import { useBrowser } from "../support/browser";
import { temporaryFolder } from "../support/files";
import { describeLive, openLive, pull, shownBits } from "../support/live";
import { distanceTo, Picture, poseHash, project, type Pose } from "../support/picture";
import { example } from "../support/program";

const browser = useBrowser();
const file = temporaryFolder();

const graph = (page: Page) => page.getByRole("region", { name: "Distance graph" });
const compareButton = (page: Page) => page.getByRole("button", { name: "Compare", exact: true });

const triples = (bits: string): Vec3[] => {
  const numbers = bits.split(",").map(Number);
  return Array.from({ length: numbers.length / 3 }, (_, i) => numbers.slice(3 * i, 3 * i + 3) as unknown as Vec3);
};
const ballOf = async (page: Page) => triples((await shownBits(page))["|ball"].points);

const FRONT: Pose = { view: "front", target: [0, 6, 0], distance: 30, azimuth: 0, elevation: 0 };
const BARE = "keys=0&labels=0&line=0&dots=0&theme=light&bones=0";
const GREY: Vec3 = [85, 96, 112]; // #556070, the page's soft ink

describeLive("a scene whose key was dragged, compared with itself as it was opened,", () => {
  test("has the first trail in grey, the distance in words, and all of that in its address", async () => {
    const page = await openLive(browser, file("opened.html"), example("bounce.ma"), { hash: `${BARE}&select=1&${poseHash(FRONT)}` });
    const first = await ballOf(page);
    await pull(page, "|ball", 38, [3, 9, -2]);
    expect(await graph(page).isVisible()).toBe(false);
    await compareButton(page).click();
    const now = await ballOf(page);
    const apart = now.map((p, i) => Math.hypot(...p.map((c, k) => c - first[i][k])));
    const most = Math.max(...apart);
    expect(most).toBeGreaterThan(3);
    await expect.poll(() => graph(page).getByRole("status").textContent()).toBe(
      `Distance to bounce.ma as opened. ball: at most ${Number(most.toPrecision(4))} cm at frame ${1 + apart.indexOf(most) / 2}.`);
    const picture = await Picture.ofViewport(page);
    const grey = picture.pixelsOf(GREY, 50);
    const left = first.filter((_, i) => apart[i] > 1.5).map((p) => project(FRONT, p, picture.width, picture.height));
    expect(left.length).toBeGreaterThan(8);
    expect(left.filter((p) => distanceTo(grey, p) > 2)).toEqual([]);
    await expect.poll(() => page.evaluate(() => location.hash)).toContain("compare=1");
    await compareButton(page).click();
    await expect.poll(() => graph(page).isVisible()).toBe(false);
  });

  test("is nowhere apart from it before an edit and after all edits are undone", async () => {
    const page = await openLive(browser, file("undone.html"), example("bounce.ma"), { hash: "select=1&compare=1" });
    const words = () => graph(page).getByRole("status").textContent();
    const none = "Distance to bounce.ma as opened. ball: at most 0 cm at frame 1.";
    await expect.poll(words).toBe(none);
    await pull(page, "|ball", 38, [3, 9, -2]);
    await expect.poll(words).not.toBe(none);
    await page.keyboard.press("Control+z");
    await expect.poll(words, { timeout: 20_000 }).toBe(none);
  });
});
