// How far trails reach and travel, as they are shown: what moves, and how much.

import type { Vec3 } from "../source/trail";

/** What stays within this part of the scene's extent counts as still. */
const STILL = 1e-4;

/** What stays within this part of its own coordinates moves by rounding at most: files hold 24 bits, and several are composed. */
const ROUNDING = 2e-6;

/** The box around a trail's finite samples, and how long its line is. */
export interface Reach {
  readonly low: Vec3;
  readonly high: Vec3;
  /** The longest side of the box; 0 where no sample is finite. */
  readonly extent: number;
  readonly length: number;
}

const NOWHERE: Reach = { low: [Infinity, Infinity, Infinity], high: [-Infinity, -Infinity, -Infinity], extent: 0, length: 0 };

const longestSide = (low: Vec3, high: Vec3) => Math.max(0, high[0] - low[0], high[1] - low[1], high[2] - low[2]);

/** Of flat triples. */
export function reachOf(points: Float64Array): Reach {
  const low: [number, number, number] = [...NOWHERE.low];
  const high: [number, number, number] = [...NOWHERE.high];
  let length = 0;
  let [x, y, z] = [NaN, NaN, NaN]; // of the sample before
  for (let i = 0; i < points.length; i += 3) {
    const [px, py, pz] = [points[i], points[i + 1], points[i + 2]];
    const step = Math.hypot(px - x, py - y, pz - z);
    if (Number.isFinite(step)) length += step;
    [x, y, z] = [px, py, pz];
    if (!(Number.isFinite(px) && Number.isFinite(py) && Number.isFinite(pz))) continue;
    if (px < low[0]) low[0] = px;
    if (px > high[0]) high[0] = px;
    if (py < low[1]) low[1] = py;
    if (py > high[1]) high[1] = py;
    if (pz < low[2]) low[2] = pz;
    if (pz > high[2]) high[2] = pz;
  }
  return { low, high, extent: longestSide(low, high), length };
}

/** The box around several. */
export function together(reaches: readonly Reach[]): Reach {
  const side = (pick: (...values: number[]) => number, of: "low" | "high") =>
    [0, 1, 2].map((k) => reaches.reduce((most, reach) => pick(most, reach[of][k]), NOWHERE[of][k])) as unknown as Vec3;
  const [low, high] = [side(Math.min, "low"), side(Math.max, "high")];
  return { low, high, extent: longestSide(low, high), length: reaches.reduce((sum, { length }) => sum + length, 0) };
}

const largestCoordinate = ({ low, high }: Reach) => Math.max(...low.map((l, k) => Math.max(Math.abs(l), Math.abs(high[k]))));

/** Whether there is more to see than the rounding of coordinates. */
export const hasExtent = (reach: Reach): boolean => reach.extent > ROUNDING * largestCoordinate(reach);

/** Which of the trails move. The scene's extent is that of everything that moves at all: a light far away is no measure. */
export function moving(reaches: readonly Reach[]): boolean[] {
  const atAll = reaches.map(hasExtent);
  const { extent } = together(reaches.filter((_, i) => atAll[i]));
  return reaches.map((reach, i) => atAll[i] && reach.extent > STILL * extent);
}
