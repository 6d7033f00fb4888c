// What is drawn, where, and in which colour; and what pointer and keys do in the viewport.

import type { Page } from "playwright-core";
import { describe, expect, test } from "vitest";
import type { Vec3 } from "../src/source/trail";
import { useBrowser } from "./support/browser";
import { along, distanceTo, near, Picture, poseHash, project, settle, type Pose } from "./support/picture";
import { writeDown, written } from "./support/read";
import { savedBy } from "./support/saved";
import { points } from "./support/scenes";
import type { SceneInput } from "./support/trails";

const browser = useBrowser();

const TEAL: Vec3 = [38, 191, 166]; // of mode 0

const arc: Vec3[] = Array.from({ length: 25 }, (_, i) => [
  8 * Math.cos((i / 24) * Math.PI), 2 + 6 * Math.sin((i / 24) * Math.PI), i / 6 - 2,
]);

/** One trail in one colour, without marks. */
const plain: SceneInput = { range: [1, 25], trails: [{ name: "arc", points: arc, colorMode: 0, lineWidth: 3, showDots: false }] };
const bare = "keys=0&labels=0";

const poses: Record<string, Pose> = {
  persp: { view: "persp", target: [0, 4, 0], distance: 40, azimuth: 35, elevation: 20 },
  front: { view: "front", target: [0, 4, 0], distance: 30, azimuth: 0, elevation: 0 },
  side: { view: "side", target: [0, 4, 0], distance: 30, azimuth: 90, elevation: 0 },
  top: { view: "top", target: [0, 4, 0], distance: 40, azimuth: 0, elevation: 90 },
};

/**
 * Every expected point has its colour within a pixel and a half, and every pixel of the colour is at the line; but for
 * the marker of the current position, at the line's beginning.
 */
function expectDrawn(picture: Picture, corners: { x: number; y: number }[], color: Vec3): void {
  const marker = [corners[0]];
  const line = along(corners).filter((p) => distanceTo(marker, p) > 10);
  const pixels = picture.pixelsOf(color).filter((p) => distanceTo(marker, p) > 10);
  expect(line.length).toBeGreaterThan(40);
  expect(line.filter((p) => distanceTo(pixels, p) > 1.5)).toEqual([]);
  expect(pixels.filter((p) => distanceTo(line, p) > 3 && distanceTo(marker, p) > 13)).toEqual([]);
}

async function state(page: Page): Promise<URLSearchParams> {
  await settle(page);
  return new URLSearchParams(new URL(page.url()).hash.slice(1));
}

const pose = async (page: Page) => ((await state(page)).get("camera") ?? "").split(",").map((v, i) => (i ? Number(v) : v));

async function viewportBox(page: Page) {
  return (await page.locator(".viewport").boundingBox())!;
}

/** Moves the mouse to a point of the viewport. */
async function pointAt(page: Page, { x, y }: { x: number; y: number }): Promise<void> {
  const box = await viewportBox(page);
  await page.mouse.move(box.x + x, box.y + y);
  await page.evaluate(() => new Promise((drawn) => requestAnimationFrame(() => requestAnimationFrame(drawn))));
}

/** The point of the arc between this sample and the next. */
const halfway = (i: number) => arc[i].map((c, k) => (c + arc[i + 1][k]) / 2) as unknown as Vec3;

const place = (picture: Picture, view: Pose, p: Vec3) => project(view, p, picture.width, picture.height);

describe("a line", () => {
  for (const [name, view] of Object.entries(poses))
    test(`is drawn where its points are, in the ${name} view`, async () => {
      const page = await browser.open(plain, { hash: `${bare}&${poseHash(view)}` });
      const picture = await Picture.ofViewport(page);
      expectDrawn(picture, arc.map((p) => place(picture, view, p)), TEAL);
    });

  test("of a scene with z up stands upright", async () => {
    const turned = arc.map(([x, y, z]) => [x, -z, y] as Vec3);
    const page = await browser.open({ ...plain, upAxis: "z", trails: [{ ...plain.trails[0], points: turned }] },
      { hash: `${bare}&${poseHash(poses.persp)}` });
    const picture = await Picture.ofViewport(page);
    expectDrawn(picture, arc.map((p) => place(picture, poses.persp, p)), TEAL);
  });

  test("far from the origin is drawn as exactly as near it", async () => {
    const far: Vec3 = [4e6, 0, -7e6];
    const shift = (p: Vec3): Vec3 => [p[0] + far[0], p[1], p[2] + far[2]];
    const view = { ...poses.persp, target: shift(poses.persp.target) };
    const page = await browser.open({ ...plain, trails: [{ ...plain.trails[0], points: arc.map(shift) }] },
      { hash: `${bare}&${poseHash(view)}` });
    const picture = await Picture.ofViewport(page);
    expectDrawn(picture, arc.map((p) => place(picture, poses.persp, p)), TEAL);
  });

  test("has a gap where samples are not finite", async () => {
    const points = arc.map((p, i) => (i === 12 ? ([NaN, NaN, NaN] as Vec3) : p));
    const page = await browser.open({ ...plain, trails: [{ ...plain.trails[0], points }] },
      { hash: `${bare}&${poseHash(poses.front)}` });
    const picture = await Picture.ofViewport(page);
    const drawn = (i: number) => near(picture.at(place(picture, poses.front, halfway(i))), TEAL);
    expect([5, 11, 12].map(drawn)).toEqual([true, false, false]);
  });

  test("has the width that is chosen", async () => {
    const widths: number[] = [];
    for (const width of [2, 8]) {
      const page = await browser.open(plain, { hash: `${bare}&width=${width}&${poseHash(poses.front)}` });
      widths.push((await Picture.ofViewport(page)).pixelsOf(TEAL).length);
    }
    expect(widths[1] / widths[0]).toBeGreaterThan(3);
    expect(widths[1] / widths[0]).toBeLessThan(6); // the colour at the edges is mixed with the casing's
  });

  test("has its pushed colours in the spacing mode", async () => {
    const colors = arc.map((_, i) => (i < 12 ? [10, 20, 250] : [250, 30, 20]) as unknown as Vec3);
    const page = await browser.open({ ...plain, trails: [{ ...plain.trails[0], colorMode: 1, colors }] },
      { hash: `${bare}&${poseHash(poses.front)}` });
    const picture = await Picture.ofViewport(page);
    for (const i of [3, 6, 9]) expect(near(picture.at(place(picture, poses.front, arc[i])), [10, 20, 250])).toBe(true);
    for (const i of [15, 18, 21]) expect(near(picture.at(place(picture, poses.front, arc[i])), [250, 30, 20])).toBe(true);
  });

  test("turns from past to future at the current frame", async () => {
    const page = await browser.open(plain, { hash: `${bare}&mode=2&frame=10&${poseHash(poses.front)}` });
    const past: Vec3 = [255, 191, 0];
    const future: Vec3 = [0, 166, 166];
    const colorsAt = async (...points: Vec3[]) => {
      const picture = await Picture.ofViewport(page);
      return points.map((p) => picture.at(place(picture, poses.front, p)));
    };
    const [before, after, beyond] = await colorsAt(arc[5], arc[15], halfway(17));
    expect([near(before, past), near(after, future), near(beyond, future)]).toEqual([true, true, true]);
    await page.evaluate(() => window.vantorelixViewer.store.set({ frame: 20, showLabels: false }));
    // The stretch that leaves the current sample belongs to the future, whole; the ring covers its beginning.
    const [gone, next, last] = await colorsAt(arc[15], halfway(19), arc[22]);
    expect([near(gone, past), near(next, future), near(last, future)]).toEqual([true, true, true]);
  });

  test("changes colour with every key in the beats mode", async () => {
    const keys = { ...plain.trails[0], keyTimes: [5, 15] };
    const page = await browser.open({ ...plain, trails: [keys] }, { hash: `${bare}&mode=3&${poseHash(poses.front)}` });
    const picture = await Picture.ofViewport(page);
    const colorAt = (i: number) => picture.at(place(picture, poses.front, arc[i]));
    expect(near(colorAt(2), [255, 255, 255])).toBe(true);
    expect(near(colorAt(9), [38, 217, 64])).toBe(true);
    expect(near(colorAt(20), [255, 255, 255])).toBe(true);
    const [beforeKey, afterKey] = [3, 4].map((i) => picture.at(place(picture, poses.front, halfway(i))));
    expect(near(beforeKey, [255, 255, 255])).toBe(true);
    expect(near(afterKey, [38, 217, 64])).toBe(true);
  });
});

describe("dots and markers", () => {
  test("dots are drawn at the samples, without the line", async () => {
    const page = await browser.open(plain, { hash: `${bare}&line=0&dots=1&dot=6&${poseHash(poses.front)}` });
    const picture = await Picture.ofViewport(page);
    for (const i of [4, 10, 16, 22]) expect(near(picture.at(place(picture, poses.front, arc[i])), TEAL)).toBe(true);
    expect(near(picture.at(place(picture, poses.front, halfway(10))), TEAL)).toBe(false);
  });

  test("a key is a white diamond, and its frame stands beside it", async () => {
    const input = { ...plain, trails: [{ ...plain.trails[0], keyTimes: [13] }] };
    const shot = async (hash: string) => Picture.ofViewport(await browser.open(input, { hash: `${hash}&${poseHash(poses.front)}` }));
    const [without, marked, labelled] = [await shot("keys=0&labels=0"), await shot("labels=0"), await shot("mode=0")];
    const at = place(marked, poses.front, arc[12]);
    expect(near(marked.at(at), [255, 255, 255])).toBe(true);
    expect(near(without.at(at), TEAL)).toBe(true);
    const ink = (picture: Picture) => {
      let different = 0;
      for (let x = 8; x < 26; ++x) for (let y = -18; y < -2; ++y)
        if (!near(picture.at({ x: at.x + x, y: at.y + y }), without.at({ x: at.x + x, y: at.y + y }))) ++different;
      return different;
    };
    expect(ink(labelled)).toBeGreaterThan(15);
    expect(ink(marked)).toBe(0);
  });

  test("keys between samples are marked where they were pushed", async () => {
    const keyPoint: Vec3 = [-2, 12, 0];
    const input = { ...plain, trails: [{ ...plain.trails[0], keyTimes: [13.5], keyPoints: [keyPoint] }] };
    const picture = await Picture.ofViewport(await browser.open(input, { hash: `labels=0&${poseHash(poses.front)}` }));
    expect(near(picture.at(place(picture, poses.front, keyPoint)), [255, 255, 255])).toBe(true);
  });

  test("the current position follows the frame", async () => {
    const page = await browser.open(plain, { hash: `${bare}&color=object&frame=7&${poseHash(poses.front)}` });
    await page.evaluate(() => window.vantorelixViewer.store.set({ showLine: false, showDots: true, pointSize: 0.5 }));
    const orange: Vec3 = [230, 159, 0];
    for (const frame of [7, 19]) {
      await page.evaluate((f) => window.vantorelixViewer.store.set({ frame: f }), frame);
      const picture = await Picture.ofViewport(page);
      expect(near(picture.at(place(picture, poses.front, arc[frame - 1])), orange)).toBe(true);
      expect(picture.pixelsOf(orange).length).toBeLessThan(120);
    }
  });
});

describe("depth", () => {
  const behind: SceneInput = {
    range: [1, 25],
    trails: [{ ...plain.trails[0], points: arc.map(([x, y]) => [x, y, -5] as Vec3) }],
    statics: [{ name: "|wall", matrix: [6, 0, 0, 0, 0, 20, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1], low: [-0.5, -0.5, -0.5], high: [0.5, 0.5, 0.5] }],
  };
  const wall: Vec3 = [217, 222, 230];
  const veiled = TEAL.map((c, k) => 0.6 * c + 0.4 * wall[k]) as unknown as Vec3;
  const shown = async (hash: string, scene = behind) => {
    const picture = await Picture.ofViewport(await browser.open(scene, { hash: `${bare}&${hash}&${poseHash(poses.front)}` }));
    return [12, 3].map((i) => picture.at(place(picture, poses.front, arc[i])))
      .map((color) => (near(color, TEAL) ? "full" : near(color, veiled) ? "veiled" : "hidden"));
  };

  test("a box veils what is behind it, and hides it not", async () => expect(await shown("ghost=0")).toEqual(["veiled", "full"]));
  test("a ghost is drawn over it", async () => expect(await shown("ghost=1")).toEqual(["full", "full"]));
  test("without boxes nothing is veiled", async () => expect(await shown("ghost=0&boxes=0")).toEqual(["full", "full"]));

  test("many boxes veil no more than one", async () => {
    const wall = behind.statics![0];
    const more = [1, 2, 3, 4, 5].map((z) => ({ ...wall, matrix: wall.matrix.map((v, i) => (i === 14 ? z : v)) }));
    expect(await shown("ghost=0", { ...behind, statics: [wall, ...more] })).toEqual(["veiled", "full"]);
  });

  test("a box that holds a sample is drawn as edges only", async () => {
    const holds = { ...behind, trails: [...behind.trails, { ...plain.trails[0], name: "still", points: arc.map(() => [0, 0, 0.2] as Vec3) }] };
    expect(await shown("ghost=0&select=", holds)).toEqual(["full", "full"]);
    const picture = await Picture.ofViewport(await browser.open(holds, { hash: `${bare}&select=&${poseHash(poses.front)}` }));
    const edge = project(poses.front, [3, 1, 0.5], picture.width, picture.height);
    const darkest = (x: number) => Math.min(...[-2, -1, 0, 1, 2].map((more) => picture.at({ x: edge.x + x + more, y: edge.y })[0]));
    expect(darkest(-20) - darkest(0)).toBeGreaterThan(25);
    expect(near(picture.at({ x: edge.x - 20, y: edge.y + 7 }), picture.at({ x: edge.x + 40, y: edge.y + 7 }), 3)).toBe(true);
  });

  test("the ground hides nothing that is below it", async () => {
    const below: SceneInput = { ...plain, trails: [{ ...plain.trails[0], points: [...arc, [0, -1.5, 0], [2, -1.5, 1]] }] };
    const view: Pose = { ...poses.persp, azimuth: 0, elevation: 30 };
    const seen = async (hash: string) => {
      const picture = await Picture.ofViewport(await browser.open(below, { hash: `${bare}&${hash}&${poseHash(view)}` }));
      return near(picture.at(place(picture, view, [1, -1.5, 0.5])), TEAL);
    };
    expect(await seen("ghost=0")).toBe(true);
    expect(await seen("ghost=1")).toBe(true);
  });
});

describe("the camera", () => {
  test("turns with the left button, and the trail turns with it", async () => {
    const page = await browser.open(plain, { hash: `${bare}&${poseHash(poses.persp)}` });
    const box = await viewportBox(page);
    await page.mouse.move(box.x + 200, box.y + 60);
    await page.mouse.down();
    await page.mouse.move(box.x + 300, box.y + 90, { steps: 4 });
    await page.mouse.up();
    const [view, x, y, z, distance, azimuth, elevation] = await pose(page);
    expect(view).toBe("persp");
    expect(Math.abs(Number(azimuth) - 35)).toBeGreaterThan(10);
    expect(Math.abs(Number(elevation) - 20)).toBeGreaterThan(3);
    expect(distance).toBeCloseTo(40, 5);
    const turned = { ...poses.persp, target: [x, y, z] as unknown as Vec3, azimuth: Number(azimuth), elevation: Number(elevation) };
    const picture = await Picture.ofViewport(page);
    expectDrawn(picture, arc.map((p) => place(picture, turned, p)), TEAL);
  });

  test("pans with the right button", async () => {
    const page = await browser.open(plain, { hash: `${bare}&${poseHash(poses.front)}` });
    const box = await viewportBox(page);
    await page.mouse.move(box.x + 200, box.y + 60);
    await page.mouse.down({ button: "right" });
    await page.mouse.move(box.x + 260, box.y + 60, { steps: 4 });
    await page.mouse.up({ button: "right" });
    const [, x, y] = await pose(page);
    expect(Number(x)).toBeLessThan(-1);
    expect(Number(y)).toBeCloseTo(4, 3);
  });

  for (const view of ["persp", "front"] as const)
    test(`zooms with the wheel in the ${view} view`, async () => {
      const page = await browser.open(plain, { hash: `${bare}&${poseHash(poses[view])}` });
      await pointAt(page, { x: 250, y: 100 });
      await page.mouse.wheel(0, -300);
      const near = Number((await pose(page))[4]);
      expect(near).toBeLessThan(poses[view].distance * 0.95);
      await page.mouse.wheel(0, 900);
      expect(Number((await pose(page))[4])).toBeGreaterThan(near);
    });

  test("goes by keys: turn, move, nearer, and frame all again", async () => {
    const page = await browser.open(plain, { hash: `${bare}&${poseHash(poses.persp)}` });
    for (const key of ["l", "k", "+"]) await page.keyboard.press(key);
    const moved = await pose(page);
    expect(moved[5]).toBeCloseTo(45, 5);
    expect(moved[6]).toBeCloseTo(30, 5);
    expect(moved[4]).toBeCloseTo(40 / 1.2, 5);
    await page.keyboard.press("Shift+L");
    expect((await pose(page))[1]).not.toBeCloseTo(Number(moved[1]), 3);
    await page.keyboard.press("a");
    const framed = await pose(page);
    const picture = await Picture.ofViewport(page);
    const view = { ...poses.persp, target: framed.slice(1, 4) as unknown as Vec3, distance: Number(framed[4]), azimuth: 45, elevation: 30 };
    for (const p of arc) {
      const at = place(picture, view, p);
      expect(at.x > 0 && at.x < picture.width && at.y > 0 && at.y < picture.height).toBe(true);
    }
  });

  test("frames what is selected with F", async () => {
    const two: SceneInput = { ...plain, trails: [plain.trails[0], { ...plain.trails[0], name: "far", points: arc.map(([x, y, z]) => [x + 100, y, z] as Vec3) }] };
    const page = await browser.open(two, { hash: "select=1" });
    await page.keyboard.press("f");
    expect(Number((await pose(page))[1])).toBeCloseTo(100, 0);
  });
});

describe("the pointer", () => {
  test("over a sample shows object, frame, position and speed", async () => {
    const page = await browser.open({ ...plain, fps: 10 }, { hash: `${bare}&${poseHash(poses.front)}` });
    const picture = await Picture.ofViewport(page);
    await pointAt(page, place(picture, poses.front, arc[6]));
    const text = await page.locator(".tooltip").textContent();
    const speed = (Math.hypot(...arc[7].map((c, k) => c - arc[6][k])) + Math.hypot(...arc[6].map((c, k) => c - arc[5][k]))) / 2;
    expect(text).toContain("arc");
    expect(text).toContain("Frame 7");
    const numbers = (text ?? "").match(/-?\d+(\.\d+)?/g)!.map(Number);
    for (const expected of [...arc[6], 10 * speed, speed])
      expect(numbers.some((n) => Math.abs(n - expected) < 1e-4 * (1 + Math.abs(expected)))).toBe(true);
    await pointAt(page, { x: 5, y: 5 });
    expect(await page.locator(".tooltip").isVisible()).toBe(false);
  });

  test("selects by a click, adds with Ctrl, and a drag selects nothing", async () => {
    const second = arc.map(([x, y, z]) => [x, y - 5, z] as Vec3);
    const page = await browser.open({ ...plain, trails: [plain.trails[0], { ...plain.trails[0], name: "low", points: second }] },
      { hash: `${bare}&ghost=1&${poseHash(poses.front)}` });
    const picture = await Picture.ofViewport(page);
    const box = await viewportBox(page);
    const click = async (p: Vec3, modifiers: "Control"[] = []) => {
      const { x, y } = place(picture, poses.front, p);
      for (const key of modifiers) await page.keyboard.down(key);
      await page.mouse.click(box.x + x, box.y + y);
      for (const key of modifiers) await page.keyboard.up(key);
      return (await state(page)).get("select");
    };
    expect(await click(second[12])).toBe("1");
    expect(await click(arc[12], ["Control"])).toBe(null); // both: as in the beginning
    expect(await click(second[12], ["Control"])).toBe("0");
    const { x, y } = place(picture, poses.front, second[12]);
    await page.mouse.move(box.x + x, box.y + y);
    await page.mouse.down();
    await page.mouse.move(box.x + x + 40, box.y + y);
    await page.mouse.up();
    expect((await state(page)).get("select")).toBe("0");
  });
});

describe("a relative view", () => {
  test("subtracts the other object's positions", async () => {
    const offset = arc.map(([x, y, z], i) => [x + Math.sin(i / 4), y + i / 8, z] as Vec3);
    const page = await browser.open({ ...plain, trails: [plain.trails[0], { ...plain.trails[0], name: "other", points: offset }] },
      { hash: `${bare}&relative=0&hide=0&${poseHash({ ...poses.front, target: [0, 1, 0], distance: 12 })}` });
    const picture = await Picture.ofViewport(page);
    const view = { ...poses.front, target: [0, 1, 0] as Vec3, distance: 12 };
    expectDrawn(picture, offset.map((p, i) => place(picture, view, p.map((c, k) => c - arc[i][k]) as unknown as Vec3)), TEAL);
  });
});

describe("the whole picture", () => {
  test("a trail that is hidden is not drawn, and one that is shown alone is the only one", async () => {
    const low = { ...plain.trails[0], name: "low", points: arc.map(([x, y, z]) => [x, y - 5, z] as Vec3) };
    const drawn = async (hash: string) => {
      const page = await browser.open({ ...plain, trails: [plain.trails[0], low] }, { hash: `${bare}&ghost=1&${hash}&${poseHash(poses.front)}` });
      const picture = await Picture.ofViewport(page);
      return [arc, low.points].map((points) => near(picture.at(place(picture, poses.front, points[9])), TEAL));
    };
    expect(await drawn("mode=0")).toEqual([true, true]);
    expect(await drawn("hide=0")).toEqual([false, true]);
    expect(await drawn("solo=0")).toEqual([true, false]);
  });

  test("the saved picture is the viewport's", async () => {
    const page = await browser.open(plain, { hash: `${bare}&${poseHash(poses.persp)}` });
    await settle(page);
    const { name, content } = await savedBy(page, () => page.keyboard.press("Shift+P"));
    expect(name).toMatch(/\.png$/);
    const picture = Picture.read(content);
    expectDrawn(picture, arc.map((p) => place(picture, poses.persp, p)), TEAL);
  });

  test("what only turns stands on a ground, says so, and its rounding is no spacing", async () => {
    const turning: SceneInput = {
      range: [1, 24], trails: [{ name: "wheel", points: points(24, (i): Vec3 => [0.5 + 1e-8 * (i % 3), 3, 2]), keyTimes: [1, 24] }],
    };
    const pose: Pose = { view: "top", target: [0.5, 3, 2], distance: 4, azimuth: 0, elevation: 90 };
    const page = await browser.open(turning, { hash: `${bare}&${poseHash(pose)}`, before: writeDown });
    const picture = await Picture.ofViewport(page);
    const ground = picture.at(project(pose, [1.13, 3, 2.53], picture.width, picture.height));
    expect(near(ground, picture.at({ x: 2, y: 2 }), 2)).toBe(false);
    const texts = (await written(page)).join("\n");
    expect(texts).toContain("nothing travels: what has keys may only turn");
    expect(texts).not.toMatch(/\de-\d/);
  });

  test("a thousand trails of a thousand samples are drawn plainly while they turn", async () => {
    const trails = Array.from({ length: 1000 }, (_, t) => ({
      ...plain.trails[0], name: `o${t}`,
      points: Array.from({ length: 1000 }, (_, i) => [(t % 32) * 4 + Math.sin(i / 50), Math.cos(i / 30), Math.floor(t / 32) * 4] as Vec3),
    }));
    const page = await browser.open({ range: [1, 1000], trails }, { hash: "select=" });
    const stride = () => page.locator(".viewport").getAttribute("data-stride");
    expect(Number(await stride())).toBeGreaterThan(1);
    await page.keyboard.press("l");
    expect(Number(await stride())).toBeGreaterThan(1);
    const picture = await Picture.ofViewport(page);
    expect(picture.pixelsOf(TEAL).length).toBeGreaterThan(3000);
  });
});
