// What a page and its Worker say to each other. A request is a call of LiveHost by name; each has a number, by which its
// answer finds it. Events come whenever something was worked out.

import type { ErrorKind } from "../errors";
import type { OpenOptions } from "../engine";
import type { SceneFile } from "../files";
import type { Camera, Description, History, StaticBox, TrailFields, TrailOptions } from "../scene";
import type { LiveHost } from "./host";

/** A scene as it is handed in: its files, which of them it is, how to read it and which trails to make. */
export interface Wanted {
  files: SceneFile[];
  reading: OpenOptions;
  trails: TrailOptions;
}

/** Numbers of a trail, which belong to whoever gets them. Places are three doubles each, as the engine has them. */
export interface TrailNumbers {
  /** Its place in the list of trails. */
  index: number;
  points: Float64Array;
  /** Three bytes a sample, 255 for 1. */
  colors: Uint8Array;
  keyPoints: Float64Array;
  keyTimes: Float64Array;
}

export interface Measure {
  name: string;
  unit: string;
}

export interface Opened {
  description: Description;
  fields: TrailFields[];
  numbers: TrailNumbers[];
  /** What TrailMeasures lists. */
  measures: Measure[];
  history: History;
  cameras: Camera[];
  statics: StaticBox[];
}

/** Samples of a trail that a drag has moved, until the engine has made the trail again. */
export interface MovedPart {
  index: number;
  /** The first of the samples. */
  first: number;
  points: Float64Array;
}

export interface Dragged {
  /** The frame of the keys before, and now. */
  from: number;
  frame: number;
  /** Where the objects whose keys moved are then. */
  keys: { object: string; position: [number, number, number] }[];
  parts: MovedPart[];
}

export type LiveEvent =
  /** Trails that were made again, if any. `pending`: others still have to be; once after each edit it is false. */
  | { kind: "trails"; numbers: TrailNumbers[]; pending: boolean; done: number; of: number }
  /** Measures of trails, which follow when there is time; null where one is not known. */
  | { kind: "measures"; values: [index: number, values: (number | null)[]][] };

/** The requests, and what they take and answer with. */
export type Requests = Pick<LiveHost, "open" | "undo" | "redo" | "beginDrag" | "drag" | "endDrag" | "insertKeys" |
  "removeKeys" | "moveKeys" | "putKey" | "keys" | "pathTangents" | "channelCurves" | "unifyTangents" |
  "written" | "matrices" | "lenses" | "tangentKinds" | "setTangentKind" | "setWeighted">;

export type Given<K extends keyof Requests> = Parameters<Requests[K]>;
export type Answer<K extends keyof Requests> = ReturnType<Requests[K]>;

/** The first message: the compressed WebAssembly. */
export interface Start {
  id: 0;
  wasm: ArrayBuffer;
}

export interface Request<K extends keyof Requests = keyof Requests> {
  id: number;
  call: K;
  given: Given<K>;
}

export interface Failure {
  message: string;
  /** Null: the engine broke down, or there is none; nothing goes on. */
  kind: ErrorKind | null;
}

export type Reply = { id: number; answer: unknown } | { id: number; failure: Failure } | { event: LiveEvent };
