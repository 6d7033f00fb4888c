// How far objects go on a camera's film from sample to sample, in pixels of a picture of stated width.

import type { Trail } from "../../source/trail";
import { gateOf, onFilm, PICTURE_WIDTH, type Film } from "./film";
import { seenFrom } from "./rigid";

/** Pixels from the picture's upper left; not a number behind the camera. */
function pixelAt({ camera, lens }: Film, { points }: Trail, sample: number, frame: number): [x: number, y: number] {
  const gate = gateOf(lens.at(frame));
  const [across, up] = onFilm(gate, seenFrom(camera.at(frame), [points[3 * sample], points[3 * sample + 1], points[3 * sample + 2]]));
  return [((across + 1) / 2) * PICTURE_WIDTH, (((1 - up) / 2) * PICTURE_WIDTH) / gate.aspect];
}

const kept = new WeakMap<Film, WeakMap<Float64Array, Float64Array>>();

/** Pixels a frame, from each sample to the next, each as the camera is at its frame. */
export function pixelSpacing(film: Film | null, trail: Trail): Float64Array {
  if (!film) return new Float64Array(Math.max(0, trail.count - 1)).fill(NaN);
  const byPoints = kept.get(film) ?? new WeakMap<Float64Array, Float64Array>();
  kept.set(film, byPoints);
  const found = byPoints.get(trail.points) ?? spacing(film, trail);
  byPoints.set(trail.points, found);
  return found;
}

function spacing(film: Film, trail: Trail): Float64Array {
  const result = new Float64Array(Math.max(0, trail.count - 1));
  const at = (sample: number) => pixelAt(film, trail, sample, trail.startFrame + sample * trail.frameStep);
  let before = at(0);
  for (let i = 0; i < result.length; ++i) {
    const after = at(i + 1);
    result[i] = Math.hypot(after[0] - before[0], after[1] - before[1]) / trail.frameStep;
    before = after;
  }
  return result;
}
