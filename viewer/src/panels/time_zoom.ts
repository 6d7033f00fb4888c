// How the part of the time that is seen is changed: the same on the timeline and on the graph.

import type { App } from "../model/app";
import { panTime, zoomTime } from "../model/time_span";
import { commandButton, el } from "./parts/dom";
import { seenScale } from "./frame_scale";

/** Wheels of all kinds in pixels: some count lines. */
const pixels = (event: WheelEvent, amount: number) => amount * (event.deltaMode === WheelEvent.DOM_DELTA_LINE ? 16 : 1);

/** The wheel zooms at the pointer; with Shift, or across, it moves. With Ctrl it stays the browser's. */
function onWheel(app: App, element: HTMLElement, event: WheelEvent): void {
  if (event.ctrlKey) return;
  event.preventDefault();
  const box = element.getBoundingClientRect();
  const scale = seenScale(app, box.width);
  const across = event.shiftKey ? event.deltaX || event.deltaY : event.deltaX;
  if (event.shiftKey || Math.abs(across) > Math.abs(event.deltaY)) panTime(app, pixels(event, across) / scale.pixelsPerFrame);
  else zoomTime(app, Math.exp(0.002 * pixels(event, event.deltaY)), scale.frame(event.clientX - box.left));
}

/** Where the fingers are, by their numbers. */
type Fingers = Map<number, number>;

/** Middle and distance of two fingers. */
function pinch(fingers: Fingers): { middle: number; apart: number } {
  const [a, b] = [...fingers.values()];
  return { middle: (a + b) / 2, apart: Math.max(8, Math.abs(a - b)) };
}

function onFinger(app: App, element: HTMLElement, fingers: Fingers, event: PointerEvent): void {
  const before = pinch(fingers);
  fingers.set(event.pointerId, event.clientX);
  const after = pinch(fingers);
  const { left, width } = element.getBoundingClientRect();
  zoomTime(app, before.apart / after.apart, seenScale(app, width).frame(before.middle - left));
  panTime(app, (before.middle - after.middle) / seenScale(app, width).pixelsPerFrame);
}

function listenToFingers(app: App, element: HTMLElement): void {
  const fingers: Fingers = new Map();
  element.addEventListener("pointerdown", (event) => {
    if (event.pointerType === "touch") fingers.set(event.pointerId, event.clientX);
    if (fingers.size > 1) event.stopImmediatePropagation();
  });
  element.addEventListener("pointermove", (event) => {
    if (fingers.size !== 2 || !fingers.has(event.pointerId)) return;
    event.stopImmediatePropagation();
    onFinger(app, element, fingers, event);
  });
  for (const end of ["pointerup", "pointercancel"] as const) element.addEventListener(end, (event) => fingers.delete(event.pointerId));
}

/** Moves with the middle button. */
function listenToMiddle(app: App, element: HTMLElement): void {
  let from: number | null = null;
  element.addEventListener("pointerdown", (event) => {
    if (event.button !== 1) return;
    event.preventDefault(); // no scrolling by itself
    element.setPointerCapture(event.pointerId);
    from = event.clientX;
  });
  element.addEventListener("pointermove", (event) => {
    if (from === null) return;
    panTime(app, (from - event.clientX) / seenScale(app, element.clientWidth).pixelsPerFrame);
    from = event.clientX;
  });
  for (const end of ["pointerup", "pointercancel"] as const) element.addEventListener(end, () => (from = null));
}

/** Lets wheel, middle button, two fingers and double click change what is seen. Comes before what else listens there. */
export function zoomsTime(app: App, element: HTMLElement): void {
  element.addEventListener("wheel", (event) => onWheel(app, element, event), { passive: false });
  element.addEventListener("dblclick", () => app.store.set({ timeSpan: null }));
  listenToMiddle(app, element);
  listenToFingers(app, element);
}

/** For those who have no wheel. */
export function timeZoomButtons(app: App): HTMLElement {
  const whole = commandButton(app, "time-all", { icon: "timeAll" });
  const buttons = [commandButton(app, "time-out", { icon: "timeOut" }), commandButton(app, "time-in", { icon: "timeIn" }), whole];
  app.store.subscribe(() => update(), ["timeSpan"]);
  const update = () => (whole.disabled = app.store.state.timeSpan === null);
  update();
  return el("div", { class: "group time-zoom", role: "group", "aria-label": "Time that is shown" }, ...buttons);
}
