// What the page shows, and the one interface through which it comes. The page reads trails that were written into it;
// anything else that keeps arrays of samples, an engine that runs beside the page included, can stand in its place.

import type { ChannelCurve, PathTangents } from "../../../web/src/live/keys";
import type { Side } from "../../../web/src/live/grips";
import type { KeyKind } from "../../../web/src/live/tangent_edits";
import { TANGENT_KINDS, type TangentKind } from "../../../web/src/live/tangent_kinds";

export { TANGENT_KINDS };
export type { ChannelCurve, KeyKind, PathTangents, Side, TangentKind };

export type Vec3 = readonly [number, number, number];
export type ColorMode = 0 | 1 | 2 | 3;

export const COLOR_MODES = ["Standard", "Spacing", "Flow", "Beats"] as const;

/** The same object in a second scene. */
export interface Counterpart {
  /** Its long path there. */
  readonly source: string;
  /** Its world positions there at the trail's frames, in the trail's unit and axes; NaN as in Trail.points. */
  readonly points: Float64Array;
}

/** One trail as its viz node shows it. Arrays of triples are flat: x y z x y z ... */
export interface Trail {
  readonly viz: string;
  /** Long path of the object in the scene. */
  readonly source: string;
  /** The object's own name in its file. It may hold anything, so it must never become markup. */
  readonly name: string;
  /** The `source` of its nearest ancestor that has a trail. */
  readonly parent: string | null;
  readonly samplesPerFrame: number;
  readonly colorMode: ColorMode;
  /** Frame of the first sample, and frames between two samples. */
  readonly startFrame: number;
  readonly frameStep: number;
  readonly lineWidth: number;
  readonly pointSize: number;
  readonly showLine: boolean;
  readonly showDots: boolean;
  readonly ghost: boolean;
  readonly count: number;
  /** World positions in the scene's own axes and unit; all three NaN where a sample is not finite. */
  readonly points: Float64Array;
  /** The spacing colours that were pushed to the node, 0..255. */
  readonly colors: Uint8Array;
  /** Frames, in the order in which they were pushed; as many as key points. */
  readonly keyTimes: Float64Array;
  readonly keyPoints: Float64Array;
  /** Why the trail may differ from the scene's own motion. */
  readonly warnings: readonly string[];
  /** In the order of Scene.measures; null where one is not known, or not yet. */
  readonly measures: readonly (number | null)[];
  /** Where the scene is compared with a second one that has this object. */
  readonly compare?: Counterpart | null;
}

/** A number that tells of a trail's whole motion: its name in the program's files, and its unit, "1" where it has none. */
export interface Measure {
  readonly name: string;
  readonly unit: string;
}

/** A node that does not move: a box in its own space and the matrix to the world (row vectors, translation last). */
export interface StaticBox {
  readonly name: string;
  readonly matrix: readonly number[];
  readonly low: Vec3;
  readonly high: Vec3;
}

export interface Scene {
  readonly name: string;
  readonly fps: number;
  /** Playback range, frames. */
  readonly first: number;
  readonly last: number;
  /** The scene's current frame. */
  readonly current: number;
  /** "unknown" where the file does not say. */
  readonly unit: string;
  readonly upAxis: "y" | "z";
  /** Whether somebody asked for the trails' colour mode, rather than leaving it to the engine. */
  readonly colorModeChosen: boolean;
  /** The second scene that the trails are compared with: its file, and the take of it that was asked for; or the same
   * scene, `opened`: as it was before it was edited. */
  readonly compared?: { readonly scene: string; readonly take: string | null; readonly opened?: boolean } | null;
  readonly measures: readonly Measure[];
  readonly statics: readonly StaticBox[];
  /** Where the file has several takes and another one can be shown: all by name, in the file's order. */
  readonly takes?: Takes | null;
}

export interface Takes {
  readonly names: readonly string[];
  /** The one that is shown, and the one that is where nobody chooses. */
  readonly shown: number;
  readonly usual: number;
}

/** What a drag can take hold of, and what it is then moved to; the key is the one at the frame. */
export type Grip =
  /** A key on its path, or a handle of its tangents: x y z in the world. */
  | { readonly what: "place"; readonly trail: number; readonly frame: number }
  | { readonly what: "path tangent"; readonly trail: number; readonly frame: number; readonly side: Side }
  /** The object between two keys, a bead on its path: the frame at which the path is where the bead is wanted. */
  | { readonly what: "bead"; readonly trail: number; readonly frame: number }
  /** Keys in time, of all channels: a frame. */
  | { readonly what: "time"; readonly trails: readonly number[]; readonly frame: number }
  /** The key of a channel: its frame and its value. */
  | { readonly what: "key"; readonly trail: number; readonly channel: string; readonly frame: number }
  /** Its tangent: seconds, and how far the value goes meanwhile. */
  | { readonly what: "tangent"; readonly trail: number; readonly channel: string; readonly frame: number; readonly side: Side };

/** Edits of the keys that trails have, in order; each answers when it is done, or rejects with a text for the reader. */
export interface Editing {
  /** The names of the steps that undo and redo are about next; null where there is none. */
  readonly undoes: string | null;
  readonly redoes: string | null;
  /** How many trails are made again after an edit, of how many; null when all are as they should be. */
  readonly working: { readonly done: number; readonly of: number } | null;
  undo(): Promise<void>;
  redo(): Promise<void>;
  /** Keys of some trails' objects at a frame: new ones that change no motion, none any more, or at another frame. */
  insertKeys(trails: readonly number[], frame: number): Promise<void>;
  removeKeys(trails: readonly number[], frame: number): Promise<void>;
  moveKeys(trails: readonly number[], frame: number, to: number): Promise<void>;
  /** The tangents of keys at a frame: from now on their sides turn alone; or both have one slope, and turn together. */
  breakTangents(trails: readonly number[], frame: number): void;
  unifyTangents(trails: readonly number[], frame: number): Promise<void>;
  /** What tangents the keys of some trails' objects have at a frame. */
  tangentKinds(trails: readonly number[], frame: number): Promise<readonly KeyKind[]>;
  /** Gives these keys tangents of a kind, or their curves weighted tangents or not: all of them, or those of some channels. */
  setTangentKind(trails: readonly number[], frame: number, kind: TangentKind, channels?: readonly string[]): Promise<void>;
  setWeighted(trails: readonly number[], frame: number, weighted: boolean, channels?: readonly string[]): Promise<void>;
  /** Handles of keys on their paths; null for a trail whose object has no key of its position at the frame. */
  pathTangents(trails: readonly number[], frame: number): Promise<readonly (PathTangents | null)[]>;
  /** The curves of a trail's object, with their values at these frames. */
  channelCurves(trail: number, frames: Float64Array): Promise<readonly ChannelCurve[]>;
  /** From here to endDrag, this is what is dragged. */
  beginDrag(grip: Grip): Promise<void>;
  /** Moves it to where `Grip` says; while one such move is at work, of the others only the last one counts. */
  drag(to: readonly number[]): Promise<void>;
  /** Not `kept`: it goes back to where it was. */
  endDrag(kept: boolean): Promise<void>;
  /** What the keys of the drag's grip are at now; as it was, where they stay. */
  readonly draggedTo: number | null;
  /** Calls back after any of the first three has changed, until the result is called. */
  subscribe(changed: () => void): () => void;
}

/** The scene's animation as a file. */
export interface Written {
  readonly bytes: Uint8Array<ArrayBuffer>;
  /** What the file will not hold, or not to the last bit: a sentence each. */
  readonly lost: readonly string[];
}

export const FORMS = ["ma", "py", "bvh", "glb"] as const;
export type Form = (typeof FORMS)[number];

export interface Writing {
  /** All animation as it is now, with its edits. Rejects with a text for the reader where the form cannot hold it. */
  written(form: Form): Promise<Written>;
}

export interface SceneCamera {
  readonly name: string;
  /** The long path of its shape, and of the object that it hangs on, if any. */
  readonly shape: string;
  readonly source: string | null;
  /** The axis of that object along which it looks; y is up. */
  readonly looks: "-z" | "x";
}

/** What a camera sees at a frame. */
export interface Lens {
  /** Of the film, in millimetres; and how far it is shifted to the right and up. */
  readonly apertureX: number;
  readonly apertureY: number;
  readonly offsetX: number;
  readonly offsetY: number;
  /** Millimetres. */
  readonly focalLength: number;
  /** Of the picture of an orthographic camera, in the scene's unit; null: the camera is perspective. */
  readonly width: number | null;
}

/** What positions can be shown relative to, besides another object's position. */
export interface Spaces {
  readonly cameras: readonly SceneCamera[];
  /** An object's matrices to the world: 16 numbers a frame, row by row, for row vectors. */
  matrices(source: string, frames: readonly number[]): Promise<Float64Array>;
  /** One a frame. */
  lenses(shape: string, frames: readonly number[]): Promise<readonly Lens[]>;
}

/** What has changed of trails: for a moment, as while a key is dragged, or for good; or only what their measures are. */
export type TrailChange = "provisional" | "final" | "measured";

/** Samples in a row, and all keys, of a trail that changed for a moment. */
export interface ChangedPart {
  readonly index: number;
  readonly first: number;
  readonly count: number;
}

export interface TrailSource {
  readonly scene: Scene;
  /** The trails as they are now. A trail keeps its place in the list; one that changed is a new object. */
  trails(): readonly Trail[];
  /** Calls back after trails() changed, with what of it where that is little, until the result is called. */
  subscribe(changed: (how: TrailChange, parts: readonly ChangedPart[]) => void): () => void;
  /** Where keys can be edited. */
  readonly editing?: Editing;
  /** Where animation can be written. */
  readonly writing?: Writing;
  /** Where more is known than positions. */
  readonly spaces?: Spaces;
}
