// Keys of live pages under the pointer.

import { writeFileSync } from "node:fs";
import type { Page } from "playwright-core";
import { expect } from "vitest";
import type { Vec3 } from "../../src/source/trail";
import { exact, keysOf } from "./live";
import { project, settle, type Point, type Pose } from "./picture";

/** For what takes a machine that has other work to do longer than a second. */
export const PATIENT = { timeout: 20_000 };

export interface Aim {
  trail: number;
  source: string;
  frame: number;
  at: Point;
}

export const turned = ([x, y, z]: Vec3, upAxis: "y" | "z"): Vec3 => (upAxis === "z" ? [x, z, -y] : [x, y, z]);

/** A key of an object's position that lies apart from all others in the picture, of the trails that are shown; `between` two others. */
export async function aim(page: Page, between = false): Promise<Aim | null> {
  await settle(page);
  const box = (await page.locator(".viewport").boundingBox())!;
  const { camera, upAxis, trails } = await page.evaluate(() => {
    const { motion, scene, store } = window.vantorelixViewer;
    return { camera: store.state.camera as Pose, upAxis: scene.upAxis,
      trails: motion.trails.map((t) => ({ source: t.source, times: [...t.keyTimes], points: [...t.keyPoints], count: t.count })) };
  });
  const keys = trails.flatMap(({ source, times, points, count }, trail) => times.length > 24 && times.length > 0.4 * count ? [] : times.map((frame, k) => {
    const { x, y } = project(camera, turned(points.slice(3 * k, 3 * k + 3) as unknown as Vec3, upAxis), box.width, box.height);
    return { trail, source, frame, x, y };
  }));
  const inside = ({ x, y }: Point) => x > 80 && y > 60 && x < box.width - 80 && y < box.height - 60;
  for (const key of keys) {
    if (!inside(key) || keys.some((other) => other !== key && Math.hypot(other.x - key.x, other.y - key.y) < 20)) continue;
    const moved = await keysOf(page, key.source, "translateX");
    const at = moved.findIndex(([frame]) => frame === key.frame);
    if (moved.length > 2 && at >= 0 && (!between || (at > 0 && at < moved.length - 1))) return { ...key, at: { x: box.x + key.x, y: box.y + key.y } };
  }
  return null;
}

/** Writes a scene with an object on an arc of three keys: at 1, 12 and 24. */
export function arcScene(path: string): string {
  const curve = (axis: string, values: readonly number[]) => `createNode animCurveTL -n "arc_${axis}";\n` +
    `  setAttr -s 3 ".ktv[0:2]" 1 ${values[0]} 12 ${values[1]} 24 ${values[2]};\nconnectAttr "arc_${axis}.o" "arc.t${axis}";\n`;
  writeFileSync(path, '//Maya ASCII 2022 scene\nrequires maya "2022";\ncreateNode transform -n "arc";\n' +
    curve("x", [0, 9, 20]) + curve("y", [0, 8, 3]) + curve("z", [0, 2, 1]));
  return path;
}

export async function dragBy(page: Page, { x, y }: Point, dx: number, dy: number): Promise<void> {
  await page.mouse.move(x, y);
  await page.mouse.down();
  await page.mouse.move(x + dx, y + dy, { steps: 4 });
  await page.mouse.up();
}

/** Waits until this step is what can be undone or redone next, and the trails follow it. */
export async function step(page: Page, which: "undoes" | "redoes", name = "move key"): Promise<void> {
  await expect.poll(() => page.evaluate((key) => window.vantorelixViewer.editing![key], which), PATIENT).toBe(name);
  await exact(page);
}

export const CHANNELS = ["translateX", "translateY", "translateZ"];

/** Where the key is now. */
export const placeOf = (page: Page, { trail, frame }: Aim) => page.evaluate(([index, time]) => {
  const { keyPoints, keyTimes } = window.vantorelixViewer.motion.trails[index];
  const k = keyTimes.indexOf(time);
  return [...keyPoints.subarray(3 * k, 3 * k + 3)];
}, [trail, frame] as const);

/** The keys of channels as they are now, as commands that put them there. */
export const keysAsEdits = async (page: Page, source: string, channels: readonly string[]) =>
  (await Promise.all(channels.map(async (channel) => (await keysOf(page, source, channel)).map((key) => ["put", source, channel, ...key])))).flat();

/** The place of a point of the scene on the page. */
export async function spotOf(page: Page, place: Vec3): Promise<Point> {
  const box = (await page.locator(".viewport").boundingBox())!;
  const { camera, upAxis } = await page.evaluate(() => {
    const { scene, store } = window.vantorelixViewer;
    return { camera: store.state.camera as Pose, upAxis: scene.upAxis };
  });
  const { x, y } = project(camera, turned(place, upAxis), box.width, box.height);
  return { x: box.x + x, y: box.y + y };
}

/** Selects the trail alone. */
export const select = (page: Page, trail: number) =>
  page.evaluate((index) => window.vantorelixViewer.store.set({ selected: new Set([index]) }), trail);
