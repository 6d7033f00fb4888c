// What the reader has chosen. One plain object; every change goes through Store.set, and everything that shows or
// keeps some of it subscribes.

import type { ColorMode, Scene, Vec3 } from "../source/trail";
import type { Seen } from "./camera/space";
import type { Palette } from "./colors";
import { firstSelection } from "./first_look";
import type { GraphName } from "./graphs";
import type { Motion } from "./motion";
import { stillBranches } from "./outline";
import type { TimeSpan } from "./time_span";

export type ViewName = "persp" | "front" | "side" | "top";
export type Theme = "auto" | "light" | "dark";

/** Where the camera is: it looks at `target` from `distance` away; angles in degrees, around and above. */
export interface CameraPose {
  readonly view: ViewName;
  readonly target: Vec3;
  readonly distance: number;
  readonly azimuth: number;
  readonly elevation: number;
}

export interface Hover {
  readonly trail: number;
  readonly sample: number;
}

/** Trails are given by their index. */
export interface ViewState {
  readonly frame: number;
  /** What playing runs through, frames. */
  readonly playFirst: number;
  readonly playLast: number;
  readonly playing: boolean;
  readonly camera: CameraPose;
  /** Width of the viewport by its height. */
  readonly aspect: number;
  readonly selected: ReadonlySet<number>;
  readonly hidden: ReadonlySet<number>;
  /** When it holds any, only these are shown. */
  readonly solo: ReadonlySet<number>;
  /** The take that was chosen, by its name; null: the one that is shown where nobody chooses. */
  readonly take: string | null;
  /** Trails are shown relative to this one; null: in the world. */
  readonly relativeTo: number | null;
  /** What positions are shown in: the world or, where `relativeTo` says so, relative to an object's position; relative to
   * that object as it turns; in the space of a camera, or where they are in its picture. */
  readonly space: "place" | "turning" | "camera" | "screen";
  /** The camera of the scene through which it is seen, by its place in the list; null: the page's own. */
  readonly through: number | null;
  /** What was loaded for these two. */
  readonly seen: Seen | null;
  readonly colorBy: "mode" | "object";
  /** For these six, null leaves each trail its own. */
  readonly mode: ColorMode | null;
  readonly lineWidth: number | null;
  readonly pointSize: number | null;
  readonly showLine: boolean | null;
  readonly showDots: boolean | null;
  readonly ghost: boolean | null;
  readonly showKeys: boolean;
  readonly showLabels: boolean;
  readonly showStatics: boolean;
  /** Lines from objects to those that they hang from. */
  readonly showBones: boolean;
  /** Only frames around the current one: so many before and after it. */
  readonly window: boolean;
  readonly windowBefore: number;
  readonly windowAfter: number;
  /** The figure once more, every so many frames or at keys, so many times before and after the current frame. */
  readonly onion: "off" | "frames" | "keys";
  readonly onionEvery: number;
  readonly onionBefore: number;
  readonly onionAfter: number;
  /** The second scene, where there is one. */
  readonly showCompared: boolean;
  readonly palette: Palette;
  readonly theme: Theme;
  /** A saved picture: times the size on the screen, and what stands around it. */
  readonly pictureScale: number;
  readonly pictureTitle: boolean;
  readonly pictureLegend: boolean;
  readonly pictureFrame: boolean;
  readonly search: string;
  /** Whether the list leaves out what does not move. */
  readonly movingOnly: boolean;
  /** Trails in the list below which nothing is listed. */
  readonly folded: ReadonlySet<number>;
  /** What the graph under the timeline is of. */
  readonly graph: GraphName;
  /** Whether the curves of an object's channels are shown, where they can be edited. */
  readonly showChannels: boolean;
  /** What the timeline and the graph show; null: all of the scene's time. */
  readonly timeSpan: TimeSpan | null;
  /** Whether a panel is open; null: where there is room for it. */
  readonly showList: boolean | null;
  readonly showSettings: boolean | null;
  /** Whether keys that type a character do anything. */
  readonly letterKeys: boolean;
  /** The sample under the pointer, in the viewport or in the graph. */
  readonly hover: Hover | null;
}

export function initialState(scene: Scene, motion: Motion, camera: CameraPose): ViewState {
  return {
    frame: Math.max(scene.first, Math.min(scene.last, scene.current)),
    playFirst: scene.first,
    playLast: scene.last,
    playing: false,
    camera,
    aspect: 1.5,
    selected: firstSelection(motion, scene.first, scene.last),
    hidden: new Set(),
    solo: new Set(),
    take: null,
    relativeTo: null,
    space: "place",
    through: null,
    seen: null,
    colorBy: "mode",
    mode: scene.colorModeChosen ? null : 1,
    lineWidth: null,
    pointSize: null,
    showLine: null,
    showDots: null,
    ghost: null,
    showKeys: true,
    showLabels: true,
    showStatics: true,
    showBones: true,
    window: false,
    windowBefore: 12,
    windowAfter: 12,
    onion: "off",
    onionEvery: 4,
    onionBefore: 3,
    onionAfter: 3,
    showCompared: !scene.compared?.opened,
    palette: "engine",
    theme: "auto",
    pictureScale: 1,
    pictureTitle: false,
    pictureLegend: false,
    pictureFrame: false,
    search: "",
    movingOnly: true,
    folded: stillBranches(motion),
    graph: "spacing",
    showChannels: false,
    timeSpan: null,
    showList: null,
    showSettings: null,
    letterKeys: true,
    hover: null,
  };
}

export type Change = ReadonlySet<keyof ViewState>;

export class Store {
  private current: ViewState;
  private readonly listeners = new Set<(state: ViewState, changed: Change) => void>();

  constructor(initial: ViewState) {
    this.current = initial;
  }

  get state(): ViewState {
    return this.current;
  }

  /** Changes the state, and tells the listeners once which keys have changed. */
  set(patch: Partial<ViewState>): void {
    const changed = new Set<keyof ViewState>();
    for (const key of Object.keys(patch) as (keyof ViewState)[])
      if (!Object.is(this.current[key], patch[key])) changed.add(key);
    if (changed.size === 0) return;
    this.current = { ...this.current, ...patch };
    for (const listener of this.listeners) listener(this.current, changed); // current: a listener may set more
  }

  /** Calls back after every change of one of `keys` (without keys: of any), until the result is called. */
  subscribe(listener: (state: ViewState, changed: Change) => void, keys?: readonly (keyof ViewState)[]): () => void {
    const guarded = keys
      ? (state: ViewState, changed: Change) => {
          if (keys.some((key) => changed.has(key))) listener(state, changed);
        }
      : listener;
    this.listeners.add(guarded);
    return () => this.listeners.delete(guarded);
  }
}

/** The set with the item added, or removed if it was there. */
export function toggled(set: ReadonlySet<number>, item: number): ReadonlySet<number> {
  const result = new Set(set);
  if (!result.delete(item)) result.add(item);
  return result;
}

export const isVisible = (state: ViewState, trail: number): boolean =>
  !state.hidden.has(trail) && (state.solo.size === 0 || state.solo.has(trail));

/** Whether positions are those of the world. */
export const isInWorld = ({ relativeTo, space }: ViewState): boolean =>
  relativeTo === null && (space === "place" || space === "turning");

/** Whether what stands around the trails is there, too: it neither turns nor follows a camera. */
export const hasGround = ({ relativeTo, space }: ViewState): boolean =>
  space === "place" || (space === "turning" && relativeTo === null);
