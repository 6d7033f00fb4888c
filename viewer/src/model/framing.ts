// Camera poses that fit the motion: its samples, not the corners of a box around them.

import type { Vec3 } from "../source/trail";
import type { Motion } from "./motion";
import { ANGLES, directions, halfView, yUp, type Direction } from "./pose";
import { hasExtent, together } from "./reach";
import type { CameraPose, ViewName } from "./state";

export interface Bounds {
  readonly low: Vec3;
  readonly high: Vec3;
}

/** What is framed: positions of trails as they are shown, and how far each reaches. */
export type Shown = Pick<Motion, "shownPoints" | "reach">;

/** The box around these trails as they are shown, y up; a point where they do not move, null when no sample is finite. */
export function boundsOf(motion: Shown, trails: readonly number[], upAxis: "y" | "z"): Bounds | null {
  const reach = together(trails.map((trail) => motion.reach[trail]));
  if (!(reach.low[0] <= reach.high[0])) return null;
  const [a, b] = [yUp(reach.low, upAxis), yUp(hasExtent(reach) ? reach.high : reach.low, upAxis)];
  return { low: a.map((c, k) => Math.min(c, b[k])) as unknown as Vec3, high: a.map((c, k) => Math.max(c, b[k])) as unknown as Vec3 };
}

const middleOf = ({ low, high }: Bounds) => low.map((l, k) => l + (high[k] - l) / 2) as unknown as Vec3;
const longest = ({ low, high }: Bounds) => Math.max(...low.map((l, k) => high[k] - l));

/** The samples of some trails. */
interface Samples {
  readonly motion: Shown;
  readonly trails: readonly number[];
  readonly upAxis: "y" | "z";
}

/** A place or direction of the viewport's space in the scene's own axes. */
const inScene = (d: Vec3, upAxis: "y" | "z"): Vec3 => (upAxis === "z" ? [d[0], -d[2], d[1]] : d);

interface Span {
  low: number;
  high: number;
}

/** The least and the most of a trail's finite samples along a direction, from a point, together with what was found before. */
function widen(span: Span, points: Float64Array, [x, y, z]: Vec3, [fromX, fromY, fromZ]: Vec3): void {
  let { low, high } = span;
  for (let i = 0; i < points.length; i += 3) {
    const value = (points[i] - fromX) * x + (points[i + 1] - fromY) * y + (points[i + 2] - fromZ) * z;
    if (value < low && value > -Infinity) low = value;
    if (value > high && value < Infinity) high = value;
  }
  [span.low, span.high] = [low, high];
}

/** Whether a box reaches beyond a span along a direction. */
function reachesBeyond({ low, high }: Span, box: Bounds, along: Vec3, from: Vec3): boolean {
  const side = (most: boolean) =>
    along.reduce((sum, a, k) => sum + a * ((a > 0 === most ? box.high[k] : box.low[k]) - from[k]), 0);
  return !(side(true) <= high && side(false) >= low);
}

/**
 * The least and the most of the samples along each of some directions, from a point. Trails whose box stays within what
 * was found before are not looked at: of many trails, few remain.
 */
function spans({ motion, trails, upAxis }: Samples, from: Vec3, directionsAlong: readonly Vec3[]): Span[] {
  return directionsAlong.map((direction) => {
    const along = inScene(direction, upAxis);
    const start = inScene(from, upAxis);
    const span = { low: Infinity, high: -Infinity };
    for (const trail of trails)
      if (reachesBeyond(span, motion.reach[trail], along, start)) widen(span, motion.shownPoints(trail), along, start);
    return span;
  });
}

const plus = (a: Vec3, b: Vec3, times: number): Vec3 => [a[0] + b[0] * times, a[1] + b[1] * times, a[2] + b[2] * times];

/** The part of the viewport that a framed motion fills, across or up; the rest is for names. */
const FILLED = 0.86;

/** Where the camera of a perspective stays away from the nearest sample, in parts of the motion's extent. */
const AWAY = 0.1;

/**
 * The pose in which these trails, as they are shown, fill the viewport with no sample outside. A perspective keeps the
 * direction of `from`; other views have their own. The surroundings of the origin where there is no sample.
 *
 * A camera with its eye at e sees a point p while |(p - e) right| <= across * ((p - e) away), and likewise up. For the
 * right edge that is p (right - across * away) <= e (right - across * away), so of all samples only the most of the
 * left side counts; each edge has such a direction. In a parallel view the edges do not lean, and the same holds.
 */
export function framing(
  motion: Shown, trails: readonly number[], upAxis: "y" | "z", view: ViewName, aspect: number, from: Direction,
): CameraPose {
  const { azimuth, elevation } = view === "persp" ? from : ANGLES[view];
  const [right, up, towards] = directions(azimuth, elevation);
  const [across, upwards] = halfView(aspect).map((half) => half * FILLED);
  const box = boundsOf(motion, trails, upAxis);
  const middle = box ? middleOf(box) : ([0, 0, 0] as const);
  const extent = box ? longest(box) : 0;
  if (!(extent > 0)) return { view, target: middle, distance: 1 / Math.min(across, upwards), azimuth, elevation };
  const leaning = view === "persp" ? 1 : 0;
  const [rightEdge, leftEdge, upperEdge, lowerEdge, depth] = spans({ motion, trails, upAxis }, middle, [
    plus(right, towards, leaning * across), plus(right, towards, -leaning * across),
    plus(up, towards, leaning * upwards), plus(up, towards, -leaning * upwards), towards,
  ]);
  const back = Math.max((rightEdge.high - leftEdge.low) / 2 / across, (upperEdge.high - lowerEdge.low) / 2 / upwards);
  // The target lies in the middle of the motion's depth, so that turning the camera turns the motion.
  const centre = (depth.low + depth.high) / 2;
  const sides = plus(plus(middle, right, (rightEdge.high + leftEdge.low) / 2), up, (upperEdge.high + lowerEdge.low) / 2);
  const eye = Math.max(back, depth.high + AWAY * extent);
  return {
    view, azimuth, elevation,
    target: plus(sides, towards, centre),
    distance: leaning ? eye - centre : back > 0 ? back : extent,
  };
}

/** The most samples of which the main direction is told; of more, some of each trail tell it as well. */
const MOST_TELLING = 50_000;

/** What of the motion's plane tells its main direction: sums over the samples, from the middle of their box. */
function spread({ motion, trails, upAxis }: Samples, middle: Vec3): { xx: number; zz: number; xz: number } {
  let [xx, zz, xz] = [0, 0, 0];
  const total = trails.reduce((sum, trail) => sum + motion.shownPoints(trail).length / 3, 0);
  const stride = 3 * Math.max(1, Math.floor(total / MOST_TELLING));
  const [depth, sign] = upAxis === "z" ? [1, -1] : [2, 1];
  for (const trail of trails) {
    const points = motion.shownPoints(trail);
    for (let i = 0; i < points.length; i += stride) {
      const [x, z] = [points[i] - middle[0], sign * points[i + depth] - middle[2]];
      if (!Number.isFinite(x) || !Number.isFinite(z)) continue;
      xx += x * x;
      zz += z * z;
      xz += x * z;
    }
  }
  return { xx, zz, xz };
}

/** The sum of the ways from the first sample to the last, along x and z. */
function netWay({ motion, trails, upAxis }: Samples): [number, number] {
  const net: [number, number] = [0, 0];
  for (const trail of trails) {
    const points = motion.shownPoints(trail);
    const place = (sample: number) => yUp([points[3 * sample], points[3 * sample + 1], points[3 * sample + 2]], upAxis);
    const [a, b] = [place(0), place(points.length / 3 - 1)];
    const way = [b[0] - a[0], b[2] - a[2]];
    if (way.every(Number.isFinite)) net.forEach((_, i) => (net[i] += way[i]));
  }
  return net;
}

/** The direction from which a perspective view shows these trails best: they run across the picture, to the right. */
export function bestDirection(motion: Shown, trails: readonly number[], upAxis: "y" | "z"): Direction {
  const box = boundsOf(motion, trails, upAxis);
  if (!box) return { azimuth: 30, elevation: 18 };
  const samples = { motion, trails, upAxis };
  const { xx, zz, xz } = spread(samples, middleOf(box));
  const clear = Math.hypot((xx - zz) / 2, xz) > 0.15 * (xx + zz);
  const along = clear ? ((0.5 * Math.atan2(2 * xz, xx - zz)) / Math.PI) * 180 : -8;
  const azimuth = 22 - along; // 22 degrees off the main direction, to show some depth
  const [right] = directions(azimuth, 0);
  const [x, z] = netWay(samples);
  const backwards = x * right[0] + z * right[2] < -0.05 * longest(box);
  const size = box.high.map((h, k) => h - box.low[k]);
  const flat = size[1] < 0.15 * Math.max(size[0], size[2]);
  return { azimuth: backwards ? azimuth + 180 : azimuth, elevation: flat ? 38 : 18 };
}
