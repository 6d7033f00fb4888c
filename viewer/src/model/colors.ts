// The four colour modes, by the rules of the engine: what a sample's colour is, in channels of 0..1 as the engine has
// them. A test compares every function with the engine's own. What is drawn has 0..255 a channel, flat, a triple a sample.

import type { ColorMode, Trail } from "../source/trail";

export type Rgb = readonly [number, number, number];

const STANDARD: Rgb = [0.15, 0.75, 0.65];
const PAST: Rgb = [1.0, 0.75, 0.0];
const FUTURE: Rgb = [0.0, 0.65, 0.65];
const ODD_BEAT: Rgb = [0.15, 0.85, 0.25];
const EVEN_BEAT: Rgb = [1.0, 1.0, 1.0];

type Stop = readonly [number, Rgb];

/** Blue, cyan, green, yellow, orange, red: slow to fast; 0.4 is the trail's own typical speed. */
export const RAMP: readonly Stop[] = [
  [0.0, [0.0, 0.0, 1.0]],
  [0.25, [0.0, 1.0, 1.0]],
  [0.5, [0.0, 1.0, 0.0]],
  [0.7, [1.0, 1.0, 0.0]],
  [0.85, [1.0, 0.5, 0.0]],
  [1.0, [1.0, 0.0, 0.0]],
];

/** The colour at t of a list of stops, linear between them; t is clamped to 0..1. */
export function rampColor(t: number, stops: readonly Stop[] = RAMP): Rgb {
  const c = Math.max(0, Math.min(1, t));
  for (let i = 0; i + 1 < stops.length; ++i) {
    const [t0, a] = stops[i];
    const [t1, b] = stops[i + 1];
    if (c > t1) continue;
    const u = t1 > t0 ? (c - t0) / (t1 - t0) : 0;
    return [a[0] + (b[0] - a[0]) * u, a[1] + (b[1] - a[1]) * u, a[2] + (b[2] - a[2]) * u];
  }
  return stops[stops.length - 1][1];
}

/** The colour of a sample; the same object for the same colour. */
export type ColorOf = (sample: number) => Rgb;

export const standardColor: ColorOf = () => STANDARD;

const stepOrOne = (frameStep: number) => (frameStep > 1e-9 ? frameStep : 1);

/** Past and future of the current frame. */
export function flowColor(startFrame: number, frameStep: number, currentFrame: number): ColorOf {
  const now = (currentFrame - startFrame) / stepOrOne(frameStep);
  return (sample) => (sample <= now ? PAST : FUTURE);
}

/** How many of the sorted times are at or before the frame. */
export function countUpTo(times: ArrayLike<number>, frame: number): number {
  let low = 0;
  let high = times.length;
  while (low < high) {
    const middle = (low + high) >> 1;
    if (times[middle] <= frame) low = middle + 1;
    else high = middle;
  }
  return low;
}

/** Alternating between key times, in whatever order they come. */
export function beatsColor(startFrame: number, frameStep: number, keyTimes: ArrayLike<number>): ColorOf {
  const times = Float64Array.from(keyTimes).sort();
  const step = stepOrOne(frameStep);
  return (sample) => (countUpTo(times, startFrame + sample * step) % 2 === 1 ? ODD_BEAT : EVEN_BEAT);
}

/** Where on the ramp a pushed spacing colour lies: the ramp's stretches differ, so each colour has one place. */
export function rampPosition(r: number, g: number, b: number): number {
  if (b > 0 && r === 0) return g < 1 ? 0.25 * g : 0.25 + 0.25 * (1 - b); // blue to cyan to green
  if (g === 1) return 0.5 + 0.2 * r; // green to yellow
  return g >= 0.5 ? 0.7 + 0.3 * (1 - g) : 0.85 + 0.3 * (0.5 - g); // yellow to orange to red
}

/** Slow to fast for every kind of colour vision: dark to light, blue to yellow. Not the engine's own. */
export const SAFE_RAMP: readonly Stop[] = [
  [0.0, [0.13, 0.17, 0.56]],
  [0.25, [0.27, 0.34, 0.6]],
  [0.5, [0.5, 0.5, 0.52]],
  [0.7, [0.73, 0.66, 0.42]],
  [0.85, [0.89, 0.8, 0.3]],
  [1.0, [1.0, 0.93, 0.2]],
];

/** The same for the colours of the other modes. */
const SAFE: ReadonlyMap<Rgb, Rgb> = new Map([
  [PAST, [0.9, 0.6, 0.0]],
  [FUTURE, [0.0, 0.45, 0.7]],
  [ODD_BEAT, [0.0, 0.45, 0.7]],
  [EVEN_BEAT, [0.95, 0.9, 0.25]],
]);

export type Palette = "engine" | "safe";

const inPalette = (color: Rgb, palette: Palette): Rgb => (palette === "safe" ? (SAFE.get(color) ?? color) : color);

function paint(n: number, colorOf: ColorOf, palette: Palette): Uint8Array {
  const values = new Uint8Array(3 * n);
  let last: Rgb | null = null;
  let [r, g, b] = [0, 0, 0];
  for (let sample = 0; sample < n; ++sample) {
    const color = colorOf(sample);
    if (color !== last) [r, g, b] = inPalette(color, palette).map((c) => Math.round(255 * c));
    last = color;
    values[3 * sample] = r;
    values[3 * sample + 1] = g;
    values[3 * sample + 2] = b;
  }
  return values;
}

function safeSpacing(pushed: Uint8Array): Uint8Array {
  const result = new Uint8Array(pushed.length);
  for (let i = 0; i < pushed.length; i += 3) {
    const t = rampPosition(pushed[i] / 255, pushed[i + 1] / 255, pushed[i + 2] / 255);
    rampColor(t, SAFE_RAMP).forEach((c, k) => (result[i + k] = Math.round(c * 255)));
  }
  return result;
}

/** A colour for each sample of a trail, 0..255. */
export function trailColors(trail: Trail, mode: ColorMode, currentFrame: number, palette: Palette): Uint8Array {
  const { count, startFrame, frameStep, keyTimes } = trail;
  switch (mode) {
    case 0:
      return paint(count, standardColor, palette);
    case 1:
      return palette === "safe" ? safeSpacing(trail.colors) : trail.colors;
    case 2:
      return paint(count, flowColor(startFrame, frameStep, currentFrame), palette);
    case 3:
      return paint(count, beatsColor(startFrame, frameStep, keyTimes), palette);
  }
}

/** One of such colours as a style sheet writes it. */
export const rgbText = (values: Uint8Array, sample: number): string =>
  `rgb(${values[3 * sample]},${values[3 * sample + 1]},${values[3 * sample + 2]})`;

/** Colours that tell objects apart, also with the commoner kinds of colour blindness; in order, then again. */
export const OBJECT_COLORS: readonly string[] = [
  "#e69f00", "#56b4e9", "#009e73", "#cc79a7", "#d55e00", "#0072b2", "#b8a910", "#8a6fd1",
];
export const objectColor = (trail: number): string => OBJECT_COLORS[trail % OBJECT_COLORS.length];

let marked: { of: ReadonlySet<number>; colors: ReadonlyMap<number, string> } = { of: new Set(), colors: new Map() };

function spread(selected: ReadonlySet<number>): ReadonlyMap<number, string> {
  const found = new Map<number, string>();
  const uses = new Map(OBJECT_COLORS.map((color) => [color, 0]));
  for (const trail of [...selected].sort((a, b) => a - b)) {
    const least = Math.min(...uses.values());
    const own = OBJECT_COLORS.map((_, i) => objectColor(trail + i)).find((color) => uses.get(color) === least)!;
    uses.set(own, least + 1);
    found.set(trail, own);
  }
  return found;
}

/**
 * The colour that marks an object in the list, in the graph and beside it in the viewport: its own, or the next one
 * where another selected object has that. So up to eight selected objects have eight colours. One that is selected alone
 * needs no mark: its curve has the colours of its trail.
 */
export function markColor(trail: number, selected: ReadonlySet<number>): string {
  if (marked.of !== selected) marked = { of: selected, colors: spread(selected) };
  return marked.colors.get(trail) ?? objectColor(trail);
}
