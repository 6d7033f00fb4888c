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

/** A length that neither overflows nor vanishes where its square would; a plain root is ten times as quick. */
function lengthOf(x: number, y: number, z: number): number {
  const squared = x * x + y * y + z * z;
  return squared > 1e-200 && squared < 1e200 ? Math.sqrt(squared) : Math.hypot(x, y, z);
}

/** How long the line through flat triples is; stretches beside what is not finite do not count. */
function lengthThrough(points: Float64Array): number {
  let length = 0;
  for (let i = 3; i < points.length; i += 3) {
    const step = lengthOf(points[i] - points[i - 3], points[i + 1] - points[i - 2], points[i + 2] - points[i - 1]);
    if (step < Infinity) length += step;
  }
  return length;
}

/** Of flat triples. */
export function reachOf(points: Float64Array): Reach {
  let [lowX, lowY, lowZ] = NOWHERE.low;
  let [highX, highY, highZ] = NOWHERE.high;
  for (let i = 0; i < points.length; i += 3) {
    const x = points[i];
    const y = points[i + 1];
    const z = points[i + 2];
    if (!Number.isFinite(x + y + z) && !(Number.isFinite(x) && Number.isFinite(y) && Number.isFinite(z))) continue;
    if (x < lowX) lowX = x;
    if (x > highX) highX = x;
    if (y < lowY) lowY = y;
    if (y > highY) highY = y;
    if (z < lowZ) lowZ = z;
    if (z > highZ) highZ = z;
  }
  const [low, high]: [Vec3, Vec3] = [[lowX, lowY, lowZ], [highX, highY, highZ]];
  return { low, high, extent: longestSide(low, high), length: lengthThrough(points) };
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
