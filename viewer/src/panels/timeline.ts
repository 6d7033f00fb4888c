// The timeline: frames from left to right, with the keys, the range that is played and the current frame.

import type { App } from "../model/app";
import { command, goTo, shownKeyTimes } from "../model/commands";
import { countUpTo } from "../model/colors";
import { frameText } from "../model/format";
import { el, setAttributes } from "./parts/dom";
import { followFrame, seenTime } from "../model/time_span";
import { isSeen, seenScale, type FrameScale } from "./frame_scale";
import { listenToKeyMarks } from "./key_marks";
import { Layer, onDrag } from "./parts/layer";
import { drawTimeline } from "./timeline_drawing";
import { zoomsTime } from "./time_zoom";

export interface Timeline {
  readonly element: HTMLElement;
  redraw(): void;
  /** After some trails have moved: their keys may be at other times. */
  trailsMoved(): void;
}

/** By how many frames an arrow or page key moves; undefined for any other key. */
function framesOf(event: KeyboardEvent): number | undefined {
  const steps: Record<string, number> = { ArrowRight: 1, ArrowUp: 1, ArrowLeft: -1, ArrowDown: -1, PageUp: 10, PageDown: -10 };
  return steps[event.key];
}

function trackKeys(app: App, event: KeyboardEvent): void {
  if (event.ctrlKey || event.metaKey || event.altKey) return;
  const by = framesOf(event);
  const { frame, playFirst, playLast } = app.store.state;
  if (by !== undefined && Math.abs(by) === 1) command(`${by > 0 ? "next" : "previous"}-${event.shiftKey ? "key" : "frame"}`).run(app);
  else if (by !== undefined) goTo(app, frame + by);
  else if (event.key === "Home") goTo(app, playFirst);
  else if (event.key === "End") goTo(app, playLast);
  else return;
  event.preventDefault();
}

/** The whole frame that is at a place, among those that are seen. */
export function frameAt(app: App, scale: FrameScale, x: number): number {
  const [first, last] = seenTime(app);
  return Math.max(Math.ceil(first), Math.min(Math.floor(last), Math.round(scale.frame(x))));
}

function buildTrack(app: App, canvas: HTMLCanvasElement, scale: () => FrameScale): HTMLElement {
  const { scene, store } = app;
  const track = el("div", {
    class: "track", role: "slider", tabindex: 0, "aria-label": "Current frame", "data-own-arrows": true,
    "aria-valuemin": scene.first, "aria-valuemax": scene.last,
  }, canvas);
  track.addEventListener("keydown", (event) => trackKeys(app, event));
  if (app.editing) listenToKeyMarks(app, track, scale);
  zoomsTime(app, track);
  onDrag(track, (x) => goTo(app, frameAt(app, scale(), x)));
  const update = () => {
    const { frame } = store.state;
    const times = shownKeyTimes(app);
    const isKey = times[countUpTo(times, frame) - 1] === frame;
    setAttributes(track, { "aria-valuenow": frameText(frame), "aria-valuetext": `Frame ${frameText(frame)}${isKey ? ", a key" : ""}` });
  };
  store.subscribe(update, ["frame", "selected"]);
  update();
  return track;
}

/** The handle at one end of the range that is played. */
function buildHandle(app: App, end: "playFirst" | "playLast", scale: () => FrameScale): { element: HTMLElement; place(): void } {
  const { scene, store } = app;
  const set = (frame: number) => {
    const { playFirst, playLast } = store.state;
    const [low, high] = end === "playFirst" ? [scene.first, playLast] : [playFirst, scene.last];
    store.set({ [end]: Math.max(low, Math.min(high, frame)) });
  };
  const element = el("div", {
    class: `handle ${end === "playFirst" ? "start" : "end"}`, role: "slider", tabindex: 0, "data-own-arrows": true,
    "aria-label": end === "playFirst" ? "Start of the range" : "End of the range", "data-setting": `${end}-handle`,
  });
  element.addEventListener("keydown", (event) => {
    const by = framesOf(event);
    const goal = event.key === "Home" ? scene.first : event.key === "End" ? scene.last : by === undefined ? undefined : store.state[end] + by;
    if (goal === undefined || event.ctrlKey || event.metaKey || event.altKey) return;
    event.preventDefault();
    set(goal);
  });
  let grip = 0;
  onDrag(element, (x, begins) => {
    const left = element.offsetLeft + x;
    if (begins) grip = left - scale().x(store.state[end]);
    else set(Math.round(scale().frame(left - grip)));
  });
  const place = () => {
    const { playFirst, playLast } = store.state;
    element.style.left = `${scale().x(store.state[end])}px`;
    element.hidden = !isSeen(app, store.state[end]);
    setAttributes(element, {
      "aria-valuemin": end === "playFirst" ? scene.first : playFirst, "aria-valuemax": end === "playFirst" ? playLast : scene.last,
      "aria-valuenow": frameText(store.state[end]), "aria-valuetext": `Frame ${frameText(store.state[end])}`,
    });
  };
  return { element, place };
}

export function buildTimeline(app: App): Timeline {
  const { store } = app;
  const layer = new Layer("timeline-layer", (context, width, height) => {
    handles.forEach((handle) => handle.place());
    drawTimeline(context, app, seenScale(app, width), width, height);
  });
  const scale = () => seenScale(app, layer.width);
  const handles = [buildHandle(app, "playFirst", scale), buildHandle(app, "playLast", scale)];
  let times: readonly Float64Array[] = [];
  const redraw = () => layer.invalidate();
  const trailsMoved = () => {
    const now = app.motion.trails.map(({ keyTimes }) => keyTimes);
    if (now.some((each, i) => each !== times[i])) redraw();
    times = now;
  };
  store.subscribe(redraw, ["frame", "playFirst", "playLast", "selected", "hidden", "solo", "timeSpan"]);
  store.subscribe(() => handles.forEach((handle) => handle.place()), ["playFirst", "playLast", "timeSpan"]);
  followFrame(app);
  handles.forEach((handle) => handle.place());
  const element = el("div", { class: "timeline" }, buildTrack(app, layer.canvas, scale), ...handles.map((handle) => handle.element));
  return { element, redraw, trailsMoved };
}
