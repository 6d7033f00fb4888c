// Handles in the viewport: keys that are drawn, and the tangents of those that are selected. A handle is dragged in the plane
// of the picture, or, with X, Y or Z held, along that axis of the scene; a key with Ctrl in time, along its path.

import type { App } from "../model/app";
import { goTo } from "../model/commands";
import { listenToGrips, type Gripped } from "../model/editing/gripping";
import { isInWorld, type Hover } from "../model/state";
import type { Vec3 } from "../source/trail";
import { alongAxis, alongPath, inPlane, type Sight } from "./dragging";
import type { TrailLayers } from "./layers";
import { keyPlace, sceneOf } from "./places";
import { click } from "./pointer";
import type { DrawnTrail } from "./primitives/batch";
import type { Projection, Spot } from "./primitives/projection";
import type { TangentHandles } from "./tangent_handles";

/** Pixels within which a handle is hit. */
const HIT = 9;

interface Key {
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

/** A key that goes along its path as it is now, up to the keys beside it. */
function onPath(view: HandleView, { trail: index, frame }: Key, place: Vec3, from: Spot): Gripped | null {
  const trail = view.layers.trails.find((each) => each.index === index);
  const spot = view.sight().projection.spot(...place);
  if (!trail || !spot) return null;
  const room = [Math.max(-Infinity, ...trail.keyTimes.filter((time) => time < frame)),
    Math.min(Infinity, ...trail.keyTimes.filter((time) => time > frame))] as const;
  const path = { ...trail, places: trail.places.slice() };
  return {
    grip: { what: "time", trails: [index], frame },
    wanted: (to) => [alongPath(view.sight(), path, room, { x: spot.x + to.x - from.x, y: spot.y + to.y - from.y })],
  };
}

function handleAt(app: App, view: HandleView, at: Spot, event: PointerEvent): Gripped | null {
  const { showKeys, selected } = app.store.state;
  if (!showKeys || !isInWorld(app.store.state)) return null;
  const { projection } = view.sight();
  const key = keyAt(view.layers.seen, selected, projection, at);
  const place = key && keyPlace({ app, origin: view.origin() }, key.trail, key.frame);
  if (place && (event.ctrlKey || event.metaKey)) return onPath(view, key, place, at);
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
      if (!more) goTo(app, grip.frame);
    },
    moved({ grip }) {
      const { draggedTo } = app.editing!;
      if (grip.what === "time" && draggedTo !== null) goTo(app, draggedTo);
    },
  });
}
