// The pointer takes hold of what the engine moves: of keys and tangents, wherever they are drawn. Escape puts it back.

import type { Grip } from "../../source/trail";
import type { App } from "../app";

interface Spot {
  readonly x: number;
  readonly y: number;
}

export interface Gripped {
  readonly grip: Grip;
  /** What Editing.drag is given where the pointer is; `axis` is 0 to 2 while X, Y or Z is held. */
  wanted(to: Spot, axis: number | null): readonly number[];
}

export interface Grips {
  gripAt(at: Spot, event: PointerEvent): Gripped | null;
  /** A press without a drag. */
  clicked(at: Spot, gripped: Gripped, event: PointerEvent): void;
  /** What the pointer is over now, while nothing is dragged. */
  over?(gripped: Gripped | null): void;
  /** After each move of what is dragged. */
  moved?(gripped: Gripped): void;
}

/** Pixels within which a press is a click and no drag. */
const STILL = 4;
const AXES = ["x", "y", "z"];

interface Drag {
  readonly gripped: Gripped;
  readonly pointer: number;
  readonly from: Spot;
  to: Spot;
  /** Whether it has left the place of a click. */
  moves: boolean;
}

const placeIn = (element: HTMLElement, event: PointerEvent): Spot => {
  const { left, top } = element.getBoundingClientRect();
  return { x: event.clientX - left, y: event.clientY - top };
};

/** While nothing is dragged. */
function tellWhatIsUnder(host: HTMLElement, grips: Grips, dragging: () => boolean): void {
  const tell = (gripped: Gripped | null) => {
    host.classList.toggle("over-handle", gripped !== null);
    grips.over?.(gripped);
  };
  host.addEventListener("pointerleave", () => dragging() || tell(null));
  host.addEventListener("pointermove", (event) => {
    if (!dragging()) tell(event.buttons === 0 ? grips.gripAt(placeIn(host, event), event) : null);
  }, true);
}

/** Listens before whatever else a press in the host would move. */
export function listenToGrips(app: App, host: HTMLElement, grips: Grips): void {
  const editing = app.editing!;
  let drag: Drag | null = null;
  let axis: number | null = null;
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
  const move = () => {
    const held = drag;
    if (held?.moves) void editing.drag(held.gripped.wanted(held.to, axis)).then(() => grips.moved?.(held.gripped), refused);
  };
  host.addEventListener("pointerdown", (event) => {
    if (event.button !== 0 || event.shiftKey || drag || !(event.target instanceof HTMLCanvasElement)) return;
    const from = placeIn(host, event);
    const gripped = grips.gripAt(from, event);
    if (!gripped) return;
    event.stopPropagation();
    host.setPointerCapture(event.pointerId);
    drag = { gripped, pointer: event.pointerId, from, to: from, moves: false };
  }, true);
  tellWhatIsUnder(host, grips, () => drag !== null);
  host.addEventListener("pointermove", (event) => {
    if (!drag) return;
    event.stopImmediatePropagation(); // nothing else is dragged meanwhile
    if (event.pointerId !== drag.pointer) return;
    const at = (drag.to = placeIn(host, event));
    if (!drag.moves && Math.hypot(drag.from.x - at.x, drag.from.y - at.y) < STILL) return;
    if (!drag.moves) editing.beginDrag(drag.gripped.grip).catch(refused);
    drag.moves = true;
    move();
  }, true);
  host.addEventListener("pointerup", (event) => {
    if (!drag || event.pointerId !== drag.pointer) return;
    if (!drag.moves) grips.clicked(drag.from, drag.gripped, event);
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
