// Where something is and how it is turned, without size or shear: three axes of length 1, square to each other, and a place.

import type { Vec3 } from "../../source/trail";

export interface Rigid {
  readonly x: Vec3;
  readonly y: Vec3;
  readonly z: Vec3;
  readonly at: Vec3;
}

const dot = (a: Vec3, b: Vec3) => a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
const scaled = (a: Vec3, by: number): Vec3 => [a[0] * by, a[1] * by, a[2] * by];
const minus = (a: Vec3, b: Vec3): Vec3 => [a[0] - b[0], a[1] - b[1], a[2] - b[2]];
const unit = (a: Vec3) => scaled(a, 1 / Math.hypot(a[0], a[1], a[2]));

/** The same directions, each made square to those before it; not a number where one has no length. */
function squared(first: Vec3, second: Vec3, third: Vec3): [Vec3, Vec3, Vec3] {
  const a = unit(first);
  const b = unit(minus(second, scaled(a, dot(a, second))));
  const c = unit(minus(minus(third, scaled(a, dot(a, third))), scaled(b, dot(b, third))));
  return [a, b, c];
}

type Rows = readonly [x: Vec3, y: Vec3, z: Vec3, at: Vec3];

/** The rows of the matrix that begins at an element. */
function rowsOf(matrices: Float64Array, begin: number): Rows {
  const row = (k: number): Vec3 => [matrices[begin + 4 * k], matrices[begin + 4 * k + 1], matrices[begin + 4 * k + 2]];
  return [row(0), row(1), row(2), row(3)];
}

export function objectAt(matrices: Float64Array, begin: number): Rigid {
  const [a, b, c, at] = rowsOf(matrices, begin);
  const [x, y, z] = squared(a, b, c);
  return { x, y, z, at };
}

/** A camera on such an object: x is to the right in its picture, y up, and it looks along -z. */
export function cameraAt(matrices: Float64Array, begin: number, looks: "-z" | "x"): Rigid {
  const [a, b, c, at] = rowsOf(matrices, begin);
  const [back, right] = looks === "x" ? [scaled(a, -1), c] : [c, a];
  const [z, y, x] = squared(back, b, right);
  return { x, y, z, at };
}

/** Part of the way from one to the other. */
export function between(a: Rigid, b: Rigid, part: number): Rigid {
  if (part === 0) return a;
  const mixed = (from: Vec3, to: Vec3): Vec3 => minus(from, scaled(minus(from, to), part));
  const [z, y, x] = squared(mixed(a.z, b.z), mixed(a.y, b.y), mixed(a.x, b.x));
  return { x, y, z, at: mixed(a.at, b.at) };
}

/** A place of the world as it is seen from there. */
export function seenFrom({ x, y, z, at }: Rigid, place: Vec3): Vec3 {
  const d = minus(place, at);
  return [dot(d, x), dot(d, y), dot(d, z)];
}
