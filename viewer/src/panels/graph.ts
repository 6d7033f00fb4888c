// The distance a frame of the selected trails, under the timeline.

import type { App } from "../model/app";
import { goTo } from "../model/commands";
import { markColor } from "../model/colors";
import { frameText, lengthText, unitName } from "../model/format";
import { nearestSample, sampleFrame } from "../model/motion";
import { distinctNames } from "../model/names";
import type { Hover } from "../model/state";
import { el, setAttributes, setText } from "./parts/dom";
import { extremes } from "./graph_curves";
import { drawCurves, drawMoving, largestSpacing, placeOf, type Place } from "./graph_drawing";
import { Layer, onDrag } from "./parts/layer";
import { zoomsTime } from "./time_zoom";
import { frameAt } from "./timeline";

/** The most curves that are drawn: nobody could tell more apart. */
const MOST_CURVES = 50;
/** The most names above the curves. */
const MOST_NAMES = 6;

const drawnTrails = (app: App): number[] => [...app.store.state.selected].slice(0, MOST_CURVES);

const perFrame = (app: App, value: number) => `${lengthText(value)} ${unitName(app.scene.unit)} per frame`;

/** The selection's spacing in words. */
export function summary(app: App, trails: readonly number[]): string {
  const { motion } = app;
  if (trails.length === 0) return "Spacing graph: nothing is selected.";
  const sentences = trails.slice(0, MOST_NAMES).map((index) => {
    const trail = motion.trails[index];
    const name = distinctNames(motion.trails)[index];
    const spacing = motion.spacing(index);
    const found = extremes(spacing);
    if (!found) return `${name} has no spacing.`;
    const at = (i: number) => `${perFrame(app, spacing[i])} from frame ${frameText(sampleFrame(trail, i))}`;
    return `${name}: fastest ${at(found.fastest)}, slowest ${at(found.slowest)}.`;
  });
  if (trails.length > MOST_NAMES) sentences.push(`And ${trails.length - MOST_NAMES} more.`);
  return `Spacing graph. ${sentences.join(" ")}`;
}

function names(app: App, trails: readonly number[]): Node[] {
  const called = distinctNames(app.motion.trails);
  const item = (index: number) => {
    const swatch = el("span", { class: "legend-swatch small", "aria-hidden": "true" });
    swatch.style.background = markColor(index, app.store.state.selected);
    return el("li", { title: app.motion.trails[index].source }, swatch, el("span", { class: "name" }, called[index]));
  };
  if (trails.length < 2) return trails.map((index) => el("li", {}, el("span", { class: "name" }, called[index]))); // in its trail's colours
  const more = app.store.state.selected.size - Math.min(trails.length, MOST_NAMES);
  const rest = app.store.state.selected.size > trails.length ? `and ${more} more; the first ${trails.length} are drawn` : `and ${more} more`;
  return [...trails.slice(0, MOST_NAMES).map(item), ...(more > 0 ? [el("li", {}, rest)] : [])];
}

/** The sample under the pointer: of the curve that is nearest to it. */
function sampleAt(app: App, trails: readonly number[], place: Place, x: number, y: number): Hover | null {
  const frame = place.scale.frame(x);
  let nearest: Hover | null = null;
  let least = Infinity;
  for (const trail of trails) {
    const sample = nearestSample(app.motion.trails[trail], frame);
    const distance = Math.abs(place.y(app.motion.speed(trail, sample)) - y);
    if (distance < least || nearest === null) [nearest, least] = [{ trail, sample }, Number.isFinite(distance) ? distance : Infinity];
  }
  return nearest;
}

/** What is written beside the names: the sample that is pointed at, else the first trail at the current frame. */
function reading(app: App, trails: readonly number[]): string {
  const { frame, hover } = app.store.state;
  const trail = hover?.trail ?? trails[0];
  const of = app.motion.trails[trail];
  if (!of) return "";
  const sample = hover?.sample ?? nearestSample(of, frame);
  const named = trails.length === 1 && trail === trails[0] ? "Frame" : `${distinctNames(app.motion.trails)[trail]}, frame`;
  return `${named} ${frameText(sampleFrame(of, sample))}: ${perFrame(app, app.motion.speed(trail, sample))}`;
}

export interface Graph {
  readonly element: HTMLElement;
  redraw(): void;
}

export function buildGraph(app: App): Graph {
  const { store } = app;
  let trails = drawnTrails(app);
  let largest = 0;
  const place = () => placeOf(app, largest, plot.clientWidth, plot.clientHeight);
  const curves = new Layer("curves", (context, width, height) => drawCurves(context, app, trails, place(), width, height));
  const moving = new Layer("moving", (context, _, height) => drawMoving(context, app, place(), height));
  const plot = el("div", { class: "plot", role: "img" }, curves.canvas, moving.canvas);
  const list = el("ul", { class: "graph-names" });
  const value = el("span", { class: "graph-value" });
  const inWords = el("p", { class: "hidden", role: "status" });
  const empty = el("p", { class: "none" }, "Select objects to see their spacing.");

  const follow = () => {
    setText(value, reading(app, trails));
    moving.invalidate();
  };
  const redraw = () => {
    trails = drawnTrails(app);
    largest = largestSpacing(app, trails);
    const text = summary(app, trails);
    setAttributes(plot, { "aria-label": text });
    setText(inWords, text);
    list.replaceChildren(...names(app, trails));
    empty.hidden = trails.length > 0;
    curves.invalidate();
    follow();
  };
  plot.addEventListener("pointermove", (event) => {
    const box = plot.getBoundingClientRect();
    const found = sampleAt(app, trails, place(), event.clientX - box.left, event.clientY - box.top);
    const { hover } = store.state;
    if (found?.trail !== hover?.trail || found?.sample !== hover?.sample) store.set({ hover: found });
  });
  plot.addEventListener("pointerleave", () => store.set({ hover: null }));
  zoomsTime(app, plot);
  onDrag(plot, (x) => goTo(app, frameAt(app, place().scale, x)));
  store.subscribe(follow, ["frame", "hover"]);
  store.subscribe(redraw, ["selected", "relativeTo", "palette", "theme"]);
  store.subscribe(() => (curves.invalidate(), moving.invalidate()), ["timeSpan"]);
  redraw();
  const unit = `Spacing, ${unitName(app.scene.unit)} per frame`;
  const element = el(
    "section", { class: "graph", "aria-label": "Spacing graph" },
    el("div", { class: "graph-head" }, el("h2", {}, unit), list, value), plot, empty, inWords,
  );
  return { element, redraw };
}
