// The engine of a live page: its Worker, made of the page itself, and the scene that the page brings along.

import { LiveClient } from "../../../web/src/live/client";
import type { LiveEvent, Wanted } from "../../../web/src/live/protocol";
import { decodeBase64, takeBlock } from "./page_blocks";

/** The compressed engine and the script of its Worker, kept: an engine that broke down is started anew. */
export interface EngineParts {
  readonly worker: string;
  readonly wasm: ArrayBuffer;
}

/** What this page has of an engine; null where it has none. */
export function engineParts(): EngineParts | null {
  const [worker, wasm] = [takeBlock("engine-worker"), takeBlock("engine-wasm")];
  return worker === null || wasm === null ? null : { worker, wasm: decodeBase64(wasm) };
}

export interface RunningEngine {
  readonly client: LiveClient;
  /** Resolves when it stands. */
  readonly ready: Promise<void>;
  stop(): void;
}

export function runEngine(parts: EngineParts, heard: (event: LiveEvent) => void): RunningEngine {
  const url = URL.createObjectURL(new Blob([parts.worker], { type: "text/javascript" }));
  const worker = new Worker(url);
  const client = new LiveClient(worker, heard);
  const ready = client.start(parts.wasm.slice(0)).finally(() => URL.revokeObjectURL(url));
  return { client, ready, stop: () => worker.terminate() };
}

/** How trails look where the file does not say; null leaves them as the engine has them. */
export interface Style {
  readonly frame: number | null;
  readonly lineWidth: number | null;
  readonly pointSize: number | null;
  readonly showLine: boolean | null;
  readonly showDots: boolean | null;
  readonly ghost: boolean | null;
}

export const NO_STYLE: Style = { frame: null, lineWidth: null, pointSize: null, showLine: null, showDots: null, ghost: null };

export interface SceneRequest {
  readonly name: string;
  readonly wanted: Wanted;
  readonly style: Style;
}

/** As the program writes it. */
interface SceneHeader extends Style {
  format: number;
  name: string;
  files: { name: string; bytes: number }[];
  reading: { take: string; axis: "" | "y-up" | "z-up"; unit: string; fps: number };
  trails: {
    patterns: string[]; exclude: string[]; ignoreCase: boolean; all: boolean; samplesPerFrame: number;
    colorMode: 0 | 1 | 2 | 3 | null; first: number | null; last: number | null;
  };
}

/** The scene in this page; null where it waits for one. Throws an Error with a text for the reader. */
export function embeddedScene(): SceneRequest | null {
  const text = takeBlock("scene-header");
  if (text === null) return null;
  const header = JSON.parse(text) as SceneHeader;
  if (header.format !== 1) throw new Error(`The scene has format ${header.format}, but this page reads format 1: write the page again.`);
  const data = new Uint8Array(decodeBase64(takeBlock("scene-data") ?? ""));
  let end = 0;
  const files = header.files.map(({ name, bytes }) => ({ name, bytes: data.slice(end, (end += bytes)) }));
  if (end !== data.length) throw new Error(`The scene has ${data.length} bytes of data instead of ${end}: write the page again.`);
  const { take, axis, unit, fps } = header.reading;
  const { colorMode, first, last, ...trails } = header.trails;
  const reading = { take, axis: axis || undefined, unit: unit || undefined, fps };
  const request = { ...trails, colorMode: colorMode ?? undefined, first: first ?? undefined, last: last ?? undefined };
  return { name: header.name, wanted: { files, reading, trails: request }, style: header };
}

const SCENE = /\.(bvh|ma|fbx|glb|gltf|samples)$/i;

/** The request for files that somebody chose: one scene, and what it refers to. Throws an Error for the reader. */
export async function chosenScene(chosen: readonly File[]): Promise<SceneRequest> {
  const scenes = chosen.filter(({ name }) => SCENE.test(name));
  const [scene] = scenes.length > 0 ? scenes : chosen;
  if (!scene) throw new Error("There is no file among what was dropped: drop a scene.");
  if (scenes.length > 1 || (scenes.length === 0 && chosen.length > 1))
    throw new Error(`These are ${chosen.length} files, of which ${scenes.length || "none"} ${scenes.length > 1 ? "are" : "is a"} ` +
      `scene${scenes.length > 1 ? "s" : ""}: drop one scene, with its buffers if it has any.`);
  const ordered = [scene, ...chosen.filter((file) => file !== scene)];
  const files = await Promise.all(ordered.map(async (file) => ({ name: file.name, bytes: new Uint8Array(await file.arrayBuffer()) })));
  return { name: scene.name, wanted: { files, reading: {}, trails: {} }, style: NO_STYLE };
}
