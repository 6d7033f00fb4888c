// What a page shows at first, scene by scene: of the examples, and of the real scenes beside the checkout where they are.

import { existsSync, readdirSync } from "node:fs";
import { join, resolve } from "node:path";
import type { Page } from "playwright-core";
import { afterAll, describe, expect, test } from "vitest";
import type { Vec3 } from "../src/source/trail";
import { useBrowser } from "./support/browser";
import { temporaryFolder } from "./support/files";
import { near, Picture, project, settle, type Point, type Pose } from "./support/picture";
import { example, run } from "./support/program";

const browser = useBrowser();
const file = temporaryFolder();

const SCENE = /\.(ma|bvh|fbx|gltf|glb)$/;
const scenesIn = (folder: string): string[] =>
  existsSync(folder) ? readdirSync(folder).filter((name) => SCENE.test(name)).map((name) => join(folder, name)) : [];

const REAL = resolve(process.env.VANTORELIX_DATA ?? "../../shared/data");
const examples = scenesIn(example("."));
const real = ["bvh", "fbx", "gltf", "ma"].flatMap((format) => scenesIn(join(REAL, format)));

interface Row {
  scene: string;
  moving: string;
  /** In percent of the viewport's width or height, whichever is more; by view. */
  persp: string;
  front: string;
  side: string;
  top: string;
  hidden: number;
  selected: string;
}
const table: Row[] = [];
afterAll(() => console.table(table));

interface Json {
  up_axis: "y" | "z";
  trails: { name: string; source: string; points: Vec3[] }[];
}

const extentOf = (points: readonly Vec3[]): number =>
  Math.max(0, ...[0, 1, 2].map((k) => points.reduce((most, p) => Math.max(most, p[k]), -Infinity) - points.reduce((least, p) => Math.min(least, p[k]), Infinity)));

/** The samples that move, as the JSON has them, with y up: of each trail that is not still beside all of them. */
function motionOf({ trails, up_axis }: Json): Map<number, Vec3[]> {
  const turned = trails.map(({ points }) => points.map(([x, y, z]): Vec3 => (up_axis === "z" ? [x, z, -y] : [x, y, z])));
  const wobbles = turned.map((points) => extentOf(points) > 2e-6 * Math.max(...points.flat().map(Math.abs)));
  const all = extentOf(turned.filter((_, i) => wobbles[i]).flat());
  return new Map(turned.map((points, i) => [i, points] as const).filter(([i, points]) => wobbles[i] && extentOf(points) > 1e-4 * all));
}

const axes = { persp: [0, 1, 2], front: [0, 1], side: [2, 1], top: [0, 2] } as const;

/** The larger part of the viewport's width or height between the outermost of the spots. Fails if one is outside. */
function filled(spots: readonly Point[], width: number, height: number): number {
  const range = (of: "x" | "y") => spots.reduce(([low, high], p) => [Math.min(low, p[of]), Math.max(high, p[of])], [Infinity, -Infinity]);
  const [[left, right], [top, bottom]] = [range("x"), range("y")];
  expect(Math.min(left, top, width - right, height - bottom)).toBeGreaterThanOrEqual(0);
  return Math.max((right - left) / width, (bottom - top) / height);
}

const poseOf = (page: Page) => page.evaluate(() => window.vantorelixViewer.store.state.camera) as Promise<Pose>;

/** Changes the page's state and waits until it is drawn. */
async function change(page: Page, patch: Record<string, unknown>): Promise<void> {
  await page.evaluate((values) => window.vantorelixViewer.store.set(values), patch);
  await settle(page);
}

/** How many of the lit samples look different where boxes are drawn, in these two pictures. */
async function differentSamples(page: Page, lit: readonly Vec3[], pose: Pose): Promise<number> {
  await change(page, { showStatics: false, showKeys: false, showLabels: false });
  const without = await Picture.ofViewport(page);
  await change(page, { showStatics: true });
  const boxes = await Picture.ofViewport(page);
  const spots = lit.map((p) => project(pose, p, boxes.width, boxes.height));
  return spots.filter((spot) => !near(boxes.at(spot), without.at(spot), 24)).length;
}

/** How many of the lit samples boxes hide. A page that learns that it draws slowly draws less: then it is asked again. */
async function hiddenSamples(page: Page, lit: readonly Vec3[], pose: Pose): Promise<number> {
  let least = Infinity;
  for (let tries = 0; tries < 5 && least > 0; ++tries) least = Math.min(least, await differentSamples(page, lit, pose));
  return least;
}

async function look(scene: string): Promise<void> {
  const html = file("x.html");
  run("--quiet", "trails", scene, "--out", html);
  const read = JSON.parse(run("--quiet", "trails", scene, "--out=-.json")) as Json;
  const opened = await browser.openFile(html);
  await settle(opened);
  const motion = motionOf(read);
  const samples = [...motion.values()].flat();
  const { width, height } = (await opened.locator(".viewport").boundingBox())!;
  const shares: Record<string, string> = {};
  const first = await poseOf(opened);
  const selected = await opened.evaluate(() => [...window.vantorelixViewer.store.state.selected]);
  const lit = selected.flatMap((index) => motion.get(index) ?? []);
  const hidden = await hiddenSamples(opened, lit, first);
  for (const view of ["persp", "front", "side", "top"] as const) {
    if (view !== "persp") await opened.locator(`[data-command=view-${view}]`).click();
    const flat = Math.max(...axes[view].map((k) => extentOf(samples.map((p) => [p[k], 0, 0])))) <= 1e-6 * extentOf(samples);
    const pose = view === "persp" ? first : await poseOf(opened);
    const share = samples.length === 0 || flat ? NaN : filled(samples.map((p) => project(pose, p, width, height)), width, height);
    shares[view] = Number.isNaN(share) ? "–" : String(Math.round(100 * share));
    if (!Number.isNaN(share)) expect(share, `${view} of ${scene}`).toBeGreaterThanOrEqual(0.7);
  }
  table.push({
    scene: scene.split("/").pop()!, moving: `${motion.size} of ${read.trails.length}`, ...shares, hidden,
    selected: selected.map((index) => read.trails[index].name).join(", "),
  } as Row);
  expect(hidden, "samples that a box hides").toBe(0);
  expect(selected.length).toBeGreaterThan(0);
  expect(selected.length).toBeLessThanOrEqual(5);
  if (motion.size > 0) expect(selected.filter((index) => !motion.has(index))).toEqual([]);
}

describe("at first, an example fills the viewport, lights its ends and hides no sample", () => {
  test.each(examples.map((path) => [path.split("/").pop()!, path]))("%s", (_, path) => look(path));
});

/** Real scenes in which nothing is animated, so that there are no trails. */
const STILL = ["RecursiveNodes.gltf", "ComplexAnim1.ma", "SimpleCube1.ma", "rhino_anim_001.ma", "skel.ma", "maya_constraint_zoo_7500_ascii.fbx"];

describe.skipIf(real.length === 0)("at first, a real scene does, too", () => {
  test.each(real.filter((path) => !STILL.some((name) => path.endsWith(`/${name}`))).map((path) => [path.split("/").pop()!, path]))(
    "%s", (_, path) => look(path));
});
