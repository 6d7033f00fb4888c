// Two scenes in one page. The second one's positions are moved from the first's by offsets whose lengths are known, so
// every distance here is known without what the page works out.

import { readFileSync } from "node:fs";
import type { Page } from "playwright-core";
import { describe, expect, test } from "vitest";
import type { Vec3 } from "../src/source/trail";
import { useBrowser } from "./support/browser";
import { temporaryFolder } from "./support/files";
import { along, distanceTo, Picture, poseHash, project, settle, type Pose } from "./support/picture";
import { example, run } from "./support/program";
import { expectState, inkOf, stateOf, writeDown, written } from "./support/read";
import { savedBy } from "./support/saved";
import { points } from "./support/scenes";
import type { SceneInput } from "./support/trails";

const browser = useBrowser();
const file = temporaryFolder();

/** From 0 at frame 1 up to 1 at frame 15 and down again. */
const part = (i: number) => 1 - Math.abs(i - 14) / 14;

const hand = points(24, (i): Vec3 => [i, 2 * Math.sin(i / 4), 1]);
/** 5 units away at most, at frame 15. */
const handThere = hand.map(([x, y, z], i): Vec3 => [x + 3 * part(i), y + 4 * part(i), z]);
const foot = points(24, (i): Vec3 => [i, -3, 0]);
const head = points(24, (i): Vec3 => [i / 2, 6, 0]);

/** The hand and the foot are compared, the head is not; the foot is 2 units away all the time. */
const pair = (): SceneInput => ({
  scene: "before.ma", range: [1, 24], compared: { scene: "shots/after.ma", take: null },
  trails: [
    { name: "hand", points: hand, compare: handThere },
    { name: "foot", points: foot, compare: foot.map(([x, y, z]): Vec3 => [x, y, z + 2]) },
    { name: "head", points: head },
  ],
});

const graph = (page: Page) => page.getByRole("region", { name: "Distance graph" });
const words = (page: Page) => graph(page).getByRole("status").textContent();
const largest = (page: Page) => graph(page).getByRole("button", { name: /^Largest/ });

describe("the distance to a second scene", () => {
  test("the distance is told in words, of the selection, with its largest and where that is", async () => {
    const page = await browser.open(pair(), { hash: "select=0-1" });
    expect(await graph(page).getByRole("heading").textContent()).toBe("Distance to after.ma, cm");
    expect(await words(page)).toBe("Distance to after.ma. hand: at most 5 cm at frame 15. foot: at most 2 cm at frame 1.");
    expect(await graph(page).getByRole("img").getAttribute("aria-label")).toBe(await words(page));
    await page.evaluate(() => window.vantorelixViewer.store.set({ frame: 8 }));
    await expect.poll(() => graph(page).locator(".graph-value").textContent()).toBe("hand, frame 8: 2.5 cm");
    await page.evaluate(() => window.vantorelixViewer.store.set({ selected: new Set([2]) }));
    await expect.poll(() => words(page)).toBe("Distance to after.ma: it has none of the selected objects.");
  });

  test("the largest distance is named, and a click goes there", async () => {
    const page = await browser.open(pair(), { hash: "select=0-1" });
    expect(await largest(page).textContent()).toBe("Largest: hand, 5 cm at frame 15");
    await largest(page).click();
    await expectState(page, "frame", 15);
    expect(await stateOf(page, "selected")).toEqual([0, 1]);
  });

  test("without a selection the largest of all that is shown is named, and a click selects it", async () => {
    const page = await browser.open(pair(), { hash: "select=&hide=0" });
    expect(await largest(page).textContent()).toBe("Largest: foot, 2 cm at frame 1");
    await page.evaluate(() => window.vantorelixViewer.store.set({ hidden: new Set() }));
    await expect.poll(() => largest(page).textContent()).toBe("Largest: hand, 5 cm at frame 15");
    await largest(page).click();
    await expectState(page, "selected", [0]);
    await expectState(page, "frame", 15);
  });

  test("relative to an object each scene is relative to its own", async () => {
    const page = await browser.open(pair(), { hash: "select=0&relative=1" });
    // (3, 4, 0) is the hand's way, (0, 0, 2) the foot's.
    expect(await words(page)).toBe(`Distance to after.ma. hand: at most ${Number(Math.sqrt(29).toPrecision(4))} cm at frame 15.`);
    await page.evaluate(() => window.vantorelixViewer.store.set({ relativeTo: 2 }));
    await expect.poll(() => words(page)).toBe("Distance to after.ma. hand: no distance is known.");
  });

  /** How far above the lower end of the graph the ink of a colour reaches at a frame, in pixels. */
  async function heightAt(page: Page, frame: number, color: Vec3): Promise<number> {
    return page.evaluate(({ wanted, rgb }) => {
      const canvas = document.querySelector<HTMLCanvasElement>(".compare-graph .curves")!;
      const x = Math.round(64 + (wanted - 1) * ((canvas.clientWidth - 96) / 23));
      const ratio = canvas.width / canvas.clientWidth;
      const { data, height } = canvas.getContext("2d")!.getImageData(Math.round(x * ratio), 0, 1, canvas.height);
      const rows = Array.from({ length: height }, (_, y) => y).filter((y) =>
        rgb.every((c, k) => Math.abs(data[4 * y + k] - c) < 40) && data[4 * y + 3] > 200);
      const bottom = height / ratio - 8;
      return bottom - rows.reduce((sum, y) => sum + y, 0) / rows.length / ratio;
    }, { wanted: frame, rgb: [...color] });
  }

  test("the curve is as high as the distance is large", async () => {
    const page = await browser.open(pair(), { hash: "select=0&color=object" });
    const orange: Vec3 = [230, 159, 0];
    await expect.poll(async () => (await inkOf(page, ".compare-graph .curves"))["230,159,0"] ?? 0).toBeGreaterThan(100);
    const [low, middle, high] = [await heightAt(page, 4, orange), await heightAt(page, 8, orange), await heightAt(page, 13, orange)];
    expect(middle / high).toBeCloseTo(part(7) / part(12), 1);
    expect(low / high).toBeCloseTo(part(3) / part(12), 1);
    expect(high).toBeGreaterThan(30);
  });
});

const front: Pose = { view: "front", target: [12, 1, 0], distance: 28, azimuth: 0, elevation: 0 };
const bare = "keys=0&labels=0&line=0&dots=0&theme=light";
const GREY: Vec3 = [85, 96, 112]; // #556070, the page's soft ink

/** The part of the second scene's line beside which there is grey; but for its beginning, where the object is now. */
async function shareDrawn(page: Page): Promise<number> {
  const picture = await Picture.ofViewport(page);
  const corners = handThere.map((p) => project(front, p, picture.width, picture.height));
  const grey = picture.pixelsOf(GREY, 50);
  const line = along(corners).filter((p) => distanceTo([corners[0]], p) > 12);
  expect(line.length).toBeGreaterThan(200);
  return line.filter((p) => distanceTo(grey, p) <= 1.5).length / line.length;
}

describe("a second scene in the picture", () => {
  test("the second scene's line is drawn where its points are, thin and grey", async () => {
    const page = await browser.open(pair(), { hash: `${bare}&select=0&${poseHash(front)}` });
    expect(await shareDrawn(page)).toBeGreaterThan(0.99);
  });

  test("a setting hides the second scene, and a link keeps that", async () => {
    const page = await browser.open(pair(), { hash: `${bare}&select=0&${poseHash(front)}` });
    const box = page.getByRole("checkbox", { name: "The second scene: after.ma" });
    expect(await box.isChecked()).toBe(true);
    await box.uncheck();
    expect(await graph(page).count()).toBe(0);
    await settle(page);
    expect(await shareDrawn(page)).toBeLessThan(0.1);
    await expect.poll(() => new URL(page.url()).hash).toContain("compare=0");
    const again = await browser.open(pair(), { hash: "compare=0" });
    expect(await stateOf(again, "showCompared")).toBe(false);
  });

  test("where the object is in both scenes now is joined by a dashed line", async () => {
    const page = await browser.open(pair(), { hash: `${bare}&select=0&frame=15&${poseHash(front)}` });
    const picture = await Picture.ofViewport(page);
    const ends = [hand[14], handThere[14]].map((p) => project(front, p, picture.width, picture.height));
    const line = along(ends).slice(12, -12);
    const grey = picture.pixelsOf(GREY, 50);
    const covered = line.filter((p) => distanceTo(grey, p) <= 0.9).length / line.length;
    expect(covered).toBeGreaterThan(0.4);
    expect(covered).toBeLessThan(0.95);
  });

  test("what is pointed at tells its distance", async () => {
    const page = await browser.open(pair(), { hash: `select=0&${poseHash(front)}` });
    await page.evaluate(() => window.vantorelixViewer.store.set({ hover: { trail: 0, sample: 7 } }));
    await expect.poll(() => page.locator(".tooltip").textContent()).toContain("Distance to after.ma 2.5 cm");
  });

  test("the page opens with both motions in the picture", async () => {
    const scene = pair();
    const far = hand.map(([x, y, z]): Vec3 => [x + 60, y, z - 30]);
    scene.trails[0].compare = far;
    const page = await browser.open(scene);
    await settle(page);
    const pose = (await stateOf(page, "camera")) as Pose;
    const { width, height } = (await page.locator(".viewport").boundingBox())!;
    for (const p of [...hand, ...foot, ...far].map((each) => project(pose, each, width, height)))
      expect([p.x >= 0 && p.x <= width, p.y >= 0 && p.y <= height]).toEqual([true, true]);
  });

  test("what moves only in the second scene is in the picture, too", async () => {
    const scene = pair();
    const waved = points(24, (i): Vec3 => [70 + i, 30 + 9 * Math.sin(i / 4), 0]);
    scene.trails.push({ name: "held", points: points(24, () => [70, 30, 0]), compare: waved });
    const page = await browser.open(scene);
    await settle(page);
    const pose = (await stateOf(page, "camera")) as Pose;
    const { width, height } = (await page.locator(".viewport").boundingBox())!;
    for (const p of [...hand, ...waved].map((each) => project(pose, each, width, height)))
      expect([p.x >= 0 && p.x <= width, p.y >= 0 && p.y <= height]).toEqual([true, true]);
  });

  test("what is left out of the second scene's lines and positions is told", async () => {
    const some = await browser.open(pair(), { hash: "select=", before: writeDown });
    await expect.poll(async () => (await written(some)).join("\n")).toMatch(/thin and grey: after\.ma( ·|\n|$)/);
    const trails = Array.from({ length: 501 }, (_, t) => {
      const way = points(100, (i): Vec3 => [i, t, 0]);
      return { name: `o${t}`, points: way, compare: way };
    });
    const many = await browser.open({ ...pair(), range: [1, 100], trails }, { hash: "select=", before: writeDown });
    const told = "thin and grey: after.ma, one sample in 3, current positions of 500 of 501 objects"; // of 50,100 samples 20,000
    await expect.poll(async () => (await written(many)).join("\n")).toContain(told);
    await many.evaluate(() => window.vantorelixViewer.store.set({ selected: new Set([4]) }));
    await expect.poll(async () => (await written(many)).join("\n")).toMatch(/thin and grey: after\.ma( ·|\n|$)/);
  });
});

describe("what is compared", () => {
  test("the table that is saved has the distances", async () => {
    const page = await browser.open(pair(), { hash: "select=0.2" });
    const { content } = await savedBy(page, () => page.getByRole("button", { name: "CSV", exact: true }).click());
    const rows = content.toString().trim().split("\r\n").map((line) => line.split(","));
    expect(rows[0].slice(-2)).toEqual(["spacing", "distance"]);
    rows.slice(1, 25).forEach((row, i) => expect(Number(row[7])).toBeCloseTo(5 * part(i), 7));
    expect(rows.slice(25).map((row) => row[7])).toEqual(Array(24).fill(""));
  });

  test("a page without a second scene says nothing of one", async () => {
    const page = await browser.open({ ...pair(), compared: undefined });
    expect(await graph(page).count()).toBe(0);
    expect(await page.getByRole("checkbox", { name: /second scene/ }).count()).toBe(0);
  });

  test("a second scene's name is text, whatever it holds", async () => {
    const page = await browser.open({ ...pair(), compared: { scene: "<img src=x onerror=alert(1)>.ma", take: "<b>run</b>" } }, { hash: "select=0" });
    expect(await words(page)).toContain("Distance to <img src=x onerror=alert(1)>.ma, take <b>run</b>.");
  });

  test("the page of the program has the distances of its JSON file", async () => {
    run("trails", example("robot.fbx"), "--compare-take", "wave", "--samples-per-frame", "3", "--out", file("x.html"), "--out", file("x.json"));
    const json = JSON.parse(readFileSync(file("x.json"), "utf8")) as { trails: { source: string; compare: { source: string; distances: number[]; largest: number } }[] };
    const page = await browser.openFile(file("x.html"));
    const held = await page.evaluate(() => window.vantorelixViewer.motion.trails.map(({ points: here, compare }) => ({
      source: compare!.source,
      distances: Array.from({ length: here.length / 3 }, (_, i) =>
        Math.hypot(...[0, 1, 2].map((k) => here[3 * i + k] - compare!.points[3 * i + k]))),
    })));
    expect(held.map(({ source }) => source)).toEqual(json.trails.map(({ compare }) => compare.source));
    const most = Math.max(...json.trails.map(({ compare }) => compare.largest));
    held.forEach(({ distances }, i) => {
      expect(distances.length).toBe(json.trails[i].compare.distances.length);
      distances.forEach((distance, k) => expect(Math.abs(distance - json.trails[i].compare.distances[k])).toBeLessThan(1e-8 * most));
    });
    expect(await graph(page).getByRole("heading").textContent()).toBe("Distance to take wave, cm");
  });
});
