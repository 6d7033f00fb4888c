// Where the trails are drawn: relative to the viewport's origin, y up; all of them, or a window in time.

import type { App } from "../model/app";
import { isFinitePoint, sampleFrame, triple } from "../model/motion";
import { yUp } from "../model/pose";
import type { ViewState } from "../model/state";
import type { ChangedPart, Trail, Vec3 } from "../source/trail";
import type { DrawnTrail } from "./primitives/batch";
import { isDrawable, type Projection, type Spot } from "./primitives/projection";

/** Whether keys are nearly everywhere, as in a recorded motion: markers would tell nothing and hide the trail. */
export const hasDenseKeys = (trail: Trail): boolean => trail.keyTimes.length > 24 && trail.keyTimes.length > 0.4 * trail.count;

function placed(points: Float64Array, upAxis: "y" | "z", origin: Vec3): Float32Array {
  const result = new Float32Array(points.length);
  for (let i = 0; i < points.length; i += 3) {
    const turned = yUp([points[i], points[i + 1], points[i + 2]], upAxis);
    for (let k = 0; k < 3; ++k) result[i + k] = turned[k] - origin[k];
    if (!isDrawable(result[i]) || !isDrawable(result[i + 1]) || !isDrawable(result[i + 2])) result.fill(NaN, i, i + 3);
  }
  return result;
}

/** Where something is seen from: whose trails, and what is subtracted from every place. */
interface Standpoint {
  readonly app: App;
  readonly origin: Vec3;
}

/** A place of the scene in the viewport's space; null where it is not finite. */
export function placeIn({ app, origin }: Standpoint, place: Vec3): Vec3 | null {
  if (!isFinitePoint(place)) return null;
  const [x, y, z] = yUp(place, app.scene.upAxis);
  return [x - origin[0], y - origin[1], z - origin[2]];
}

/** Where a key is, as exactly as it is known; null where there is none. */
export function keyPlace(view: Standpoint, index: number, frame: number): Vec3 | null {
  const { motion } = view.app;
  const key = motion.trails[index].keyTimes.indexOf(frame);
  return key < 0 ? null : placeIn(view, triple(motion.shownKeyPoints(index), key));
}

/** A place of the viewport's space in the scene. */
export function sceneOf({ app, origin }: Standpoint, place: Vec3): Vec3 {
  const [x, y, z] = [place[0] + origin[0], place[1] + origin[1], place[2] + origin[2]];
  return app.scene.upAxis === "z" ? [x, -z, y] : [x, y, z];
}

/** Where a place of the scene is in the picture; null where it is not to be seen. */
export function spotOf(view: Standpoint & { readonly projection: Projection }, place: Vec3): Spot | null {
  const at = placeIn(view, place);
  return at && view.projection.spot(...at);
}

/** A trail as it is shown, all of it. */
export function wholeTrail({ motion, scene }: App, index: number, origin: Vec3): DrawnTrail {
  const trail = motion.trails[index];
  const { keyTimes, startFrame, frameStep } = trail;
  const dense = hasDenseKeys(trail);
  return {
    index, startFrame, frameStep, first: 0,
    places: placed(motion.shownPoints(index), scene.upAxis, origin),
    keyPlaces: dense ? new Float32Array() : placed(motion.shownKeyPoints(index), scene.upAxis, origin),
    keyTimes: dense ? new Float64Array() : keyTimes,
  };
}

/** The trail with some of its samples, and its keys, where they are now: in the same array. Null where places came or went. */
export function movedTrail({ motion, scene }: App, drawn: DrawnTrail, { index, first, count }: ChangedPart, origin: Vec3): DrawnTrail | null {
  const { keyTimes } = motion.trails[index];
  const points = motion.shownPoints(index).subarray(3 * first, 3 * (first + count));
  const places = placed(points, scene.upAxis, origin);
  for (let i = 0; i < places.length; i += 3)
    if (Number.isNaN(places[i]) !== Number.isNaN(drawn.places[3 * first + i])) return null;
  drawn.places.set(places, 3 * first);
  if (drawn.keyTimes.length === 0) return drawn; // they are not drawn
  return { ...drawn, keyTimes, keyPlaces: placed(motion.shownKeyPoints(index), scene.upAxis, origin) };
}

/** The frames around the current one that are drawn. */
export const windowOf = ({ frame, windowBefore, windowAfter }: ViewState) =>
  ({ from: frame - windowBefore, to: frame + windowAfter });

/** How much of its strength a sample keeps in the window: all of it at the current frame, a little at the window's ends. */
export function windowStrength(state: ViewState, frame: number): number {
  const away = frame - state.frame;
  const reach = (away < 0 ? state.windowBefore : state.windowAfter) + 1;
  return 1 - 0.85 * Math.min(1, Math.abs(away) / reach);
}

/** What of a whole trail lies between two frames. */
export function between(trail: DrawnTrail, from: number, to: number): DrawnTrail {
  const { places, keyPlaces, keyTimes, startFrame, frameStep } = trail;
  const count = places.length / 3;
  const first = Math.max(0, Math.ceil((from - startFrame) / frameStep - 1e-6));
  const end = Math.max(first, Math.min(count, Math.floor((to - startFrame) / frameStep + 1e-6) + 1));
  const kept = [...keyTimes.keys()].filter((i) => keyTimes[i] >= from && keyTimes[i] <= to);
  return {
    ...trail, first,
    startFrame: sampleFrame({ startFrame, frameStep }, first),
    places: places.subarray(3 * first, 3 * end),
    keyPlaces: Float32Array.from(kept.flatMap((i) => [...keyPlaces.subarray(3 * i, 3 * i + 3)])),
    keyTimes: Float64Array.from(kept, (i) => keyTimes[i]),
  };
}
