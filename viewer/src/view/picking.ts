// The sample under the pointer.

import type { Hover } from "../model/state";
import type { DrawnTrail } from "./batch";
import type { Projection, Spot } from "./projection";

/** Pixels within which a sample counts as pointed at. */
const NEAR = 14;
/** The most samples that one search looks at; of more it looks at some first, then at those around the nearest. */
const MOST = 150_000;

interface Best {
  trail: DrawnTrail;
  sample: number;
  distance: number;
}

function search(trail: DrawnTrail, from: number, to: number, stride: number, projection: Projection, at: Spot, best: Best | null) {
  const { places } = trail;
  for (let sample = from; sample < to; sample += stride) {
    const spot = projection.spot(places[3 * sample], places[3 * sample + 1], places[3 * sample + 2]);
    if (!spot) continue;
    const distance = Math.hypot(spot.x - at.x, spot.y - at.y);
    if (!best || distance < best.distance) best = { trail, sample, distance };
  }
  return best;
}

export function pick(trails: readonly DrawnTrail[], projection: Projection, at: Spot): Hover | null {
  const total = trails.reduce((sum, trail) => sum + trail.places.length / 3, 0);
  const stride = Math.max(1, Math.ceil(total / MOST));
  let best: Best | null = null;
  for (const trail of trails) best = search(trail, 0, trail.places.length / 3, stride, projection, at, best);
  if (best && stride > 1) {
    const { trail, sample } = best;
    best = search(trail, Math.max(0, sample - stride), Math.min(trail.places.length / 3, sample + stride), 1, projection, at, best);
  }
  return best && best.distance <= NEAR ? { trail: best.trail.index, sample: best.trail.first + best.sample } : null;
}
