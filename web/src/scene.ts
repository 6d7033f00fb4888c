// A scene that is open in the engine.

import type { Curve, Key, KeyTangents, Placing, Sliding, Tangent } from "./animation";
import type { Engine } from "./engine";
import { decoder, type SceneFile } from "./files";
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
  /** The axis of that object along which it looks; y is up. */
  looks: "-z" | "x";
}

/** What stands still: a box in its own space, and its matrix to the world, row by row. */
export interface StaticBox {
  /** Long path. */
  name: string;
  matrix: number[];
  low: [number, number, number];
  high: [number, number, number];
}

/** What a camera sees at a frame. */
export interface CameraView {
  /** Of the film, in millimetres; and how far it is shifted to the right and up. */
  apertureX: number;
  apertureY: number;
  offsetX: number;
  offsetY: number;
  /** Millimetres. */
  focalLength: number;
  fit: "fill" | "horizontal" | "vertical" | "overscan";
  /** In the scene's unit. */
  near: number;
  /** Null for none. */
  far: number | null;
  /** Of the picture of an orthographic camera, in the scene's unit; null: the camera is perspective. */
  width: number | null;
}

/** What animation can be written as; each is the ending of such a file's name. */
export const FORMS = ["ma", "py", "bvh", "glb"] as const;
export type Form = (typeof FORMS)[number];

export interface Written {
  /** What is to be saved. */
  bytes: Uint8Array<ArrayBuffer>;
  /** The same as a text, of use where the form is one; what is not UTF-8 in it is replaced. */
  text: string;
  /** What the file does not hold, or not to the last bit: a sentence each, to be told before it is saved. */
  lost: string[];
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

const KEY = 8, VIEW = 9;  // doubles
const FITS = ["fill", "horizontal", "vertical", "overscan"] as const;

export class Scene {
  private open: number | undefined;

  /** For Engine.open. */
  /** It was opened from these files, which it keeps until it is closed. */
  constructor(private readonly engine: Engine, handle: number, private files: readonly SceneFile[]) {
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
    this.files = [];
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

  /** The boxes of what stands still, cubes of one unit where their sizes were not asked for when the scene was opened. */
  statics(frame: number): StaticBox[] {
    return this.json("vlx_statics", frame);
  }

  /** What a camera sees at frames, one view for each. */
  cameraViews(shape: string, frames: ArrayLike<number>): CameraView[] {
    const numbers = this.results(VIEW, shape, undefined, frames, "vlx_camera_views");
    return Array.from({ length: frames.length }, (_, k) => viewOf(numbers.subarray(VIEW * k, VIEW * (k + 1))));
  }

  /** Makes trails, which follow edits until they are let go. */
  trails(options: TrailOptions = {}): Trails {
    return Trails.make(this.engine, this, options);
  }

  /** 16 doubles a frame, row by row, for row vectors. */
  worldMatrices(object: string, frames: ArrayLike<number>): Float64Array {
    return this.results(16, object, undefined, frames, "vlx_world_matrices");
  }

  /** The same of what an object's local matrix is multiplied with: its translation channels to the world. */
  matricesAbove(object: string, frames: ArrayLike<number>): Float64Array {
    return this.results(16, object, undefined, frames, "vlx_matrices_above");
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
    const numbers = this.numbers("vlx_keys", object, attribute);
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

  /** Whether keys of the object's translation at a frame can put it elsewhere. */
  placing(object: string, frame: number): Placing {
    const { memory } = this.engine;
    return memory.scope(() => this.json("vlx_placing", memory.text(object), frame));
  }

  /** Sets the keys at a frame so that the object is at a place in the world then; throws "refused" where they cannot. */
  placeKey(object: string, frame: number, place: readonly [number, number, number]) {
    const { memory } = this.engine;
    memory.scope(() =>
      this.engine.call("vlx_place_key", this.handle(), memory.text(object), frame, memory.numbers(place)));
  }

  /** Whether the object can slide on its path at a frame. */
  sliding(object: string, frame: number): Sliding {
    const { memory } = this.engine;
    return memory.scope(() => this.json("vlx_sliding", memory.text(object), frame));
  }

  /**
   * Puts the object at a frame where its path is at another one, or as near as its tangents reach; throws "refused" where it
   * cannot slide. With `alone`, of the keys before and after the frame the other side stays as it is.
   */
  slideBead(object: string, frame: number, to: number, alone: { before: boolean; after: boolean } = { before: false, after: false }) {
    const { memory } = this.engine;
    memory.scope(() => this.engine.call("vlx_slide_bead", this.handle(), memory.text(object), frame, to,
      alone.before ? 1 : 0, alone.after ? 1 : 0));
  }

  /** Moves the keys at a frame in time: of one channel, or of all; none where one would reach a neighbour. */
  moveKeys(object: string, attribute: string | undefined, frame: number, to: number) {
    this.edit("vlx_move_keys", object, attribute ?? "", frame, to);
  }

  /** Inserts keys that leave the curves as they are. */
  insertKeys(object: string, attribute: string | undefined, frame: number) {
    this.edit("vlx_insert_keys", object, attribute ?? "", frame);
  }

  removeKeys(object: string, attribute: string | undefined, frame: number) {
    this.edit("vlx_remove_keys", object, attribute ?? "", frame);
  }

  /** One for each key of a channel. Three times the handles of the Bezier between two keys. */
  tangents(object: string, attribute: string): KeyTangents[] {
    const numbers = this.numbers("vlx_tangents", object, attribute);
    return Array.from({ length: numbers.length / 4 }, (_, k) => {
      const [inX, inY, outX, outY] = numbers.subarray(4 * k, 4 * k + 4);
      return { inX, inY, outX, outY };
    });
  }

  /** Fixes one side of a key's tangents; the other side turns along, unless that breaks it. */
  setTangent(object: string, attribute: string, frame: number, side: "in" | "out", x: number, y: number, unified = true) {
    this.edit("vlx_set_tangent", object, attribute, frame, side === "out" ? 1 : 0, x, y, unified ? 1 : 0);
  }

  /** Whether the lengths of the tangents of a channel count. */
  setWeighted(object: string, attribute: string, weighted: boolean) {
    this.edit("vlx_set_weighted", object, attribute, weighted ? 1 : 0);
  }

  /** The frames outside of which no edit of a key at this frame is felt, of one channel or of all. */
  feltRange(object: string, attribute: string | undefined, frame: number): [number, number] {
    const { memory } = this.engine;
    return memory.scope(() => {
      const range = memory.take(16);
      this.edit("vlx_felt_range", object, attribute ?? "", frame, range);
      const [first, last] = memory.view({ at: range, count: 2 });
      return [first, last];
    });
  }

  /**
   * The animation of objects, or of all: as a Maya ASCII file of curves, as a script for Maya's Python, as a BVH clip; or
   * the glTF file that was opened, with this animation. Throws "refused" where the form cannot hold what is asked for.
   */
  written(form: Form, objects: readonly string[] = []): Written {
    const { memory } = this.engine;
    return memory.scope(() => {
      const at = memory.take(12);
      this.engine.withFiles(this.files, () =>
        this.engine.call("vlx_written", this.handle(), memory.text(form), memory.texts(objects), objects.length, at));
      const bytes = memory.bytesAt(memory.word(at), memory.word(at + 4));
      return { bytes, text: decoder.decode(bytes), lost: JSON.parse(memory.textAt(memory.word(at + 8))) as string[] };
    });
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

  /** A copy of what a call hands out of a channel. */
  private numbers(call: string, object: string, attribute: string): Float64Array {
    const { memory } = this.engine;
    return memory.scope(() => {
      const place = memory.take(8);
      this.engine.call(call, this.handle(), memory.text(object), memory.text(attribute), place);
      return memory.view(memory.place(place)).slice();
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

function viewOf(numbers: Float64Array): CameraView {
  const [apertureX, apertureY, offsetX, offsetY, focalLength, fit, near, far, width] = numbers;
  return { apertureX, apertureY, offsetX, offsetY, focalLength, fit: FITS[fit], near, far: far || null, width: width || null };
}

function keyOf(numbers: Float64Array): Key {
  const [frame, value, sortIn, sortOut, inX, inY, outX, outY] = numbers;
  return { frame, value, in: sortIn as Tangent, out: sortOut as Tangent, inX, inY, outX, outY };
}

export type { TrailFields, TrailOptions };
