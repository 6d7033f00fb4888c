// Camera poses. The viewport's space has y up; what a scene with z up holds is turned into it.

import type { Vec3 } from "../source/trail";
import { isVisible, type CameraPose, type ViewName, type ViewState } from "./state";
import { isFinitePoint, triple, type Motion } from "./motion";

/** Degrees that the smaller side of the viewport sees. */
export const FIELD_OF_VIEW = 35;

export interface Bounds {
  low: [number, number, number];
  high: [number, number, number];
}

/** The point in the viewport's space, where y is up. */
export const yUp = (p: Vec3, upAxis: "y" | "z"): Vec3 => (upAxis === "z" ? [p[0], p[2], -p[1]] : p);

function includePoints({ low, high }: Bounds, points: Float64Array, zUp: boolean): void {
  for (let i = 0; i < points.length; i += 3) {
    const [y, z] = zUp ? [points[i + 2], -points[i + 1]] : [points[i + 1], points[i + 2]];
    const x = points[i];
    if (!(Number.isFinite(x) && Number.isFinite(y) && Number.isFinite(z))) continue;
    if (x < low[0]) low[0] = x;
    if (x > high[0]) high[0] = x;
    if (y < low[1]) low[1] = y;
    if (y > high[1]) high[1] = y;
    if (z < low[2]) low[2] = z;
    if (z > high[2]) high[2] = z;
  }
}

/** The box around all finite samples of these trails as they are shown, y up; null when there is none. */
export function boundsOf(motion: Motion, trails: Iterable<number>, upAxis: "y" | "z"): Bounds | null {
  const box: Bounds = { low: [Infinity, Infinity, Infinity], high: [-Infinity, -Infinity, -Infinity] };
  for (const trail of trails) includePoints(box, motion.shownPoints(trail), upAxis === "z");
  return box.low[0] <= box.high[0] ? box : null;
}

export const DEGREE = Math.PI / 180;

const ANGLES: Record<Exclude<ViewName, "persp">, { azimuth: number; elevation: number }> = {
  front: { azimuth: 0, elevation: 0 },
  side: { azimuth: 90, elevation: 0 },
  top: { azimuth: 0, elevation: 90 },
};

/** The picture's right, up and towards the reader, for a direction of looking. */
export function directions(azimuth: number, elevation: number): [Vec3, Vec3, Vec3] {
  const [a, e] = [azimuth * DEGREE, elevation * DEGREE];
  return [
    [Math.cos(a), 0, -Math.sin(a)],
    [-Math.sin(a) * Math.sin(e), Math.cos(e), -Math.cos(a) * Math.sin(e)],
    [Math.sin(a) * Math.cos(e), Math.sin(e), Math.cos(a) * Math.cos(e)],
  ];
}

const dot = (a: Vec3, b: Vec3) => a[0] * b[0] + a[1] * b[1] + a[2] * b[2];

/** The tangents of half of what the viewport sees, across and up. */
export function halfView(aspect: number): [number, number] {
  const half = Math.tan((FIELD_OF_VIEW / 2) * DEGREE); // of the smaller side
  return [half * Math.max(aspect, 1), half / Math.min(aspect, 1)];
}

/** The least distance from which every corner of the box, as seen from its middle, is in the picture. */
function fittingDistance(half: readonly number[], view: ViewName, azimuth: number, elevation: number, aspect: number): number {
  const [right, up, towards] = directions(azimuth, elevation);
  const [across, upwards] = halfView(aspect).map((h) => h * 0.86); // room for labels
  let distance = 0;
  for (let corner = 0; corner < 8; ++corner) {
    const p = half.map((h, k) => (corner & (1 << k) ? h : -h)) as unknown as Vec3;
    const needed = Math.max(Math.abs(dot(p, right)) / across, Math.abs(dot(p, up)) / upwards);
    distance = Math.max(distance, needed + (view === "persp" ? dot(p, towards) : 0));
  }
  return distance;
}

/** A pose that sees the whole box. A perspective keeps the direction of `from`; other views have their own. */
export function framing(box: Bounds | null, view: ViewName, aspect: number, from: { azimuth: number; elevation: number }): CameraPose {
  const low = box?.low ?? [-1, -1, -1];
  const high = box?.high ?? [1, 1, 1];
  const { azimuth, elevation } = view === "persp" ? from : ANGLES[view];
  const half = low.map((l, k) => (high[k] - l) / 2);
  const target = low.map((l, k) => l + half[k]) as unknown as Vec3;
  const least = Math.max(...half) > 0 ? half : [1, 1, 1];
  return { view, target, distance: fittingDistance(least, view, azimuth, elevation, aspect), azimuth, elevation };
}

/** The direction from which a perspective view shows the motion best: it runs across the picture, to the right. */
export function bestDirection(motion: Motion, box: Bounds | null, upAxis: "y" | "z"): { azimuth: number; elevation: number } {
  if (!box) return { azimuth: 30, elevation: 18 };
  const size = box.high.map((h, k) => h - box.low[k]);
  const middle = box.low.map((l, k) => l + size[k] / 2);
  let [xx, zz, xz] = [0, 0, 0];
  const net = [0, 0];
  motion.trails.forEach((trail, index) => {
    const points = motion.shownPoints(index);
    for (let i = 0; i < trail.count; ++i) {
      const p = yUp(triple(points, i), upAxis);
      if (!isFinitePoint(p)) continue;
      const [x, z] = [p[0] - middle[0], p[2] - middle[2]];
      xx += x * x;
      zz += z * z;
      xz += x * z;
    }
    const way = [0, trail.count - 1].map((i) => yUp(triple(points, i), upAxis));
    if (way.every(isFinitePoint)) [0, 2].forEach((k, i) => (net[i] += way[1][k] - way[0][k]));
  });
  const clear = Math.hypot((xx - zz) / 2, xz) > 0.15 * (xx + zz);
  const along = clear ? (0.5 * Math.atan2(2 * xz, xx - zz)) / DEGREE : -8;
  // 22 degrees off the main direction, to show some depth.
  const azimuth = 22 - along;
  const [right] = directions(azimuth, 0);
  const backwards = net[0] * right[0] + net[1] * right[2] < -0.05 * Math.max(...size);
  const flat = size[1] < 0.15 * Math.max(size[0], size[2]);
  return { azimuth: backwards ? azimuth + 180 : azimuth, elevation: flat ? 38 : 18 };
}

/** The target of a pose, moved in its picture's plane. */
export function movedTarget({ target, azimuth, elevation }: CameraPose, right: number, up: number): Vec3 {
  const [r, u] = directions(azimuth, elevation);
  return target.map((t, k) => t + right * r[k] + up * u[k]) as unknown as Vec3;
}

export function visibleTrails(motion: Motion, state: ViewState): number[] {
  return motion.trails.map((_, i) => i).filter((i) => isVisible(state, i));
}
