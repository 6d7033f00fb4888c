// How the page answers to pointer and keys, wherever these go.

import type { Page } from "playwright-core";
import { describe, expect, test } from "vitest";
import type { Vec3 } from "../src/source/trail";
import { useBrowser } from "./support/browser";
import { Picture, poseHash, project, type Point, type Pose } from "./support/picture";
import { expectState, press, stateOf } from "./support/read";
import { figures } from "./support/scenes";
import type { SceneInput } from "./support/trails";

const browser = useBrowser();

const views: Record<string, Pose> = {
  persp: { view: "persp", target: [0, 0, 0], distance: 40, azimuth: 0, elevation: 20 },
  front: { view: "front", target: [0, 0, 0], distance: 30, azimuth: 0, elevation: 0 },
  side: { view: "side", target: [0, 0, 0], distance: 30, azimuth: 90, elevation: 0 },
  top: { view: "top", target: [0, 0, 0], distance: 30, azimuth: 0, elevation: 90 },
};

/** Two lines of three samples each that lead away from all axes, the second behind the first, and one that is hidden. */
const line = (name: string, x: number, z: number) => ({
  name, points: [-1, 0, 1].map((t): Vec3 => [x + 8 * t, 4 * t, z + 6 * t]), keyTimes: [], ghost: true,
});
const lines = (): SceneInput => ({ range: [1, 3], trails: [line("front", 0, 2), line("behind", 0, -2), line("hidden", 0, 6)] });
const bare = "keys=0&labels=0&select=&hide=2";

/** The point between two samples, as far as `t` says. */
const between = (points: Vec3[], from: number, t: number) =>
  points[from].map((c, k) => c + t * (points[from + 1][k] - c)) as unknown as Vec3;

async function opened(scene: SceneInput, view: Pose, hash = bare) {
  const page = await browser.open(scene, { hash: `${hash}&${poseHash(view)}` });
  const { width, height } = await Picture.ofViewport(page);
  const box = (await page.locator(".viewport").boundingBox())!;
  const at = (p: Vec3): Point => {
    const { x, y } = project(view, p, width, height);
    return { x: box.x + x, y: box.y + y };
  };
  return { page, at, box };
}

const hoverAt = async (page: Page, { x, y }: Point) => {
  await page.mouse.move(x, y);
  return stateOf(page, "hover");
};

describe("the pointer hits lines", () => {
  for (const [name, view] of Object.entries(views))
    test(`between their samples, in the ${name} view`, async () => {
      const scene = lines();
      const { page, at } = await opened(scene, view);
      const { points } = scene.trails[0];
      expect(await hoverAt(page, at(between(points, 1, 0.3)))).toEqual({ trail: 0, sample: 1 });
      expect(await hoverAt(page, at(between(points, 1, 0.7)))).toEqual({ trail: 0, sample: 2 });
      const beside = at(between(points, 0, 0.3));
      expect(await hoverAt(page, { x: beside.x, y: beside.y + 60 })).not.toEqual({ trail: 0, sample: 0 });
    });

  test("of which both ends are out of sight", async () => {
    const scene: SceneInput = { range: [1, 2], trails: [{ name: "long", points: [[-500, 0, 0], [900, 0, 0]], ghost: true }] };
    for (const view of [{ ...views.persp, distance: 5 }, { ...views.front, distance: 2 }]) {
      const { page, at } = await opened(scene, view);
      expect(await hoverAt(page, at([0.1, 0, 0]))).toEqual({ trail: 0, sample: 0 });
    }
  });

  test("that begin behind the reader", async () => {
    const scene: SceneInput = { range: [1, 2], trails: [{ name: "through", points: [[1, 0, 100], [1, 0, -20]], ghost: true }] };
    const { page, at } = await opened(scene, views.persp);
    expect(await hoverAt(page, at([1, 0, -5]))).toEqual({ trail: 0, sample: 1 });
  });

  test("in front first, and the hidden ones never", async () => {
    const scene = lines();
    for (const trail of scene.trails) trail.points = trail.points.map(([x, , z]) => [x, x / 2, z > 5 ? 6 : z] as Vec3);
    scene.trails = [-4, 3, 6].map((z, i) => ({ ...scene.trails[i], points: [[-8, 0, z], [8, 0, z]] }));
    const { page, at } = await opened(scene, views.front);
    expect(await hoverAt(page, at([-4, 0, 0]))).toEqual({ trail: 1, sample: 0 });
    const near = at([-4, 0, 0]);
    expect(await hoverAt(page, { x: near.x, y: near.y + 3 })).toEqual({ trail: 1, sample: 0 });
  });

  test("only at their samples where no line is drawn", async () => {
    const scene = lines();
    const { page, at } = await opened(scene, views.front, `${bare}&line=0`);
    const { points } = scene.trails[0];
    expect(await hoverAt(page, at(between(points, 1, 0.5)))).toBe(null);
    expect(await hoverAt(page, at(points[2]))).toMatchObject({ sample: 2 });
  });
});

describe("a box", () => {
  const rows = (): SceneInput => ({
    range: [1, 2], trails: [-4, 0, 4].map((y, i) => ({ name: `row${i}`, points: [[-9, y, 0], [9, y, 0]] as Vec3[], keyTimes: [] })),
  });
  const drag = async (page: Page, from: Point, to: Point, ...keys: string[]) => {
    for (const key of ["Shift", ...keys]) await page.keyboard.down(key);
    await page.mouse.move(from.x, from.y);
    await page.mouse.down();
    await page.mouse.move(to.x, to.y, { steps: 3 });
  };
  const drop = async (page: Page, ...keys: string[]) => {
    await page.mouse.up();
    for (const key of ["Shift", ...keys]) await page.keyboard.up(key);
  };

  test("selects what passes through it, without a sample inside, and moves no camera", async () => {
    const { page, at } = await opened(rows(), views.front, "keys=0&select=");
    const camera = await stateOf(page, "camera");
    await drag(page, at([-3, 6, 0]), at([2, -1, 0]));
    expect(await page.locator(".selecting").isVisible()).toBe(true);
    await drop(page);
    await expectState(page, "selected", [1, 2]);
    expect(await page.locator(".selecting").isVisible()).toBe(false);
    await drag(page, at([-3, -3, 0]), at([2, -5, 0]), "Control");
    await drop(page, "Control");
    await expectState(page, "selected", [0, 1, 2]);
    expect(await stateOf(page, "camera")).toEqual(camera);
  });

  test("is given up with Escape, and leaves out what is hidden", async () => {
    const { page, at } = await opened(rows(), views.front, "keys=0&select=0&hide=1");
    await drag(page, at([-3, 6, 0]), at([2, -6, 0]));
    await press(page, "Escape");
    await drop(page);
    await expectState(page, "selected", [0]);
    await drag(page, at([-3, 6, 0]), at([2, -6, 0]));
    await drop(page);
    await expectState(page, "selected", [0, 2]);
  });
});

describe("selecting", () => {
  test("nothing: by a click beside all trails, and by Escape", async () => {
    const { page, at, box } = await opened(lines(), views.front, "keys=0&select=0");
    await page.mouse.click(box.x + 5, box.y + 5);
    await expectState(page, "selected", []);
    const { x, y } = at(between(lines().trails[0].points, 0, 0.5));
    await page.mouse.click(x, y);
    expect(await stateOf(page, "selected")).toHaveLength(1);
    await press(page, "Escape");
    await expectState(page, "selected", []);
  });

  test("all that are shown: by Ctrl+A anywhere, but in text", async () => {
    const page = await browser.open(figures(), { hash: "hide=2&select=" });
    await page.locator(".timeline .track").click();
    await press(page, "Control+a");
    await expectState(page, "selected", [0, 1, 3]);
    await press(page, "Escape");
    await page.getByRole("searchbox").fill("hand");
    await press(page, "Control+a");
    await expectState(page, "selected", []);
  });
});

type SizeOfPage = { width: number; height: number };

describe("after a click of the pointer", () => {
  const targets: Record<string, string> = {
    "a button": "[data-command=next-key]", "the list": ".name-cell >> nth=1", "a toggle of the list": ".toggle >> nth=0",
    "the timeline": ".timeline .track", "a slider": "[data-setting=lineWidth]", "a box to check": "[data-setting=showKeys]",
    "the viewport": ".viewport", "the graph": ".plot",
  };
  for (const [name, selector] of Object.entries(targets))
    test(`on ${name}, Space plays and the arrows step`, async () => {
      const page = await browser.open(figures());
      await page.locator(selector).click();
      await page.evaluate(() => window.vantorelixViewer.store.set({ frame: 5 }));
      const others = async () => [await stateOf(page, "lineWidth"), await stateOf(page, "showKeys"), await stateOf(page, "selected"), await stateOf(page, "hidden")];
      const before = await others();
      await press(page, "ArrowRight", "ArrowRight", "ArrowLeft");
      await expectState(page, "frame", 6);
      await press(page, " ");
      await expectState(page, "playing", true);
      await press(page, " ");
      await expectState(page, "playing", false);
      expect(await others()).toEqual(before);
    });

  const openers: Record<string, [opener: string, opened: string, SizeOfPage?]> = {
    "the help": ["Help", "dialog.help"],
    "the measures": ["Measures", "dialog.measures"],
    "what a picture has": ["Picture options", "dialog.picture-options"],
    "a sheet": ["Objects", "#objects", { width: 390, height: 844 }],
  };
  for (const [name, [opener, opened, viewport]] of Object.entries(openers)) {
    const open = (hash = "") => browser.open(figures(), { hash, ...(viewport && { viewport }) });
    test(`on the button that opens ${name}, and Escape, Space plays`, async () => {
      const page = await open("select=0");
      await page.getByRole("button", { name: opener, exact: true }).click();
      expect(await page.locator(opened).isVisible()).toBe(true);
      await press(page, "Escape");
      expect(await page.locator(opened).isVisible()).toBe(false);
      await expectState(page, "selected", [0]);
      await press(page, " ");
      await expectState(page, "playing", true);
      expect(await page.locator(opened).isVisible()).toBe(false);
    });

    test(`not where the keyboard opened ${name}: there the focus goes back to the button, which Space presses`, async () => {
      const page = await open();
      await page.locator(".viewport").click();
      await page.getByRole("button", { name: opener, exact: true }).focus();
      await press(page, "Enter");
      expect(await page.locator(opened).isVisible()).toBe(true);
      await press(page, "Tab", "Escape");
      expect(await page.locator(opened).isVisible()).toBe(false);
      await press(page, " ");
      expect(await page.locator(opened).isVisible()).toBe(true);
      await expectState(page, "playing", false);
    });
  }

  test("on the list, and the help by its key, the arrows step", async () => {
    const page = await browser.open(figures());
    await page.locator(".name-cell").nth(1).click();
    await press(page, "?", "Escape", "ArrowRight", "ArrowDown");
    await expectState(page, "frame", 2);
  });

  test("a control that the keyboard reaches has its keys again", async () => {
    const page = await browser.open(figures());
    await page.locator("[data-setting=lineWidth]").click();
    const width = Number(await stateOf(page, "lineWidth"));
    await press(page, "Tab", "Shift+Tab", "ArrowRight");
    await expectState(page, "lineWidth", width + 0.5);
    await expectState(page, "frame", 1);
  });
});
