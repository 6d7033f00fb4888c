// What a page shows of a scene before anybody has chosen anything.

import type { Vec3 } from "../source/trail";
import { hierarchyOf } from "./hierarchy";
import { isFinitePoint, type Motion } from "./motion";
import { together } from "./reach";

/** The most trails that are lit at first. */
const MOST_CHOSEN = 5;

/** Ends that stay nearer to each other than this part of the figure belong to one limb, as fingers to a hand. */
const ONE_LIMB = 0.15;

/** Frames at which the figure is looked at. */
const LOOKS = 9;

/** The figure at some frames: a place for each trail, by frame. */
function posesOf(motion: Motion, trails: readonly number[], first: number, last: number): Vec3[][] {
  const frames = Array.from({ length: LOOKS }, (_, i) => first + ((last - first) * i) / (LOOKS - 1));
  return frames.map((frame) => trails.map((trail) => motion.shownPosition(trail, frame)));
}

const apart = (a: Vec3, b: Vec3) => Math.hypot(a[0] - b[0], a[1] - b[1], a[2] - b[2]);

/** The longest side of the figure in its largest pose. */
const sizeOf = (poses: readonly Vec3[][]) =>
  Math.max(0, ...poses.map((pose) => together(pose.filter(isFinitePoint).map((p) => ({ low: p, high: p, extent: 0, length: 0 }))).extent));

/**
 * The ends that travel most: of the trails that move, those below which nothing moves; of each limb one. In the order
 * of the trails; at most five. The first trail where nothing moves.
 */
export function firstSelection(motion: Motion, first: number, last: number): ReadonlySet<number> {
  const all = motion.trails.map((_, index) => index);
  const moves = all.filter((index) => motion.moving[index]);
  if (moves.length === 0) return new Set(all.slice(0, 1));
  const { parents } = hierarchyOf(motion.trails);
  const above = new Set<number>();
  for (const index of moves)
    for (let at = parents[index]; at !== null && !above.has(at); at = parents[at]) above.add(at);
  const ends = moves.filter((index) => !above.has(index)).sort((a, b) => motion.reach[b].length - motion.reach[a].length);
  const poses = posesOf(motion, ends, first, last);
  const near = ONE_LIMB * sizeOf(posesOf(motion, moves, first, last));
  const figure = above.size > 0; // without one, objects that lie side by side are not parts of one
  const chosen: number[] = [];
  ends.forEach((_, end) => {
    const same = (other: number) => figure && poses.every((pose) => !(apart(pose[end], pose[other]) > near));
    if (chosen.length < MOST_CHOSEN && !chosen.some(same)) chosen.push(end);
  });
  return new Set(chosen.map((end) => ends[end]).sort((a, b) => a - b));
}
