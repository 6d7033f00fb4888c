// Keys as handles: a key that is drawn is dragged in the plane of the picture, or, with X, Y or Z held, along that axis of
// the scene. Escape lets go of it where it was.

import type { App } from "../model/app";
import type { Vec3 } from "../source/trail";
import { alongAxis, inPlane, type Sight } from "./dragging";
import { far, placeIn } from "./pointer";
import type { DrawnTrail } from "./primitives/batch";
import type { Projection, Spot } from "./primitives/projection";

/** Pixels within which a key is hit. */
const HIT = 9;

interface Key {
  readonly trail: number;
  readonly frame: number;
}

export interface Handle extends Key {
  /** In the viewport's space. */
  readonly place: Vec3;
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
  handleAt(at: Spot): Handle | null;
  sight(): Sight;
  /** A place of the viewport's space in the scene. */
  inScene(place: Vec3): Vec3;
  /** A press without a drag. */
  clicked(at: Spot, more: boolean): void;
}

interface Drag {
  readonly handle: Handle;
  readonly pointer: number;
  readonly from: Spot;
  to: Spot;
  /** Whether it has left the place of a click. */
  moves: boolean;
}

const AXES = ["x", "y", "z"];

/** Listens before the camera's own listeners, which would turn it. */
export function listenToHandles(app: App, host: HTMLElement, view: HandleView): void {
  const editing = app.editing!;
  let drag: Drag | null = null;
  let axis: number | null = null;
  const wanted = ({ handle, from, to }: Drag): Vec3 => view.inScene(axis === null
    ? inPlane(view.sight(), handle.place, from, to) : alongAxis(view.sight(), handle.place, axis, from, to));
  const stop = (kept: boolean) => {
    const ended = drag;
    drag = null;
    axis = null;
    if (ended?.moves) void editing.endDrag(kept).catch(refused);
  };
  const refused = (error: Error) => {
    stop(false);
    app.announce(error.message);
  };
  const move = () => void (drag?.moves && editing.drag(wanted(drag)).catch(refused));
  host.addEventListener("pointerdown", (event) => {
    if (event.button !== 0 || event.shiftKey || drag || !(event.target instanceof HTMLCanvasElement)) return;
    const from = placeIn(host, event);
    const handle = view.handleAt(from);
    if (!handle) return;
    event.stopPropagation();
    host.setPointerCapture(event.pointerId);
    drag = { handle, pointer: event.pointerId, from, to: from, moves: false };
  }, true);
  host.addEventListener("pointermove", (event) => {
    const at = placeIn(host, event);
    if (!drag) return void host.classList.toggle("over-handle", event.buttons === 0 && view.handleAt(at) !== null);
    if (event.pointerId !== drag.pointer) return;
    drag.to = at;
    if (!drag.moves && !far(drag.from, at)) return;
    if (!drag.moves) {
      drag.moves = true;
      editing.beginDrag(drag.handle.trail, drag.handle.frame).catch(refused);
    }
    move();
  });
  host.addEventListener("pointerup", (event) => {
    if (!drag || event.pointerId !== drag.pointer) return;
    if (!drag.moves) view.clicked(drag.from, event.ctrlKey || event.metaKey);
    stop(true);
  });
  host.addEventListener("pointercancel", () => stop(false));
  const listen = (type: "keydown" | "keyup", run: (event: KeyboardEvent, key: string) => void) =>
    document.addEventListener(type, (event) => drag && run(event, event.key.toLowerCase()), { capture: true, signal: app.life });
  listen("keydown", (event, key) => {
    event.preventDefault(); // no other command in the middle of a drag
    event.stopPropagation();
    if (key === "escape") return stop(false);
    if (AXES.includes(key)) axis = AXES.indexOf(key);
    move();
  });
  listen("keyup", (_event, key) => {
    if (axis === AXES.indexOf(key)) axis = null;
    move();
  });
}
