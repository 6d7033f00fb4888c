// Where a place goes when the pointer drags it. Places are in the viewport's space, y up.

import type { Camera } from "three";
import { yUp } from "../model/pose";
import type { Vec3 } from "../source/trail";
import type { DrawnTrail } from "./primitives/batch";
import type { Projection, Spot } from "./primitives/projection";

export interface Sight {
  readonly projection: Projection;
  readonly camera: Camera;
  readonly upAxis: "y" | "z";
}

const plus = (a: Vec3, b: Vec3, times: number): Vec3 => [a[0] + times * b[0], a[1] + times * b[1], a[2] + times * b[2]];

/** In the plane through the place that faces the reader: the place stays under the pointer. */
export function inPlane({ projection, camera }: Sight, place: Vec3, from: Spot, to: Spot): Vec3 {
  const m = camera.matrixWorld.elements;
  const [right, up]: Vec3[] = [[m[0], m[1], m[2]], [m[4], m[5], m[6]]];
  const x = (to.x - from.x) / projection.pixels(place, right).x;
  const y = (to.y - from.y) / projection.pixels(place, up).y;
  return plus(plus(place, right, x), up, y);
}

/** Steps of the search along an axis: each comes much nearer. */
const STEPS = 12;

/** Along an axis of the scene, 0 to 2: to where that is nearest to the pointer in the picture. */
export function alongAxis({ projection, upAxis }: Sight, place: Vec3, axis: number, from: Spot, to: Spot): Vec3 {
  const unit = yUp([0, 1, 2].map((k) => (k === axis ? 1 : 0)) as unknown as Vec3, upAxis);
  const begin = projection.spot(...place);
  if (!begin) return place;
  const wanted = { x: begin.x + to.x - from.x, y: begin.y + to.y - from.y };
  let at = place;
  for (let step = 0; step < STEPS; ++step) {
    const [spot, by] = [projection.spot(...at), projection.pixels(at, unit)];
    const squared = by.x * by.x + by.y * by.y;
    if (!spot || !(squared > 1e-12)) break; // it points at the reader
    const next = plus(at, unit, ((wanted.x - spot.x) * by.x + (wanted.y - spot.y) * by.y) / squared);
    if (!projection.spot(...next)) break; // behind the reader
    at = next;
  }
  return at;
}

/** Where a pointer leads on a path: the frame at the place of it that is nearest in the picture, between two frames. */
export function alongPath({ projection }: Sight, trail: DrawnTrail, [low, high]: readonly [number, number], at: Spot): number {
  const { places, startFrame, frameStep } = trail;
  let [best, least] = [NaN, Infinity];
  let before: { spot: Spot; frame: number } | null = null;
  for (let i = 0; 3 * i < places.length; ++i) {
    const frame = startFrame + i * frameStep;
    if (frame < low || frame > high) continue;
    const spot = projection.spot(places[3 * i], places[3 * i + 1], places[3 * i + 2]);
    if (spot) {
      const from = before ?? { spot, frame };
      const [dx, dy] = [spot.x - from.spot.x, spot.y - from.spot.y];
      const squared = dx * dx + dy * dy;
      const part = squared > 0 ? Math.max(0, Math.min(1, ((at.x - from.spot.x) * dx + (at.y - from.spot.y) * dy) / squared)) : 0;
      const away = Math.hypot(from.spot.x + part * dx - at.x, from.spot.y + part * dy - at.y);
      if (away < least) [best, least] = [from.frame + part * (frame - from.frame), away];
    }
    before = spot && { spot, frame };
  }
  return best;
}
