// What of the trails lies under the pointer, or in a box: stretches of lines, and samples where no line is drawn.
//
// Both are asked of a region behind a part of the picture. A trail whose box is outside it is done with at once, and so
// is each run of samples; of a million samples, a few hundred are looked at. The boxes do not depend on the camera.

import type { Hover } from "../model/state";
import type { DrawnTrail } from "./primitives/batch";
import type { Area, Projection, Region, Spot } from "./primitives/projection";

/** Pixels within which a line is hit, and within which the nearest one still counts as pointed at. */
const HIT = 5;
const NEAR = 14;

/** Samples that share a box. */
const RUN = 64;

export interface Pickable {
  readonly trail: DrawnTrail;
  /** Whether its line is drawn. */
  readonly lined: boolean;
}

/** The boxes of a trail's runs: low and high, six numbers each; the last is that of all. NaN where there is nothing. */
type Boxes = Float32Array;

const known = new WeakMap<Float32Array, Boxes>();

/** After places in an array have changed. */
export const forgetBoxes = (places: Float32Array): void => void known.delete(places);

/** Grows the box at `to` by the numbers at `from` .. `from + 3`. */
function grow(boxes: Boxes, to: number, values: Float32Array, from: number): void {
  for (let k = 0; k < 3; ++k) {
    const value = values[from + k];
    if (!(boxes[to + k] <= value)) boxes[to + k] = value;
    if (!(boxes[to + 3 + k] >= value)) boxes[to + 3 + k] = value;
  }
}

function boxesOf(places: Float32Array): Boxes {
  let boxes = known.get(places);
  if (boxes) return boxes;
  const runs = Math.ceil(places.length / 3 / RUN);
  known.set(places, (boxes = new Float32Array(6 * (runs + 1)).fill(NaN)));
  for (let run = 0; run < runs; ++run) {
    const end = Math.min(places.length, 3 * (RUN * (run + 1) + 1)); // the stretch to the next run belongs to this one
    for (let i = 3 * RUN * run; i < end; i += 3) if (places[i] === places[i]) grow(boxes, 6 * run, places, i);
    if (boxes[6 * run] === boxes[6 * run]) {
      grow(boxes, 6 * runs, boxes, 6 * run);
      grow(boxes, 6 * runs, boxes, 6 * run + 3);
    }
  }
  return boxes;
}

/** Whether a box reaches into the region, as far as one plane at a time tells. */
function reaches(region: Region, boxes: Boxes, at: number): boolean {
  for (let p = 0; p < 20; p += 4) {
    const x = boxes[region[p] > 0 ? at + 3 : at];
    const y = boxes[region[p + 1] > 0 ? at + 4 : at + 1];
    const z = boxes[region[p + 2] > 0 ? at + 5 : at + 2];
    if (!(region[p] * x + region[p + 1] * y + region[p + 2] * z + region[p + 3] >= 0)) return false;
  }
  return true;
}

/** The part of a stretch that lies in a region, from 0 to 1: [0] to [1] of the last call that was true. */
const part = new Float64Array(2);

function clip(region: Region, places: Float32Array, from: number, to: number): boolean {
  const [a, b] = [3 * from, 3 * to];
  part[0] = 0;
  part[1] = 1;
  for (let p = 0; p < 20; p += 4) {
    const before = region[p] * places[a] + region[p + 1] * places[a + 1] + region[p + 2] * places[a + 2] + region[p + 3];
    const after = region[p] * places[b] + region[p + 1] * places[b + 1] + region[p + 2] * places[b + 2] + region[p + 3];
    if (before < 0 && after < 0) return false;
    if (before < 0) part[0] = Math.max(part[0], before / (before - after));
    else if (after < 0) part[1] = Math.min(part[1], before / (before - after));
  }
  return part[0] <= part[1];
}

/** Calls `visit` with the ends of each stretch that lies in the region, in their order, until it says true. */
function eachIn(region: Region, { trail, lined }: Pickable, visit: (from: number, to: number) => boolean): boolean {
  const { places } = trail;
  const boxes = boxesOf(places);
  const runs = boxes.length / 6 - 1;
  if (!reaches(region, boxes, 6 * runs)) return false;
  const last = places.length / 3 - 1;
  for (let run = 0; run < runs; ++run) {
    if (!reaches(region, boxes, 6 * run)) continue;
    for (let from = RUN * run; from < Math.min(RUN * (run + 1), last + 1); ++from) {
      if (places[3 * from] !== places[3 * from]) continue; // not a number
      const on = lined && from < last && places[3 * from + 3] === places[3 * from + 3];
      const to = on ? from + 1 : from;
      if (clip(region, places, from, to) && visit(from, to)) return true;
    }
  }
  return false;
}

/** The trails of which something that is drawn passes through an area. */
export const passing = (trails: readonly Pickable[], projection: Projection, area: Area): number[] => {
  const region = projection.region(area);
  return trails.filter((each) => eachIn(region, each, () => true)).map(({ trail }) => trail.index);
};

/** The trails that may pass through an area, as far as their boxes tell. */
export const mayPass = (trails: readonly DrawnTrail[], projection: Projection, area: Area): DrawnTrail[] => {
  const region = projection.region(area);
  return trails.filter(({ places }) => {
    const boxes = boxesOf(places);
    return reaches(region, boxes, boxes.length - 6);
  });
};

interface Candidate {
  readonly trail: number;
  readonly sample: number;
  /** Pixels. */
  readonly distance: number;
  readonly depth: number;
}

/** A place on a stretch in clip space: x, y in pixels, depth, and w. */
function place({ m, width, height }: Projection, places: Float32Array, from: number, to: number, t: number) {
  const at = (k: number) => places[3 * from + k] + t * (places[3 * to + k] - places[3 * from + k]);
  const [x, y, z] = [at(0), at(1), at(2)];
  const row = (k: number) => m[k] * x + m[4 + k] * y + m[8 + k] * z + m[12 + k];
  const w = row(3);
  return { x: ((row(0) / w + 1) / 2) * width, y: ((1 - row(1) / w) / 2) * height, z: row(2) / w, w };
}

/** Where the part of a stretch that `clip` left is nearest to the pointer. */
function nearest(projection: Projection, trail: DrawnTrail, from: number, to: number, at: Spot): Candidate {
  const [begin, end] = part;
  const a = place(projection, trail.places, from, to, begin);
  const b = place(projection, trail.places, from, to, end);
  const [dx, dy] = [b.x - a.x, b.y - a.y];
  const squared = dx * dx + dy * dy;
  const s = squared > 0 ? Math.max(0, Math.min(1, ((at.x - a.x) * dx + (at.y - a.y) * dy) / squared)) : 0;
  const t = begin + ((end - begin) * s * a.w) / ((1 - s) * b.w + s * a.w); // as far in space as s is in the picture
  return {
    trail: trail.index, sample: trail.first + (t < 0.5 ? from : to), depth: a.z + s * (b.z - a.z),
    distance: Math.hypot(a.x + s * dx - at.x, a.y + s * dy - at.y),
  };
}

/** Of those that are hit the one before all others; else the one that is nearest in the picture. */
const better = (a: Candidate, b: Candidate | null): boolean =>
  !b || (a.distance <= HIT && b.distance <= HIT ? a.depth < b.depth : a.distance < b.distance);

/** The sample that is nearest to the pointer on the stretch that it hits. Stretches in a row are hit as one. */
export function pick(trails: readonly Pickable[], projection: Projection, at: Spot): Hover | null {
  const region = projection.region({ left: at.x - NEAR, top: at.y - NEAR, right: at.x + NEAR, bottom: at.y + NEAR });
  let best: Candidate | null = null;
  for (const each of trails) {
    let row: Candidate | null = null;
    let next = -1;
    const settle = () => {
      if (row && better(row, best)) best = row;
      row = null;
    };
    eachIn(region, each, (from, to) => {
      const found = nearest(projection, each.trail, from, to, at);
      if (from > next || found.distance > HIT) settle();
      if (!row || found.distance < row.distance) row = found;
      if (found.distance > HIT) settle();
      next = to;
      return false;
    });
    settle();
  }
  const found = best as Candidate | null;
  return found && found.distance <= NEAR ? { trail: found.trail, sample: found.sample } : null;
}
