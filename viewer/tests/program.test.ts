// The page that the program writes: it shows what the program's other files hold.

import { readFileSync, statSync } from "node:fs";
import type { Page } from "playwright-core";
import { describe, expect, test } from "vitest";
import type { App } from "../src/model/app";
import { graphOf } from "../src/model/graphs";
import { Motion } from "../src/model/motion";
import type { Vec3 } from "../src/source/trail";
import { useBrowser } from "./support/browser";
import { temporaryFolder } from "./support/files";
import { distanceTo, Picture, poseHash, project, type Point, type Pose } from "./support/picture";
import { example, run } from "./support/program";

const browser = useBrowser();
const file = temporaryFolder();
const TEAL: Vec3 = [38, 191, 166];
const SCENES = ["arm.ma", "walk.bvh", "robot.fbx", "crane.gltf"];

interface Json {
  fps: number;
  up_axis: "y" | "z";
  trails: { name: string; source: string; start_frame: number; frame_step: number; points: Vec3[]; colors: Vec3[];
    key_times: number[]; key_points: Vec3[]; color_mode: number;
    measures: Record<string, number | null> & { pops: { frame: number; score: number }[] } }[];
}

function written(scene: string, ...options: string[]): Json {
  run("trails", example(scene), ...options, "--out", file("x.html"), "--out", file("x.json"), "--out", file("x.svg"));
  return JSON.parse(readFileSync(file("x.json"), "utf8")) as Json;
}

describe("the page of a scene", () => {
  test.each(SCENES)("holds every sample, colour and key of the JSON file: %s", async (scene) => {
    const json = written(scene);
    const page = await browser.openFile(file("x.html"));
    const held = await page.evaluate(() =>
      window.vantorelixViewer.motion.trails.map((t) => ({
        name: t.name, source: t.source, start: t.startFrame, step: t.frameStep, mode: t.colorMode,
        points: [...t.points], colors: [...t.colors], keyTimes: [...t.keyTimes], keyPoints: [...t.keyPoints],
      })));
    expect(held.length).toBe(json.trails.length);
    held.forEach((trail, index) => {
      const wanted = json.trails[index];
      expect([trail.name, trail.source, trail.start, trail.step, trail.mode]).toEqual(
        [wanted.name, wanted.source, wanted.start_frame, wanted.frame_step, wanted.color_mode]);
      expect(trail.keyTimes).toEqual(wanted.key_times);
      const size = Math.max(...[0, 1, 2].map((k) => Math.max(...wanted.points.map((p) => p[k])) - Math.min(...wanted.points.map((p) => p[k]))));
      const worst = (got: number[], want: number[]) => got.reduce((most, value, i) => Math.max(most, Math.abs(value - want[i])), 0);
      expect(trail.points.length).toBe(3 * wanted.points.length);
      expect(worst(trail.points, wanted.points.flat())).toBeLessThanOrEqual(2e-10 * size);
      expect(worst(trail.keyPoints, wanted.key_points.flat())).toBeLessThanOrEqual(2e-10 * size);
      expect(worst(trail.colors, wanted.colors.flat().map((c) => 255 * c))).toBeLessThanOrEqual(0.5 + 1e-9);
    });
  });
});

describe("the graphs of a scene", () => {
  test.each(SCENES)("reach what the JSON file says: %s", async (scene) => {
    const json = written(scene);
    const page = await browser.openFile(file("x.html"));
    const { scene: held, trails } = await page.evaluate(() => {
      const { scene, motion } = window.vantorelixViewer;
      return { scene, trails: motion.trails.map((trail) => ({ ...trail, points: [...trail.points] })) };
    });
    const motion = new Motion(trails.map((trail) => ({ ...trail, points: Float64Array.from(trail.points) })));
    const top = (values: Float64Array) => Math.max(0, ...values.filter(Number.isFinite));
    json.trails.forEach(({ name, measures }, trail) => {
      const [speed, acceleration, jerk, curvature, pops, sliding] =
        (["speed", "acceleration", "jerk", "curvature", "pops", "sliding"] as const).map((graph) =>
          graphOf({ scene: held, motion } as App, graph).values(trail));
      const near = (got: number, wanted: number | null, what: string) =>
        expect(Math.abs(got - (wanted ?? 0)), `${name} ${what}: ${got} instead of ${wanted}`).toBeLessThanOrEqual(1e-4 * Math.abs(wanted ?? 0) + 1e-4);
      near(top(speed), measures.top_speed, "speed");
      near(top(acceleration), measures.top_acceleration, "acceleration");
      near(top(jerk), measures.top_jerk, "jerk");
      near(top(curvature), measures.top_curvature, "curvature");
      near(top(pops), measures.top_pop, "pops");
      const touching = sliding.filter(Number.isFinite);
      near(touching.length / sliding.length, measures.contact_share, "contact");
      if (measures.slide_share !== null)
        near(touching.filter((value) => value > 0.3 * measures.figure_height!).length / touching.length, measures.slide_share, "sliding");
    });
  });
});

test("the page lists the measures of the JSON file", async () => {
  const json = written("walk.bvh");
  const page = await browser.openFile(file("x.html"), { hash: "select=0" });
  await page.getByRole("button", { name: "Measures" }).click();
  const rows = await page.getByRole("dialog", { name: "Measures" }).getByRole("row").allTextContents();
  const { top_speed: value, top_speed_frame: frame } = json.trails[0].measures;
  expect(rows).toContain(`Top speed${Number(value!.toPrecision(4))} frame ${frame}units per second`);
  expect(rows.length).toBe(1 + Object.keys(json.trails[0].measures).filter((name) => !/_frame$|^(holds|pops|contacts)$/.test(name)).length);
});

const turned = (p: Vec3, up: string): Vec3 => (up === "z" ? [p[0], p[2], -p[1]] : p);

/** Points along the lines of an SVG file, its pixels. */
async function svgLine(page: Page): Promise<Point[]> {
  return page.evaluate(() =>
    [...document.querySelectorAll<SVGPathElement>("g:has(> title) path[stroke^='#']")].flatMap((path) => {
      const length = path.getTotalLength();
      return Array.from({ length: Math.ceil(length / 2) + 1 }, (_, i) => {
        const { x, y } = path.getPointAtLength(Math.min(2 * i, length));
        return { x, y };
      });
    }));
}

const box = (points: Point[]) => {
  const xs = points.map((p) => p.x);
  const ys = points.map((p) => p.y);
  return { left: Math.min(...xs), right: Math.max(...xs), top: Math.min(...ys), bottom: Math.max(...ys) };
};

describe("a view", () => {
  const views = (["front", "side", "top", "persp"] as const).flatMap((view) => [[view, "arm.ma"], [view, "crane.gltf"]] as const);
  test.each(views)("looks like the program's picture: %s of %s", async (view, scene) => {
    const select = scene === "arm.ma" ? ["--select", "*wrist*"] : ["--select", "*"];
    const json = written(scene, ...select, "--color-mode", "standard", "--no-dots", "--line-width", "3", "--view", view);
    const points = json.trails.flatMap((trail) => trail.points.map((p) => turned(p, json.up_axis)));
    // Both look at what moves.
    const reach = (ps: Vec3[]) => Math.max(...[0, 1, 2].map((k) => Math.max(...ps.map((p) => p[k])) - Math.min(...ps.map((p) => p[k]))));
    const moving = json.trails.filter((trail) => reach(trail.points) > 1e-4).flatMap((trail) => trail.points.map((p) => turned(p, json.up_axis)));
    const edge = (pick: (...values: number[]) => number) => [0, 1, 2].map((k) => pick(...moving.map((p) => p[k])));
    const [low, high] = [edge(Math.min), edge(Math.max)];
    const target = low.map((l, k) => (l + high[k]) / 2) as unknown as Vec3;
    const distance = 1.7 * Math.hypot(...high.map((h, k) => h - low[k]));
    const opening = await browser.openFile(file("x.html"));
    const { azimuth, elevation } =
      view === "persp" ? await opening.evaluate(() => window.vantorelixViewer.store.state.camera)
        : { azimuth: view === "side" ? 90 : 0, elevation: view === "top" ? 90 : 0 };
    const pose: Pose = { view, target, distance, azimuth, elevation };
    const page = await browser.openFile(file("x.html"), { hash: `keys=0&labels=0&boxes=0&bones=0&ghost=1&select=0-${json.trails.length - 1}&${poseHash(pose)}` });
    const picture = await Picture.ofViewport(page);
    const drawn = picture.pixelsOf(TEAL, 30);

    // The two pictures differ in scale and place only: the box around the same points says how.
    const svg = await svgLine(await svgPage());
    const here = points.map((p) => project(pose, p, picture.width, picture.height));
    const [from, to] = [box(svg), box(here)];
    const wide = from.right - from.left > from.bottom - from.top;
    const scale = wide ? (to.right - to.left) / (from.right - from.left) : (to.bottom - to.top) / (from.bottom - from.top);
    const moved = svg.map((p) => ({
      x: (p.x - (from.left + from.right) / 2) * scale + (to.left + to.right) / 2,
      y: (p.y - (from.top + from.bottom) / 2) * scale + (to.top + to.bottom) / 2,
    }));
    const markers = json.trails.map((trail) => project(pose, turned(trail.points[0], json.up_axis), picture.width, picture.height));
    const clear = (p: Point) => distanceTo(markers, p) > 12;
    expect(moved.filter(clear).length).toBeGreaterThan(30);
    expect(moved.filter((p) => clear(p) && distanceTo(drawn, p) > 2.5).slice(0, 3)).toEqual([]);
    expect(drawn.filter((p) => clear(p) && distanceTo(moved, p) > 4).slice(0, 3)).toEqual([]);
  });

  async function svgPage(): Promise<Page> {
    const page = await browser.blank();
    await page.goto(`file://${file("x.svg")}`);
    return page;
  }
});

test("a page is at most 30 bytes a sample, beside the page itself, with a key at every frame", () => {
  const json = written("walk.bvh");
  const samples = json.trails.reduce((sum, trail) => sum + trail.points.length, 0);
  const page = statSync(process.env.VANTORELIX_PAGE ?? "dist/index.html").size;
  const perTrail = 1300; // what a trail's own description may take
  expect((statSync(file("x.html")).size - page - perTrail * json.trails.length) / samples).toBeLessThan(30);
});
