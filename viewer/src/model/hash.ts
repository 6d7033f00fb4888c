// The state of the page as the hash of its address: "key=value&...", with only what differs from the state at the start.
// Values that make no sense are ignored.

import type { ColorMode, Vec3 } from "../source/trail";
import { GRAPHS } from "./graphs";
import type { CameraPose, ViewState } from "./state";
import { within, type TimeSpan } from "./time_span";

interface Field<K extends keyof ViewState> {
  name: string;
  write(value: ViewState[K]): string;
  /** Undefined where the text is not a value of the field; `trails` is the number of trails. */
  read(text: string, trails: number): ViewState[K] | undefined;
}

type Fields = { [K in keyof ViewState]?: Field<K> };

const oneOf = <T extends string>(...values: T[]) => ({
  write: (value: T) => value,
  read: (text: string) => values.find((value) => value === text),
});

const finite = (text: string): number | undefined => {
  const value = Number(text);
  return text.trim() !== "" && Number.isFinite(value) ? value : undefined;
};

const flag = { write: (value: boolean) => (value ? "1" : "0"), read: (t: string) => (t === "1" ? true : t === "0" ? false : undefined) };
const number = { write: String, read: finite };
/** A whole number from `least` to 999. */
const count = (least: number) => ({
  write: String,
  read: (text: string) => (/^\d{1,3}$/.test(text) && Number(text) >= least ? Number(text) : undefined),
});
const index = {
  write: String,
  read: (text: string, trails: number) => (/^\d+$/.test(text) && Number(text) < trails ? Number(text) : undefined),
};

/** A value that may be null, which is written as an empty text. */
const optional = <T>(field: { write(value: T): string; read(text: string, trails: number): T | undefined }) => ({
  write: (value: T | null) => (value === null ? "" : field.write(value)),
  read: (text: string, trails: number): T | null | undefined => (text === "" ? null : field.read(text, trails)),
});

/** "0-4.7" for 0 to 4 and 7; trails that are not there are left out. */
const indices = {
  write(set: ReadonlySet<number>): string {
    const sorted = [...set].sort((a, b) => a - b);
    const runs: string[] = [];
    for (let i = 0; i < sorted.length; ) {
      let end = i;
      while (sorted[end + 1] === sorted[end] + 1) ++end;
      runs.push(end > i ? `${sorted[i]}-${sorted[end]}` : `${sorted[i]}`);
      i = end + 1;
    }
    return runs.join(".");
  },
  read(text: string, trails: number): ReadonlySet<number> | undefined {
    const result = new Set<number>();
    for (const run of text === "" ? [] : text.split(".")) {
      const match = /^(\d{1,7})(?:-(\d{1,7}))?$/.exec(run);
      if (!match) return undefined;
      const end = Math.min(trails - 1, Number(match[2] ?? match[1]));
      for (let i = Number(match[1]); i <= end; ++i) result.add(i);
    }
    return result;
  },
};

const rounded = (value: number) => Number(value.toPrecision(9)).toString();

const camera = {
  write: (pose: CameraPose) =>
    [pose.view, ...[...pose.target, pose.distance, pose.azimuth, pose.elevation].map(rounded)].join(","),
  read(text: string): CameraPose | undefined {
    const [view, ...rest] = text.split(",");
    const numbers = rest.map(finite);
    const name = oneOf("persp", "front", "side", "top").read(view);
    if (!name || numbers.length !== 6 || numbers.includes(undefined)) return undefined;
    const [x, y, z, distance, azimuth, elevation] = numbers as number[];
    if (!(distance > 0)) return undefined;
    return { view: name, target: [x, y, z] as Vec3, distance, azimuth, elevation };
  },
};

const mode = {
  write: String,
  read: (text: string): ColorMode | undefined => (/^[0-3]$/.test(text) ? (Number(text) as ColorMode) : undefined),
};

const text = { write: (value: string) => value, read: (value: string): string | undefined => value.slice(0, 200) };

const span = {
  write: ([first, last]: TimeSpan) => `${rounded(first)},${rounded(last)}`,
  read(value: string): TimeSpan | undefined {
    const [first, last, ...more] = value.split(",").map(finite);
    return first !== undefined && last !== undefined && more.length === 0 && first < last ? [first, last] : undefined;
  },
};

const FIELDS: Fields = {
  take: { name: "take", ...optional(text) },
  frame: { name: "frame", ...number },
  playFirst: { name: "from", ...number },
  playLast: { name: "to", ...number },
  camera: { name: "camera", ...camera },
  selected: { name: "select", ...indices },
  hidden: { name: "hide", ...indices },
  solo: { name: "solo", ...indices },
  relativeTo: { name: "relative", ...optional(index) },
  space: { name: "space", ...oneOf("place", "turning", "camera", "screen") },
  through: { name: "through", ...optional({ write: String, read: (t: string) => (/^\d{1,4}$/.test(t) ? Number(t) : undefined) }) },
  colorBy: { name: "color", ...oneOf("mode", "object") },
  mode: { name: "mode", ...optional(mode) },
  lineWidth: { name: "width", ...optional(number) },
  pointSize: { name: "dot", ...optional(number) },
  showLine: { name: "line", ...optional(flag) },
  showDots: { name: "dots", ...optional(flag) },
  ghost: { name: "ghost", ...optional(flag) },
  showKeys: { name: "keys", ...flag },
  showLabels: { name: "labels", ...flag },
  showStatics: { name: "boxes", ...flag },
  showBones: { name: "bones", ...flag },
  window: { name: "window", ...flag },
  windowBefore: { name: "windowBefore", ...count(0) },
  windowAfter: { name: "windowAfter", ...count(0) },
  onion: { name: "onion", ...oneOf("off", "frames", "keys") },
  onionEvery: { name: "onionEvery", ...count(1) },
  onionBefore: { name: "onionBefore", ...count(0) },
  onionAfter: { name: "onionAfter", ...count(0) },
  showCompared: { name: "compare", ...flag },
  palette: { name: "palette", ...oneOf("engine", "safe") },
  theme: { name: "theme", ...oneOf("auto", "light", "dark") },
  search: { name: "search", ...text },
  movingOnly: { name: "moving", ...flag },
  folded: { name: "fold", ...indices },
  graph: { name: "graph", ...oneOf(...GRAPHS) },
  showChannels: { name: "channels", ...flag },
  timeSpan: { name: "time", ...optional(span) },
  showList: { name: "list", ...optional(flag) },
  showSettings: { name: "settings", ...optional(flag) },
  letterKeys: { name: "letters", ...flag },
};

/** The fields that a hash keeps. */
export const KEPT = Object.keys(FIELDS) as (keyof ViewState)[];

export function writeHash(state: ViewState, initial: ViewState): string {
  const parts: string[] = [];
  for (const key of KEPT) {
    const field = FIELDS[key] as Field<typeof key>;
    const text = field.write(state[key]);
    if (text !== field.write(initial[key])) parts.push(`${field.name}=${encodeURIComponent(text)}`);
  }
  return parts.join("&");
}

/** The take that a hash names. */
export const takeIn = (hash: string): string | null => new URLSearchParams(hash.replace(/^#/, "")).get(FIELDS.take!.name) || null;

/** The same hash with another take; null: with none. */
export function withTake(hash: string, take: string | null): string {
  const values = new URLSearchParams(hash.replace(/^#/, ""));
  values.delete(FIELDS.take!.name);
  if (take !== null) values.set(FIELDS.take!.name, take);
  return `${values}` && `#${values}`;
}

/** What a hash says about the state; trails that are not there, and frames out of the range, are left out. */
export function readHash(hash: string, initial: ViewState, trailCount: number): Partial<ViewState> {
  const result: Record<string, unknown> = {};
  const values = new URLSearchParams(hash.replace(/^#/, ""));
  for (const key of KEPT) {
    const field = FIELDS[key] as Field<typeof key>;
    const text = values.get(field.name);
    const value = text === null ? undefined : field.read(text, trailCount);
    if (value !== undefined) result[key] = value;
  }
  const patch = result as { -readonly [K in keyof ViewState]?: ViewState[K] };
  for (const key of ["frame", "playFirst", "playLast"] as const) {
    const frame = patch[key];
    if (frame !== undefined) patch[key] = Math.max(initial.playFirst, Math.min(initial.playLast, frame));
  }
  if (patch.timeSpan) patch.timeSpan = within(patch.timeSpan, [initial.playFirst, initial.playLast]);
  if ((patch.playFirst ?? initial.playFirst) > (patch.playLast ?? initial.playLast)) {
    delete patch.playFirst;
    delete patch.playLast;
  }
  return patch;
}
