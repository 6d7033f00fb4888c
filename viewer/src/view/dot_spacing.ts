// How many frames lie between two dots, so that dots do not touch in the picture.

import { niceStep } from "../model/format";
import type { DrawnTrail } from "./primitives/batch";
import type { Projection } from "./primitives/projection";

/** Pairs of samples that are looked at. */
const LOOKS = 3000;
/** Pixels a frame under which an object holds: its dots lie upon each other however few they are. */
const HOLD = 0.05;
/** Dots that lie side by side along a trail's way in the picture; a shorter way is a spot, however few dots it has. */
const SPOT = 4;
/** The part of the pairs that may touch: where an object eases, dots are to lie close. */
const MAY_TOUCH = 0.25;

/** At least so many frames: 1, 2, 5, 10, 20 ... */
export const dotStep = (least: number): number => niceStep(Math.max(1, least));

/** For each pair of neighbouring samples in the picture: its distance a frame, in parts of what dots need. */
function gaps(trails: readonly DrawnTrail[], sizeOf: (trail: number) => number, projection: Projection): number[] {
  const total = trails.reduce((sum, { places }) => sum + places.length / 3, 0);
  const stride = Math.max(1, Math.ceil(total / LOOKS));
  const found: number[] = [];
  for (const { index, places, frameStep } of trails) {
    const need = sizeOf(index) + 1;
    const own: number[] = [];
    let way = 0;
    const spot = (i: number) => (Number.isFinite(places[i]) ? projection.spot(places[i], places[i + 1], places[i + 2]) : null);
    for (let i = 0; i + 3 < places.length; i += 3 * stride) {
      const [a, b] = [spot(i), spot(i + 3)];
      if (!a || !b || a.x < 0 || a.y < 0 || a.x > projection.width || a.y > projection.height) continue;
      const pixels = Math.hypot(b.x - a.x, b.y - a.y) / frameStep;
      way += pixels * frameStep * stride;
      if (pixels >= HOLD) own.push(pixels / need);
    }
    if (way >= SPOT * need) found.push(...own);
  }
  return found;
}

/** A dot at every so many frames; 1 where nothing moves in the picture. `sizeOf` gives a dot's pixels. */
export function framesBetweenDots(trails: readonly DrawnTrail[], sizeOf: (trail: number) => number, projection: Projection): number {
  const found = gaps(trails, sizeOf, projection).sort((a, b) => a - b);
  return found.length === 0 ? 1 : dotStep(1 / found[Math.floor(MAY_TOUCH * found.length)]);
}
