// A scene that is open in the engine.

import type { Engine } from "./engine";
import { Trails, type TrailOptions, type TrailFields } from "./trails";

export interface Take {
  name: string;
  /** Frames. */
  first: number;
  last: number;
}

export interface Description {
  fps: number;
  /** The scene's own range, in frames. */
  range: [number, number];
  unit: string;
  up_axis: "y" | "z";
  takes: Take[];
  /** Which of the takes this is; null where there are none. */
  take: number | null;
  warnings: string[];
}

export interface SceneObject {
  /** Long path, by which all calls name it. */
  source: string;
  /** Its own name in the file. */
  name: string;
  /** Its number in a file that numbers its nodes. */
  node: number | null;
  type: string;
  parent: string | null;
  animated: boolean;
}

export interface Camera {
  shape: string;
  /** The object that it hangs on. */
  source: string | null;
}

export type Infinity = "constant" | "linear" | "cycle" | "cycle_offset" | "oscillate";

/** The curve of one channel. */
export interface Curve {
  attribute: string;
  curve: string;
  kind: "linear" | "angular" | "unitless" | "time";
  weighted: boolean;
  pre: Infinity;
  post: Infinity;
  /** How many. */
  keys: number;
}

/** The sorts of tangents, by the numbers that scene files have for them. */
export const Tangent = {
  global: 0, fixed: 1, linear: 2, flat: 3, step: 5, slow: 6, fast: 7, spline: 9, clamped: 10, plateau: 16, stepNext: 17,
  automatic: 18, automaticMix: 19, automaticEase: 20, automaticCustom: 21,
} as const;
export type Tangent = (typeof Tangent)[keyof typeof Tangent];

export interface Key {
  frame: number;
  /** In radians on angles. */
  value: number;
  in: Tangent;
  out: Tangent;
  /** Of fixed tangents: seconds, and the value's unit. With weighted tangents the lengths count; without, only y / x. */
  inX: number;
  inY: number;
  outX: number;
  outY: number;
}

export interface History {
  /** What can be undone; the last of them first. */
  undo: string[];
  /** What can be redone next. */
  redo: string | null;
  redo_count: number;
}

/** What pump left. */
export interface Progress {
  /** Whether trails are not exact yet. */
  pending: boolean;
  /** Whether anything was done; else the engine waits for the edits to end. */
  worked: boolean;
  /** How many trails are done, of how many; 0 of 0 where nothing is at work. */
  item: number;
  items: number;
}

const KEY = 8;  // doubles

export class Scene {
  private open: number | undefined;

  /** For Engine.open. */
  constructor(private readonly engine: Engine, handle: number) {
    this.open = handle;
  }

  /** Where it is in the engine's memory. Throws when the scene is closed. */
  handle(): number {
    if (this.open === undefined) throw new Error("the scene is closed; open it again");
    return this.open;
  }

  /** A scene goes with all its trails. */
  close() {
    const handle = this.handle();
    this.open = undefined;
    this.engine.call("vlx_close", handle);
  }

  describe(): Description {
    return this.json("vlx_description");
  }

  /** The objects of the file, in its order. */
  objects(): SceneObject[] {
    return this.json("vlx_objects");
  }

  cameras(): Camera[] {
    return this.json("vlx_cameras");
  }

  /** Makes trails, which follow edits until they are let go. */
  trails(options: TrailOptions = {}): Trails {
    return Trails.make(this.engine, this, options);
  }

  /** 16 doubles a frame, row by row, for row vectors. */
  worldMatrices(object: string, frames: ArrayLike<number>): Float64Array {
    return this.results(16, object, undefined, frames, "vlx_world_matrices");
  }

  /** What a channel is at frames, keyed or not; in radians on angles. */
  channelValues(object: string, attribute: string, frames: ArrayLike<number>): Float64Array {
    return this.results(1, object, attribute, frames, "vlx_channel_values");
  }

  /** The frames of an object's keys in order, each once. */
  keyTimes(object: string): Float64Array {
    const { memory } = this.engine;
    return memory.scope(() => {
      const times = memory.take(8);
      this.engine.call("vlx_key_times", this.handle(), memory.text(object), times);
      return memory.view(memory.place(times)).slice();
    });
  }

  /** The channels of an object that have keys. */
  curves(object: string): Curve[] {
    return this.engine.memory.scope(() => this.json("vlx_curves", this.engine.memory.text(object)));
  }

  keys(object: string, attribute: string): Key[] {
    const { memory } = this.engine;
    const numbers = memory.scope(() => {
      const keys = memory.take(8);
      this.engine.call("vlx_keys", this.handle(), memory.text(object), memory.text(attribute), keys);
      return memory.view(memory.place(keys)).slice();
    });
    return Array.from({ length: numbers.length / KEY }, (_, k) => keyOf(numbers.subarray(KEY * k, KEY * (k + 1))));
  }

  /** Sets the value of a channel at a frame, in degrees on angles; the tangents of a key that is there stay. */
  setKey(object: string, attribute: string, frame: number, value: number) {
    this.edit("vlx_set_key", object, attribute, frame, value);
  }

  moveKey(object: string, attribute: string, frame: number, to: number) {
    this.edit("vlx_move_key", object, attribute, frame, to);
  }

  removeKey(object: string, attribute: string, frame: number) {
    this.edit("vlx_remove_key", object, attribute, frame);
  }

  /** Adds a key, or replaces the one at its frame, with its tangents. */
  putKey(object: string, attribute: string, key: Key) {
    const { memory } = this.engine;
    memory.scope(() => this.engine.call("vlx_put_key", this.handle(), memory.text(object), memory.text(attribute),
      memory.numbers([key.frame, key.value, key.in, key.out, key.inX, key.inY, key.outX, key.outY])));
  }

  /** From here on edits can be undone; or no more, and what is known is forgotten. */
  keepHistory(kept = true) {
    this.engine.call("vlx_keep_history", this.handle(), kept ? 1 : 0);
  }

  /** The edits that `run` makes are one step, also those before it throws. */
  step<T>(name: string, run: () => T): T {
    this.openStep(name);
    try {
      return run();
    } finally {
      this.closeStep();
    }
  }

  /** The edits up to closeStep are one step. */
  openStep(name: string) {
    const { memory } = this.engine;
    memory.scope(() => this.engine.call("vlx_open_step", this.handle(), memory.text(name)));
  }

  closeStep() {
    this.engine.call("vlx_close_step", this.handle());
  }

  undo() {
    this.engine.call("vlx_undo", this.handle());
  }

  redo() {
    this.engine.call("vlx_redo", this.handle());
  }

  history(): History {
    return this.json("vlx_history");
  }

  /** Makes all trails exact after edits. */
  follow() {
    this.engine.call("vlx_follow", this.handle());
  }

  /** Does part of that, for about so many seconds; call it again and again, with other work in between. */
  pump(seconds: number): Progress {
    const { memory } = this.engine;
    return memory.scope(() => {
      const progress = memory.take(16);
      this.engine.call("vlx_pump", this.handle(), seconds, progress);
      const [pending, worked, item, items] = [0, 4, 8, 12].map((at) => memory.word(progress + at));
      return { pending: pending !== 0, worked: worked !== 0, item, items };
    });
  }

  private json<T>(call: string, ...given: number[]): T {
    const { memory } = this.engine;
    return memory.scope(() => {
      const text = memory.take(4);
      this.engine.call(call, this.handle(), ...given, text);
      return JSON.parse(memory.textAt(memory.word(text))) as T;
    });
  }

  private results(width: number, object: string, attribute: string | undefined, frames: ArrayLike<number>, call: string) {
    const { memory } = this.engine;
    return memory.scope(() => {
      const names = [object, ...(attribute === undefined ? [] : [attribute])].map((name) => memory.text(name));
      const at = memory.take(8 * width * frames.length);
      this.engine.call(call, this.handle(), ...names, memory.numbers(frames), frames.length, at);
      return memory.view({ at, count: width * frames.length }).slice();
    });
  }

  private edit(call: string, object: string, attribute: string, ...numbers: number[]) {
    const { memory } = this.engine;
    memory.scope(() => this.engine.call(call, this.handle(), memory.text(object), memory.text(attribute), ...numbers));
  }
}

function keyOf(numbers: Float64Array): Key {
  const [frame, value, sortIn, sortOut, inX, inY, outX, outY] = numbers;
  return { frame, value, in: sortIn as Tangent, out: sortOut as Tangent, inX, inY, outX, outY };
}

export type { TrailFields, TrailOptions };
