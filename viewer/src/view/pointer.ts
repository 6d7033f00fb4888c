// What the pointer does in the viewport besides moving the camera: it points, selects by a click, or by a box.

import type { App } from "../model/app";
import type { Hover, Store } from "../model/state";
import type { Area, Spot } from "./primitives/projection";

/** Pixels within which a press is a click and no drag. */
const STILL = 4;

export interface Under {
  pick(at: Spot): Hover | null;
  /** The trails that pass through an area. */
  passing(area: Area): number[];
}

export const placeIn = (element: HTMLElement, event: PointerEvent): Spot => {
  const { left, top } = element.getBoundingClientRect();
  return { x: event.clientX - left, y: event.clientY - top };
};

const areaOf = (a: Spot, b: Spot): Area => ({
  left: Math.min(a.x, b.x), top: Math.min(a.y, b.y), right: Math.max(a.x, b.x), bottom: Math.max(a.y, b.y),
});

export const far = (a: Spot, b: Spot) => Math.hypot(a.x - b.x, a.y - b.y) >= STILL;

const adds = (event: MouseEvent) => event.ctrlKey || event.metaKey;

/** A click without a drag selects what is under it, or nothing; with Ctrl or Shift it adds or takes away. */
export function click(store: Store, hit: Hover | null, more: boolean): void {
  if (!hit && more) return;
  const next = new Set(more ? store.state.selected : []);
  if (hit && (!more || !next.delete(hit.trail))) next.add(hit.trail);
  store.set({ selected: next, hover: hit });
}

function point(store: Store, hover: Hover | null): void {
  const old = store.state.hover;
  if (hover?.trail !== old?.trail || hover?.sample !== old?.sample) store.set({ hover });
}

/** Selects what passes through the box that a drag with Shift draws; with Ctrl as well, in addition. Escape gives it up. */
function listenToBoxes(host: HTMLElement, { store, life }: App, under: Under): void {
  const frame = document.createElement("div");
  frame.className = "selecting";
  frame.hidden = true;
  host.append(frame);
  let begin: Spot | null = null;
  const stop = () => {
    begin = null;
    frame.hidden = true;
  };
  // Before the camera's own listeners, which would move it.
  host.addEventListener("pointerdown", (event) => {
    if (event.button !== 0 || !event.shiftKey || !(event.target instanceof HTMLCanvasElement)) return;
    event.stopPropagation();
    begin = placeIn(host, event);
    host.setPointerCapture(event.pointerId);
  }, true);
  host.addEventListener("pointermove", (event) => {
    if (!begin) return;
    const { left, top, right, bottom } = areaOf(begin, placeIn(host, event));
    frame.hidden = false;
    Object.assign(frame.style, { left: `${left}px`, top: `${top}px`, width: `${right - left}px`, height: `${bottom - top}px` });
  });
  host.addEventListener("pointerup", (event) => {
    if (!begin) return;
    const [from, to] = [begin, placeIn(host, event)];
    stop();
    if (!far(from, to)) return click(store, under.pick(to), true);
    const found = under.passing(areaOf(from, to));
    store.set({ selected: new Set(adds(event) ? [...store.state.selected, ...found] : found) });
  });
  host.addEventListener("pointercancel", stop);
  document.addEventListener("keydown", (event) => {
    if (event.key !== "Escape" || !begin) return;
    event.preventDefault(); // which would deselect
    stop();
  }, { capture: true, signal: life });
}

/** Listens on a canvas that fills the host. */
export function listenToPointer(host: HTMLElement, canvas: HTMLCanvasElement, app: App, under: Under): void {
  const { store } = app;
  let down: Spot | null = null;
  listenToBoxes(host, app, under);
  canvas.addEventListener("pointermove", (event) => {
    if (event.buttons === 0) point(store, under.pick(placeIn(canvas, event)));
  });
  canvas.addEventListener("pointerleave", () => store.set({ hover: null }));
  canvas.addEventListener("pointerdown", (event) => (down = placeIn(canvas, event)));
  canvas.addEventListener("pointerup", (event) => {
    const at = placeIn(canvas, event);
    const still = down && !far(down, at);
    down = null;
    if (still && event.button === 0) click(store, under.pick(at), adds(event));
  });
}
