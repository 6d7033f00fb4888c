// Handles in the viewport: keys that are drawn, the tangents of those that are selected, and the dots of selected trails between
// keys, which are beads. A handle is dragged in the plane of the picture, or, with X, Y or Z held, along that axis of the scene;
// a key with Ctrl in time, along its path; a bead along its path.

import type { App } from "../model/app";
import { goTo } from "../model/commands";
import { listenToGrips, type Gripped } from "../model/editing/gripping";
import { isInWorld, type Hover } from "../model/state";
import type { Grip, Vec3 } from "../source/trail";
import { alongAxis, alongPath, inPlane, type Sight } from "./dragging";
import { styleOf, type TrailLayers } from "./layers";
import { keyPlace, sceneOf } from "./places";
import { click } from "./pointer";
import type { DrawnTrail } from "./primitives/batch";
import type { Projection, Spot } from "./primitives/projection";
import type { TangentHandles } from "./tangent_handles";

/** Pixels within which a handle is hit, and a bead: they lie close. */
const HIT = 9;
const HIT_BEAD = 6;

/** A place of a trail at a frame. */
export interface Key {
  readonly trail: number;
  readonly frame: number;
}

/** The key under the pointer: of a selected trail before others, and then the nearest. */
export function keyAt(trails: readonly DrawnTrail[], selected: ReadonlySet<number>, projection: Projection, at: Spot): Key | null {
  let best: Key | null = null;
  let least = Infinity;
  for (const { index, keyPlaces, keyTimes } of trails)
    for (let k = 0; k < keyTimes.length; ++k) {
      const spot = projection.spot(keyPlaces[3 * k], keyPlaces[3 * k + 1], keyPlaces[3 * k + 2]);
      const away = spot ? Math.hypot(spot.x - at.x, spot.y - at.y) : Infinity;
      const rank = away + (selected.has(index) ? 0 : HIT);
      if (away <= HIT && rank < least) [best, least] = [{ trail: index, frame: keyTimes[k] }, rank];
    }
  return best;
}

export interface HandleView {
  readonly layers: TrailLayers;
  readonly tangents: TangentHandles;
  /** Frames from one drawn dot to the next; 0 where none are drawn. */
  dotEvery(): number;
  /** Marks a bead as the one that is pointed at. */
  point(bead: Key | null): void;
  origin(): Vec3;
  sight(): Sight;
  /** The trail under the pointer. */
  under(at: Spot): Hover | null;
}

/** Something at a place of the viewport's space that follows the pointer from where it was taken hold of. */
function inSpace(app: App, view: HandleView, grip: Gripped["grip"], place: Vec3, from: Spot): Gripped {
  return {
    grip,
    wanted: (to, axis) => sceneOf({ app, origin: view.origin() },
      axis === null ? inPlane(view.sight(), place, from, to) : alongAxis(view.sight(), place, axis, from, to)),
  };
}

const drawn = (view: HandleView, index: number) => view.layers.trails.find((each) => each.index === index);

/** Something that goes along its path as that was at first, up to the keys beside it. */
function onPath(view: HandleView, { trail: index, frame }: Key, keyTimes: Float64Array, grip: Grip, place: Vec3, from: Spot): Gripped | null {
  const trail = drawn(view, index);
  const spot = view.sight().projection.spot(...place);
  if (!trail || !spot) return null;
  const room = [Math.max(-Infinity, ...keyTimes.filter((time) => time < frame)),
    Math.min(Infinity, ...keyTimes.filter((time) => time > frame))] as const;
  let path: DrawnTrail | null = null;
  return {
    grip,
    wanted(to) {
      path ??= { ...trail, places: trail.places.slice() };
      return [alongPath(view.sight(), path, room, { x: spot.x + to.x - from.x, y: spot.y + to.y - from.y })];
    },
  };
}

/** The dot of a trail that is nearest to the pointer, beside a sample of it. */
function dotAt(view: HandleView, { places, first, startFrame, frameStep }: DrawnTrail, sample: number, at: Spot) {
  const every = view.dotEvery();
  const before = every * Math.floor((startFrame + (sample - first) * frameStep) / every);
  let [best, least]: [{ frame: number; place: Vec3 } | null, number] = [null, HIT_BEAD];
  for (const frame of [before, before + every]) {
    const dot = (frame - startFrame) / frameStep;
    const place = [...places.subarray(3 * Math.round(dot), 3 * Math.round(dot) + 3)] as unknown as Vec3;
    const there = dot > -0.5 && Math.abs(dot - Math.round(dot)) < 1e-3 && Number.isFinite(place[0]);
    const spot = there ? view.sight().projection.spot(...place) : null;
    const away = spot ? Math.hypot(spot.x - at.x, spot.y - at.y) : Infinity;
    if (away <= least) [best, least] = [{ frame, place }, away];
  }
  return best;
}

/** The dot of a selected trail under the pointer, between two keys. */
function beadAt(app: App, view: HandleView, at: Spot): Gripped | null {
  const hover = view.dotEvery() > 0 ? view.under(at) : null;
  const trail = hover && app.store.state.selected.has(hover.trail) ? drawn(view, hover.trail) : null;
  const dot = trail && styleOf(app, trail.index).showDots && dotAt(view, trail, hover!.sample, at);
  if (!dot) return null;
  const { keyTimes } = app.motion.trails[trail.index];
  if (!(keyTimes.some((time) => time < dot.frame) && keyTimes.some((time) => time > dot.frame)) || keyTimes.includes(dot.frame)) return null;
  const bead = { trail: trail.index, frame: dot.frame };
  return onPath(view, bead, keyTimes, { what: "bead", ...bead }, dot.place, at);
}

function handleAt(app: App, view: HandleView, at: Spot, event: PointerEvent): Gripped | null {
  if (!isInWorld(app.store.state)) return null;
  return (app.store.state.showKeys ? keyHandleAt(app, view, at, event) : null) ?? beadAt(app, view, at);
}

/** A key, or the end of a tangent. */
function keyHandleAt(app: App, view: HandleView, at: Spot, event: PointerEvent): Gripped | null {
  const { projection } = view.sight();
  const { selected } = app.store.state;
  const key = keyAt(view.layers.seen, selected, projection, at);
  const place = key && keyPlace({ app, origin: view.origin() }, key.trail, key.frame);
  if (place && (event.ctrlKey || event.metaKey))
    return onPath(view, key, app.motion.trails[key.trail].keyTimes, { what: "time", trails: [key.trail], frame: key.frame }, place, at);
  if (place) return inSpace(app, view, { what: "place", ...key }, place, at);
  const tangent = view.tangents.at(projection, at, HIT);
  return tangent && inSpace(app, view, tangent.grip, tangent.end, at);
}

/** A key that is clicked selects its object, and is selected itself: the current frame goes there. */
export function listenToHandles(app: App, host: HTMLElement, view: HandleView): void {
  listenToGrips(app, host, {
    gripAt: (at, event) => handleAt(app, view, at, event),
    clicked(at, { grip }, event) {
      const more = event.ctrlKey || event.metaKey;
      if (grip.what === "path tangent") return;
      click(app.store, view.under(at), more);
      if (!more && grip.what !== "bead") goTo(app, grip.frame);
    },
    over: (gripped) => view.point(gripped?.grip.what === "bead" ? gripped.grip : null),
    moved({ grip }) {
      const { draggedTo } = app.editing!;
      if (grip.what === "time" && draggedTo !== null) goTo(app, draggedTo);
    },
  });
}
