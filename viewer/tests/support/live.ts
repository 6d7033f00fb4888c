// Live pages, and what the native engine makes of the same scenes.

import { existsSync, readFileSync, readdirSync } from "node:fs";
import { basename, dirname, join } from "node:path";
import type { Page } from "playwright-core";
import { describe, expect } from "vitest";
import type { SceneFile } from "../../../web/src/index";
import { runNative } from "../../../web/tests/support/run_native";
import type { Editing, Trail, Vec3 } from "../../src/source/trail";
import type { Opener, OpenOptions } from "./browser";
import { run } from "./program";

const native = process.env.VANTORELIX_NATIVE ?? "";

/** Left out where the program has no engine for pages. */
export const describeLive = describe.skipIf(native === "");

/** A scene's file, and those beside it that may be its buffers. */
export function filesOf(scene: string): SceneFile[] {
  const beside = readdirSync(dirname(scene)).filter((name) => name.endsWith(".bin"));
  return [basename(scene), ...beside].map((name) => ({ name, bytes: readFileSync(join(dirname(scene), name)) }));
}

/** As a reader drops them. */
export async function drop(page: Page, files: readonly SceneFile[]): Promise<void> {
  const given = files.map(({ name, bytes }) => ({ name, content: Buffer.from(bytes).toString("base64") }));
  const transfer = await page.evaluateHandle((all) => {
    const made = new DataTransfer();
    for (const { name, content } of all)
      made.items.add(new File([Uint8Array.from(atob(content), (letter) => letter.charCodeAt(0))], name));
    return made;
  }, given);
  await page.dispatchEvent("#app > *", "drop", { dataTransfer: transfer });
}

/** Waits until the page shows that scene. */
export const shows = (page: Page, name: string) =>
  expect.poll(() => page.evaluate(() => window.vantorelixViewer?.scene.name), { timeout: 20_000 }).toBe(name);

/** Waits until every trail is as the engine has it. */
export const exact = (page: Page) =>
  expect.poll(() => page.evaluate(() => window.vantorelixViewer.editing!.working), { timeout: 20_000 }).toBe(null);

type Arrays = Pick<Trail, "source" | "points" | "keyPoints" | "keyTimes">;

/** Arrays by the object, to the last bit: as texts that read back to the same number. */
export type Bits = Record<string, { points: string; keyPoints: string; keyTimes: string }>;

const bitsOf = ({ points, keyPoints, keyTimes }: Omit<Arrays, "source">) =>
  ({ points: points.join(), keyPoints: keyPoints.join(), keyTimes: keyTimes.join() });

/** The objects whose numbers are not the same in both. */
export const others = (a: Bits, b: Bits): string[] =>
  [...new Set([...Object.keys(a), ...Object.keys(b)])].filter((source) => JSON.stringify(a[source]) !== JSON.stringify(b[source]));

/** What the page has. */
export async function shownBits(page: Page): Promise<Bits> {
  const trails = await page.evaluate(() => window.vantorelixViewer.motion.trails.map(({ source, points, keyPoints, keyTimes }) =>
    ({ source, points: points.join(), keyPoints: keyPoints.join(), keyTimes: keyTimes.join() })));
  return Object.fromEntries(trails.map(({ source, ...bits }) => [source, bits]));
}

/** Asked for as native_results asks: all objects, two samples a frame. */
export const EVERYTHING = ["--all", "--samples-per-frame", "2", "--color-mode", "spacing"];

/** What the native engine has after these commands, by the objects of the page in their order. */
export function nativeBits(scene: string, commands: readonly (readonly (string | number)[])[], sources: readonly string[]): Bits {
  const lines = [...commands, ["follow"], ["trails"]].map((command) => command.join("\t") + "\n").join("");
  const results = runNative(native, filesOf(scene), "", lines);
  const numbers = (name: string) => new Float64Array(Uint8Array.from(results.get(name)!).buffer);
  const label = `${commands.length + 1} trails trail`;
  return Object.fromEntries(sources.map((source, k) => [source, bitsOf({
    points: numbers(`${label} ${k} points`), keyPoints: numbers(`${label} ${k} keyPoints`), keyTimes: numbers(`${label} ${k} keyTimes`),
  })]));
}

/** The native engine's words about files that it refuses. */
export function nativeRefusal(files: SceneFile[]): string {
  const said = runNative(native, files, "", "").get("open fails");
  return Buffer.from(said ?? []).toString().split("\n").slice(1, -1).join("\n");
}

/** Why the native engine cannot put an object elsewhere by its keys at a frame. */
export function nativeObstacle(scene: string, source: string, frame: number): string {
  const answer = runNative(native, filesOf(scene), "", `placing\t${source}\t${frame}\n`).get("0 placing");
  return (JSON.parse(Buffer.from(answer!).toString()) as { text: string }).text;
}

/** The matrices of an object at frames, a list of 16 numbers each, as the native engine has them. */
export function nativeMatrices(scene: string, source: string, frames: readonly number[]): number[][] {
  const bytes = runNative(native, filesOf(scene), "", `matrices\t${source}\t${frames.join("\t")}\n`).get("0 matrices")!;
  const numbers = new Float64Array(Uint8Array.from(bytes).buffer);
  return frames.map((_, k) => [...numbers.subarray(16 * k, 16 * k + 16)]);
}

export interface Written {
  text: Buffer;
  lost: string[];
}

/** What the native engine writes in a form after these commands. */
export function nativeWritten(scene: string, commands: readonly (readonly (string | number)[])[], form: string): Written {
  const lines = [...commands, ["written", form]].map((command) => command.join("\t") + "\n").join("");
  const results = runNative(native, filesOf(scene), "", lines);
  const label = `${commands.length} written`;
  return { text: Buffer.from(results.get(label)!), lost: JSON.parse(Buffer.from(results.get(`${label} lost`)!).toString()) as string[] };
}

/** The page that `view --live` writes of a scene, with a trail of every object. */
export async function openLive(browser: Opener, file: string, scene: string, options?: OpenOptions): Promise<Page> {
  run("view", scene, "--live", ...EVERYTHING, "--out", file, "--no-open");
  return browser.openFile(file, options);
}

/** The page that `page` writes. */
export async function openEmpty(browser: Opener, file: string): Promise<Page> {
  if (!existsSync(file)) run("page", "--out", file, "--no-open");
  return browser.openFile(file);
}

/** The engine's own keys of a channel: frame, value and tangents, as native_results takes them. */
export async function keysOf(page: Page, source: string, attribute: string): Promise<number[][]> {
  return page.evaluate(async ([object, channel]) => {
    const { client } = window.vantorelixViewer.editing as unknown as Editing & {
      client: { call(name: "keys", object: string, channel: string): Promise<Record<string, number>[]> };
    };
    const keys = await client.call("keys", object, channel);
    return keys.map((key) => ["frame", "value", "in", "out", "inX", "inY", "outX", "outY"].map((name) => key[name]));
  }, [source, attribute]);
}

/** The keys of these channels, as commands that put them into a scene of the native engine. */
export async function puttingKeys(page: Page, source: string, channels: readonly string[]): Promise<(string | number)[][]> {
  const all = await Promise.all(channels.map(async (channel) => (await keysOf(page, source, channel)).map((key) => ["put", source, channel, ...key])));
  return all.flat();
}

/** Drags the key of an object at a frame to a place, without a pointer, and waits until the trails follow. */
export async function pull(page: Page, source: string, frame: number, place: Vec3): Promise<void> {
  await page.evaluate(async ([object, at, to]) => {
    const { editing, motion } = window.vantorelixViewer;
    const trail = motion.trails.findIndex((each) => each.source === object);
    await editing!.beginDrag({ what: "place", trail, frame: at });
    await editing!.drag(to);
    await editing!.endDrag(true);
  }, [source, frame, place] as const);
  await exact(page);
}
