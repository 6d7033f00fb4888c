// What the graph under the timeline can show of a trail: a number at each sample, or from each sample to the next. The
// formulas are those of docs/measures.md, for what is shown: in a relative view, the relative motion.

import type { Trail } from "../source/trail";
import type { App } from "./app";
import { PICTURE_WIDTH } from "./camera/film";
import { pixelSpacing } from "./camera/pixels";
import { unitName } from "./format";
import { meanOfSides, triple } from "./motion";

export const GRAPHS = ["spacing", "speed", "acceleration", "jerk", "curvature", "pops", "sliding", "screen"] as const;
export type GraphName = (typeof GRAPHS)[number];

interface Kind {
  readonly title: string;
  /** Of its numbers, where lengths are in this unit. */
  readonly unit: (length: string) => string;
  /** Its numbers belong to the stretches between samples, of which there is one less. */
  readonly between?: boolean;
  /** How the most and the least are called. */
  readonly words: readonly [most: string, least: string];
  values(app: App, trail: number): Float64Array;
}

/** Samples on either side that a derivative needs. */
const REACH = 3;
/** What is slower than this part of the mean speed has no direction, and no curvature. */
const TURNING = 0.1;
/** The part of the mean step below which a deviation cannot be seen, and that of coordinates which is their rounding. */
const [SLOW, ROUNDING, NO_STEP] = [0.01, 2e-6, 1e-9];
/** In parts of the figure's height: how high above the floor contact ends. */
const NEAR = 0.03;

const sampleRate = (app: App, { frameStep }: Trail) => app.scene.fps / frameStep;

const length = (v: readonly number[]) => Math.hypot(v[0], v[1], v[2]);

/** A number at each sample that has so many on either side; NaN elsewhere, and for what is not finite. */
function atSamples(points: Float64Array, reach: number, value: (sample: number) => number): Float64Array {
  const result = new Float64Array(points.length / 3).fill(NaN);
  for (let i = reach; i + reach < result.length; ++i) {
    const found = value(i);
    if (Number.isFinite(found)) result[i] = found;
  }
  return result;
}

/** Of each coordinate: the sum of the samples around one, each times its weight; `weights` begins at -reach. */
function weighted(points: Float64Array, sample: number, weights: readonly number[]): [number, number, number] {
  const sum: [number, number, number] = [0, 0, 0];
  const reach = (weights.length - 1) / 2;
  weights.forEach((weight, i) => {
    const p = triple(points, sample + i - reach);
    for (let k = 0; k < 3; ++k) sum[k] += weight * p[k];
  });
  return sum;
}

const FIRST = [-1, 9, -45, 0, 45, -9, 1].map((weight) => weight / 60);
const SECOND = [2, -27, 270, -490, 270, -27, 2].map((weight) => weight / 180);
const THIRD = [1, -8, 13, 0, -13, 8, -1].map((weight) => weight / 8);
/** A sample's distance from the cubic through the two on either side. */
const OFF = [1, -4, 6, -4, 1].map((weight) => weight / 6);

function derivative(app: App, trail: number, weights: readonly number[], order: number): Float64Array {
  const points = app.motion.shownPoints(trail);
  const scale = sampleRate(app, app.motion.trails[trail]) ** order;
  const values = atSamples(points, REACH, (i) => scale * length(weighted(points, i, weights)));
  return values.map((value, i) => (Number.isFinite(points[3 * i]) ? value : NaN)); // which an odd derivative does not notice
}

const mean = (values: readonly number[]) => values.reduce((a, b) => a + b, 0) / values.length;

function curvature(app: App, trail: number): Float64Array {
  const points = app.motion.shownPoints(trail);
  const least = TURNING * mean([...app.motion.spacing(trail)].filter(Number.isFinite)) * app.motion.trails[trail].frameStep;
  return atSamples(points, REACH, (i) => {
    const v = weighted(points, i, FIRST); // per sample: the rate cancels
    const a = weighted(points, i, SECOND);
    const speed = length(v);
    if (!(speed > 0 && speed >= least)) return NaN;
    return length([v[1] * a[2] - v[2] * a[1], v[2] * a[0] - v[0] * a[2], v[0] * a[1] - v[1] * a[0]]) / speed ** 3;
  });
}

function median(values: readonly number[]): number {
  const sorted = [...values].sort((a, b) => a - b);
  return (sorted[(sorted.length - 1) >> 1] + sorted[sorted.length >> 1]) / 2;
}

/** Scores of every sample, also of those that are no peaks. */
function pops(app: App, trail: number): Float64Array {
  const points = app.motion.shownPoints(trail);
  const off = atSamples(points, 2, (i) => length(weighted(points, i, OFF)));
  const steps = [...app.motion.spacing(trail)].map((step) => step * app.motion.trails[trail].frameStep).filter((step) => step > NO_STEP);
  if (steps.length === 0) return off.fill(NaN);
  const largest = points.reduce((most, c) => Math.max(most, Number.isFinite(c) ? Math.abs(c) : 0), 0);
  const usual = Math.max(median([...off].filter(Number.isFinite)) || 0, SLOW * mean(steps), ROUNDING * largest);
  return off.map((distance) => distance / usual);
}

/** How fast an object moves along the floor while it touches that; in the world, since the floor stays there. */
function sliding(app: App, index: number): Float64Array {
  const trail = app.motion.trails[index];
  const result = new Float64Array(Math.max(0, trail.count - 1)).fill(NaN);
  const { floor, figure_height: height } = measuresOf(app, index);
  if (floor == null || height == null) return result;
  const [up, across] = app.scene.upAxis === "z" ? [2, 1] : [1, 2];
  const isNear = (i: number) => trail.points[3 * i + up] - floor <= NEAR * height;
  const way = (i: number, axis: number) => trail.points[3 * (i + 1) + axis] - trail.points[3 * i + axis];
  return result.map((_, i) => (isNear(i) && isNear(i + 1) ? Math.hypot(way(i, 0), way(i, across)) * sampleRate(app, trail) : NaN));
}

/** The measures of a trail by their names; null where one is not known. */
export function measuresOf(app: App, trail: number): Readonly<Record<string, number | null>> {
  const { measures } = app.motion.trails[trail];
  return Object.fromEntries(app.scene.measures.map(({ name }, i) => [name, measures[i]]));
}

const FASTEST = ["fastest", "slowest"] as const;
const MOST = ["most", "least"] as const;

const KINDS: Readonly<Record<GraphName, Kind>> = {
  spacing: { title: "Spacing", unit: (of) => `${of} per frame`, between: true, words: FASTEST,
    values: (app, trail) => app.motion.spacing(trail) },
  speed: { title: "Speed", unit: (of) => `${of} per second`, between: true, words: FASTEST,
    values: (app, trail) => app.motion.spacing(trail).map((way) => way * app.scene.fps) },
  acceleration: { title: "Acceleration", unit: (of) => `${of} per second squared`, words: MOST,
    values: (app, trail) => derivative(app, trail, SECOND, 2) },
  jerk: { title: "Jerk", unit: (of) => `${of} per second cubed`, words: MOST,
    values: (app, trail) => derivative(app, trail, THIRD, 3) },
  curvature: { title: "Curvature", unit: (of) => `per ${of}`, words: MOST, values: curvature },
  pops: { title: "Pops", unit: () => "times the usual", words: MOST, values: pops },
  sliding: { title: "Sliding", unit: (of) => `${of} per second`, between: true, words: FASTEST, values: sliding },
  screen: { title: "On screen", unit: () => `pixels per frame, of ${PICTURE_WIDTH} across`, between: true, words: FASTEST,
    values: (app, trail) => pixelSpacing(app.store.state.seen?.film ?? null, app.motion.trails[trail]) },
};

/** Whether its values depend on measures, which a live page learns later than positions. */
export const needsMeasures = (name: GraphName): boolean => name === "sliding";

/** Values by the points that they were made of, which are another array once anything changes, as the measures are. */
const kept = new Map(GRAPHS.map((name) => [name, new WeakMap<Float64Array, { values: Float64Array; measures: Trail["measures"] }>()]));

function keptValues(app: App, name: GraphName, trail: number): Float64Array {
  if (name === "screen") return KINDS.screen.values(app, trail); // which depends on the camera, too
  const byPoints = kept.get(name)!;
  const points = app.motion.shownPoints(trail);
  const { measures } = app.motion.trails[trail];
  const found = byPoints.get(points);
  if (found && (found.measures === measures || !needsMeasures(name))) return found.values;
  const values = KINDS[name].values(app, trail);
  byPoints.set(points, { values, measures });
  return values;
}

/** Those that there are of a scene. */
export const graphsOf = ({ spaces }: App): readonly GraphName[] =>
  GRAPHS.filter((name) => name !== "screen" || (spaces && spaces.cameras.length > 0));

/** One of them, for a scene. */
export interface Graph {
  readonly title: string;
  readonly unit: string;
  readonly words: readonly [most: string, least: string];
  /** Whether values belong to the stretches between samples, and to a stretch around each otherwise. */
  readonly between: boolean;
  values(trail: number): Float64Array;
  /** At a sample: of stretches the mean of those on its two sides. */
  at(trail: number, sample: number): number;
}

export function graphOf(app: App, name: GraphName): Graph {
  const { title, unit, words, between = false } = KINDS[name];
  const values = (trail: number) => keptValues(app, name, trail);
  return {
    title, unit: unit(unitName(app.scene.unit)), words, between, values,
    at: (trail, sample) => (between ? meanOfSides(values(trail), sample) : values(trail)[sample]),
  };
}
