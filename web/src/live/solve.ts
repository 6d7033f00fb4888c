// A change of up to three numbers, each of which moves a point along a line of its own, that takes the point as near to where
// it is wanted as they can.

export type Vec3 = [number, number, number];
/** How far one of each number moves the point. */
export type Columns = readonly Readonly<Vec3>[];

/** What is shorter than this part of the longest is no direction of its own. */
const FLAT = 1e-9;

const dot = (a: Readonly<Vec3>, b: Readonly<Vec3>) => a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
const minus = (a: Readonly<Vec3>, b: Readonly<Vec3>, times: number): Vec3 =>
  [a[0] - times * b[0], a[1] - times * b[1], a[2] - times * b[2]];

/** Makes the columns stand upright on each other one by one, and goes back from the last. */
export function solve(columns: Columns, by: Readonly<Vec3>): number[] {
  const longest = Math.max(...columns.map((column) => Math.hypot(...column)));
  const upright: { axis: Vec3; square: number; of: number[] }[] = [];
  columns.forEach((column, k) => {
    let axis: Vec3 = [...column];
    const of = columns.map((_, i) => (i === k ? 1 : 0));
    for (const other of upright) {
      if (other.square === 0) continue;
      const times = dot(axis, other.axis) / other.square;
      axis = minus(axis, other.axis, times);
      other.of.forEach((part, i) => (of[i] -= times * part));
    }
    const length = Math.hypot(...axis);
    upright.push({ axis, square: length > FLAT * longest ? length * length : 0, of });
  });
  const result = columns.map(() => 0);
  for (const { axis, square, of } of upright)
    if (square > 0) of.forEach((part, i) => (result[i] += (part * dot(axis, by)) / square));
  return result;
}
