// Where a place goes when the pointer drags it. Places are in the viewport's space, y up.

import type { Camera } from "three";
import { yUp } from "../model/pose";
import type { Vec3 } from "../source/trail";
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
