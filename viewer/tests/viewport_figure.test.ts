// Pixels of what is lit and dimmed, of names, bones, dots, the window in time and onion skins.

import type { Page } from "playwright-core";
import { describe, expect, test } from "vitest";
import type { Vec3 } from "../src/source/trail";
import { useBrowser } from "./support/browser";
import { near, Picture, poseHash, project, type Point, type Pose } from "./support/picture";
import type { SceneInput, TrailInput } from "./support/trails";

const browser = useBrowser();

const TEAL: Vec3 = [38, 191, 166];
const BACKGROUND: Vec3 = [245, 246, 248];
const mixed = (color: Vec3, part: number) => color.map((c, k) => c * part + BACKGROUND[k] * (1 - part)) as unknown as Vec3;

const front: Pose = { view: "front", target: [0, 4, 0], distance: 30, azimuth: 0, elevation: 0 };
const at = (picture: Picture, p: Vec3): Point => project(front, p, picture.width, picture.height);
/** Without a grid behind it. */
const hash = (more: string) => `${more}&${poseHash(front)}`;

/** Runs across the picture, at a height. */
const across = (name: string, y: number, more: Partial<TrailInput> = {}): TrailInput => ({
  name, colorMode: 0, lineWidth: 3, showDots: false, points: Array.from({ length: 25 }, (_, i) => [i - 12, y, 0] as Vec3), ...more,
});
const two = (more: Partial<TrailInput> = {}): SceneInput => ({ range: [1, 25], trails: [across("low", 7.23, more), across("high", 9.37, more)] });

/** The colour of the line of a trail, off the grid's lines. */
const lineAt = (picture: Picture, y: number, x = 1.37) => picture.at(at(picture, [x, y, 0]));
const is = (color: Vec3, expected: Vec3) => near(color, expected, 14);
const set = (page: Page, patch: object) => page.evaluate((p) => window.vantorelixViewer.store.set(p), patch as never);

describe("what is selected", () => {
  for (const mode of [0, 2, 3])
    test(`is lit in mode ${mode}, and the rest has a quarter of its strength`, async () => {
      const page = await browser.open(two({ keyTimes: [12], keyPoints: [[0, -3, 0]] }), { hash: hash(`keys=0&labels=0&mode=${mode}&frame=5&select=`) });
      const plain = lineAt(await Picture.ofViewport(page), 7.23);
      await page.evaluate(() => window.vantorelixViewer.store.set({ selected: new Set([1]) }));
      const picture = await Picture.ofViewport(page);
      expect(is(lineAt(picture, 9.37), plain)).toBe(true);
      expect(is(lineAt(picture, 7.23), mixed(plain, 0.25))).toBe(true);
      await page.evaluate(() => window.vantorelixViewer.store.set({ selected: new Set([0, 1]) }));
      const both = await Picture.ofViewport(page);
      expect([lineAt(both, 7.23), lineAt(both, 9.37)].map((color) => is(color, plain))).toEqual([true, true]);
    });

  test("is lit above what is dimmed, also where that is nearer", async () => {
    const cross = (z: number): TrailInput => ({ ...across("nearer", 0), points: Array.from({ length: 25 }, (_, i) => [1.37, i - 8, z] as Vec3) });
    const page = await browser.open({ range: [1, 25], trails: [across("low", 7.23), cross(1)] }, { hash: hash("keys=0&labels=0&select=0") });
    expect(is(lineAt(await Picture.ofViewport(page), 7.23, 1.37 * 30 / 29), TEAL)).toBe(true);
  });

  test("keeps its width and stands out in plain drawing", async () => {
    const many = Array.from({ length: 30 }, (_, t) => across(`o${t}`, -3 + 0.43 * t, {
      points: Array.from({ length: 1000 }, (_, i) => [i / 42 - 12, -3 + 0.43 * t, 0] as Vec3),
    }));
    const page = await browser.open({ range: [1, 1000], trails: many }, { hash: hash("keys=0&labels=0&select=20&bones=0") });
    await set(page, { playing: true });
    await page.waitForFunction(() => document.querySelector(".viewport[data-drawn=moving]"));
    await page.waitForTimeout(500);
    const shot = Picture.read(await page.locator(".viewport").screenshot());
    const rows = (y: number) => [-2, -1, 0, 1, 2].filter((dy) => {
      const p = at(shot, [1.37, y, 0]);
      return near(shot.at({ x: p.x, y: p.y + dy }), TEAL, 40);
    }).length;
    expect(rows(-3 + 0.43 * 20)).toBeGreaterThanOrEqual(2);
    expect([5, 12, 19, 21].map((t) => rows(-3 + 0.43 * t))).toEqual([0, 0, 0, 0]);
  });

  test("has key numbers, and others have none then", async () => {
    const scene = two({ keyTimes: [19] });
    const ink = async (more: string) => {
      const picture = await Picture.ofViewport(await browser.open(scene, { hash: hash(more) }));
      return [7.23, 9.37].map((y) => {
        const p = at(picture, [6, y, 0]);
        let dark = 0;
        for (let x = 10; x < 26; ++x) for (let dy = -18; dy < -5; ++dy) if (picture.at({ x: p.x + x, y: p.y + dy })[0] < 150) ++dark;
        return dark > 4;
      });
    };
    expect(await ink("select=1")).toEqual([false, true]);
    expect(await ink("select=")).toEqual([true, true]);
    expect(await ink("select=0-1&line=0&dots=0")).toEqual([false, false]);
  });
});

/** The texts that the picture's canvas was given, and where. */
async function texts(page: Page): Promise<{ text: string; x: number; y: number; width: number }[]> {
  await page.evaluate(() => {
    const drawn: unknown[] = ((window as unknown as { texts: unknown[] }).texts = []);
    const draw = CanvasRenderingContext2D.prototype.fillText;
    CanvasRenderingContext2D.prototype.fillText = function (this: CanvasRenderingContext2D, text: string, x: number, y: number) {
      if (this.canvas.className === "overlay" && this.font.includes("600 13px")) drawn.push({ text, x, y, width: this.measureText(text).width });
      draw.call(this, text, x, y);
    };
  });
  await page.waitForTimeout(250);
  await page.evaluate(() => {
    (window as unknown as { texts: unknown[] }).texts.length = 0;
    const { store } = window.vantorelixViewer;
    store.set({ camera: { ...store.state.camera } }); // draws it again
    return new Promise((drawn) => requestAnimationFrame(() => requestAnimationFrame(drawn)));
  });
  return page.evaluate(() => (window as unknown as { texts: { text: string; x: number; y: number; width: number }[] }).texts);
}

describe("names", () => {
  test("of selected trails avoid each other and the edges, and are told apart", async () => {
    const trails = Array.from({ length: 24 }, (_, t) => across("hand", 4, {
      source: `|rig|figure_with_a_long_name_${t}|hand`, points: Array.from({ length: 25 }, (_, i) => [11.5 + 0.1 * (t % 3) + i / 200, 3 + t / 12, 0] as Vec3),
    }));
    const page = await browser.open({ range: [1, 25], trails: [...trails, across("other", 7)] }, { hash: hash("select=0-23") });
    const drawn = await texts(page);
    const box = (await page.locator(".viewport").boundingBox())!;
    expect(drawn.length).toBeGreaterThan(4);
    expect(new Set(drawn.map(({ text }) => text)).size).toBeGreaterThan(1);
    expect(drawn.every(({ text }) => text !== "hand" && text.endsWith("hand"))).toBe(true);
    for (const [i, a] of drawn.entries()) {
      expect([a.x >= 0, a.x + a.width <= box.width, a.y >= 10, a.y <= box.height]).toEqual([true, true, true, true]);
      for (const b of drawn.slice(i + 1))
        expect(a.x + a.width <= b.x || b.x + b.width <= a.x || Math.abs(a.y - b.y) >= 12).toBe(true);
    }
  });
});

describe("bones", () => {
  const BONE: Vec3 = [77, 89, 104];
  const still = (name: string, p: Vec3, parent?: string): TrailInput =>
    ({ ...across(name, 0), points: Array.from({ length: 25 }, (_, i) => [p[0], p[1] + i / 24, p[2]] as Vec3), ...(parent ? { parent: `|${parent}` } : {}) });
  const rig: SceneInput = { range: [1, 25], trails: [still("hips", [-5, 5, 0]), still("chest", [0, 9, 0], "hips"), still("hand", [5, 6, 0], "chest")] };
  const middle = (a: Vec3, b: Vec3): Vec3 => [(a[0] + b[0]) / 2, (a[1] + b[1]) / 2, 0];
  const [hips, chest, hand]: Vec3[] = [[-5, 5, 0], [0, 9, 0], [5, 6, 0]];
  const drawn = (picture: Picture, p: Vec3) => {
    const { x, y } = at(picture, p);
    return [-1, 0, 1].some((dy) => near(picture.at({ x, y: y + dy }), BONE, 60));
  };

  test("run from each object to the one above it at the current frame", async () => {
    const page = await browser.open(rig, { hash: hash("keys=0&labels=0") });
    const up = (p: Vec3): Vec3 => [p[0], p[1] + 1, p[2]];
    const first = await Picture.ofViewport(page);
    expect([middle(hips, chest), middle(chest, hand), middle(hips, hand)].map((p) => drawn(first, p))).toEqual([true, true, false]);
    await set(page, { frame: 25 });
    const last = await Picture.ofViewport(page);
    expect([up(middle(hips, chest)), middle(hips, chest)].map((p) => drawn(last, p))).toEqual([true, false]);
  });

  test("skip what is hidden, and can be switched off", async () => {
    const page = await browser.open(rig, { hash: hash("keys=0&labels=0&hide=1") });
    const skipped = await Picture.ofViewport(page);
    expect([middle(hips, chest), middle(hips, hand)].map((p) => drawn(skipped, p))).toEqual([false, true]);
    await page.getByRole("checkbox", { name: "Bones" }).uncheck();
    expect(drawn(await Picture.ofViewport(page), middle(hips, hand))).toBe(false);
    expect(page.url()).toContain("bones=0");
  });

  test("come again as onion skins, before and after, weaker with their distance", async () => {
    const moving = rig.trails.map((trail) => ({ ...trail, points: trail.points.map((p, i) => [p[0], p[1] + i / 6, p[2]] as Vec3) }));
    const page = await browser.open({ range: [1, 25], trails: moving }, { hash: hash("keys=0&labels=0&line=0&frame=13&onion=frames&onionEvery=4&onionBefore=2&onionAfter=1&select=") });
    const picture = await Picture.ofViewport(page);
    const away = (frame: number) => {
      const [x, y] = middle(chest, hand);
      const spot = at(picture, [x, y + (frame - 1) / 24 + (frame - 1) / 6, 0]);
      return Math.max(...[-1, 0, 1].map((dy) => {
        const color = picture.at({ x: spot.x, y: spot.y + dy });
        return Math.hypot(...color.map((c, k) => c - BACKGROUND[k]));
      }));
    };
    const [none, far, before, now, after, beyond] = [1, 5, 9, 13, 17, 21].map(away);
    expect([far > none + 25, before > far + 20, now > before, after > none + 25, beyond < 40]).toEqual([true, true, true, true, true]);
    await page.getByRole("group", { name: "Onion skins", exact: true }).getByRole("radio", { name: "Off" }).check();
    expect((await Picture.ofViewport(page)).at(at(picture, [2.5, 7.5 + 8 / 24 + 8 / 6, 0]))[0]).toBeGreaterThan(200);
  });

  test("are rings of the selected objects where nothing hangs from anything", async () => {
    const page = await browser.open(two(), { hash: hash("keys=0&labels=0&frame=13&onion=frames&onionEvery=5&select=1&onionBefore=1&onionAfter=1") });
    const ring = (picture: Picture, frame: number, y: number) => {
      const p = at(picture, [frame - 13, y, 0]);
      return [-6, 6].every((dy) => [-1, 0, 1].some((more) => !near(picture.at({ x: p.x, y: p.y + dy + more }), BACKGROUND, 50)));
    };
    const picture = await Picture.ofViewport(page);
    expect([8, 13, 18, 23, 3].map((frame) => ring(picture, frame, 9.37))).toEqual([true, true, true, false, false]);
    expect([8, 18].map((frame) => ring(picture, frame, 7.23))).toEqual([false, false]);
  });
});

describe("dots", () => {
  const note = async (page: Page) => {
    await page.evaluate(() => {
      const kept: string[] = ((window as unknown as { notes: string[] }).notes = []);
      const draw = CanvasRenderingContext2D.prototype.fillText;
      CanvasRenderingContext2D.prototype.fillText = function (this: CanvasRenderingContext2D, text: string, x: number, y: number) {
        kept.push(text);
        draw.call(this, text, x, y);
      };
      window.vantorelixViewer.store.set({ search: "-" , frame: 2 });
    });
    await Picture.ofViewport(page);
    return page.evaluate(() => (window as unknown as { notes: string[] }).notes.join(" "));
  };
  const dense = (step: number, count: number): SceneInput => ({ range: [1, 25], trails: [across("a", 7.23, {
    showDots: true, showLine: false, pointSize: 4, frameStep: step, points: Array.from({ length: count }, (_, i) => [i * 24 / (count - 1) - 12, 7.23, 0] as Vec3),
  })] });
  const dotAt = (picture: Picture, part: number) => near(picture.at(at(picture, [24 * part - 12, 7.23, 0])), TEAL, 20);

  test("lie on whole frames only, at four samples a frame", async () => {
    const page = await browser.open(dense(0.25, 97), { hash: hash("keys=0&labels=0") });
    const picture = await Picture.ofViewport(page);
    expect([8, 9, 10, 11, 12].map((i) => dotAt(picture, i / 96))).toEqual([true, false, false, false, true]);
    expect(await note(page)).not.toContain("a dot every");
  });

  test("are thinned where they would touch, and the note says so", async () => {
    // 0.24 units a frame are 4.9 pixels in the 620 of the viewport's height: two frames are enough for dots of 4.
    const page = await browser.open({ ...dense(1, 241), range: [1, 241] }, { hash: hash("keys=0&labels=0") });
    const picture = await Picture.ofViewport(page);
    const scale = at(picture, [1, 0, 0]).x - at(picture, [0, 0, 0]).x;
    const every = [1, 2, 5, 10].find((n) => n * 0.1 * scale >= 5)!;
    expect(every).toBeGreaterThan(1);
    const frames = Array.from({ length: 40 }, (_, i) => 60 + i);
    expect(frames.filter((frame) => dotAt(picture, (frame - 1) / 240))).toEqual(frames.filter((frame) => frame % every === 0));
    expect(await note(page)).toContain(`a dot every ${every} frames`);
  });
});

describe("a window in time", () => {
  test("shows the frames around the current one, fading, and follows it", async () => {
    const page = await browser.open(two(), { hash: hash("keys=0&labels=0&select=&window=1&windowBefore=4&windowAfter=2&frame=13") });
    const seen = (picture: Picture) => Array.from({ length: 24 }, (_, i) => i + 1)
      .filter((frame) => !near(lineAt(picture, 9.37, frame + 0.5 - 13), BACKGROUND, 14) && !near(lineAt(picture, 9.37, frame + 0.5 - 13), [211, 216, 224], 14));
    const picture = await Picture.ofViewport(page);
    expect(seen(picture)).toEqual([9, 10, 11, 12, 13, 14]);
    const strength = (x: number) => BACKGROUND[0] - lineAt(picture, 9.37, x)[0];
    expect(strength(-1.2)).toBeGreaterThan(strength(-2.5));
    expect(strength(-2.5)).toBeGreaterThan(strength(-3.6));
    expect(strength(-3.6)).toBeGreaterThan(20);
    await set(page, { frame: 20 });
    expect(seen(await Picture.ofViewport(page))).toEqual([16, 17, 18, 19, 20, 21]);
    await page.getByRole("checkbox", { name: "Only around the current frame" }).uncheck();
    expect(seen(await Picture.ofViewport(page)).length).toBe(24);
  });

  test("is all that can be pointed at", async () => {
    const page = await browser.open(two(), { hash: hash("keys=0&labels=0&select=&window=1&windowBefore=4&windowAfter=2&frame=13") });
    const picture = await Picture.ofViewport(page);
    const box = (await page.locator(".viewport").boundingBox())!;
    const over = async (frame: number) => {
      const { x, y } = at(picture, [frame - 13, 9.37, 0]);
      await page.mouse.move(box.x + x, box.y + y);
      await page.evaluate(() => new Promise((drawn) => requestAnimationFrame(() => requestAnimationFrame(drawn))));
      return page.evaluate(() => window.vantorelixViewer.store.state.hover);
    };
    expect(await over(14)).toEqual({ trail: 1, sample: 13 });
    expect(await over(20)).toBe(null);
  });
});
