// What is chosen of model/graphs.ts, of the selected trails, under the timeline.

import type { App } from "../model/app";
import { goTo } from "../model/commands";
import { markColor } from "../model/colors";
import { frameText, lengthText } from "../model/format";
import { graphOf, graphsOf, needsMeasures, type Graph, type GraphName } from "../model/graphs";
import { nearestSample, sampleFrame } from "../model/motion";
import { distinctNames } from "../model/names";
import type { Hover } from "../model/state";
import { button, el, setAttributes, setText } from "./parts/dom";
import { extremes } from "./graph_curves";
import { drawCurves, drawMoving, largestValue, placeOf, type Place } from "./graph_drawing";
import { checkbox, select, type Option } from "./parts/fields";
import { Layer, onDrag } from "./parts/layer";
import { selectedTangents } from "./live/tangent_fields";
import { zoomsTime } from "./time_zoom";
import { frameAt } from "./timeline";

/** The most curves that are drawn: nobody could tell more apart. */
const MOST_CURVES = 50;
/** The most names above the curves. */
const MOST_NAMES = 6;

const drawnTrails = (app: App): number[] => [...app.store.state.selected].slice(0, MOST_CURVES);

const chosenGraph = (app: App): Graph => graphOf(app, app.store.state.graph);

const withUnit = (graph: Graph, value: number) => `${lengthText(value)} ${graph.unit}`;

/** The graph of the selection in words. */
export function summary(app: App, trails: readonly number[]): string {
  const { motion } = app;
  const graph = chosenGraph(app);
  if (trails.length === 0) return `${graph.title} graph: nothing is selected.`;
  const sentences = trails.slice(0, MOST_NAMES).map((index) => {
    const trail = motion.trails[index];
    const name = distinctNames(motion.trails)[index];
    const values = graph.values(index);
    const found = extremes(values);
    if (!found) return `${name} has no ${graph.title.toLowerCase()}.`;
    const at = (i: number) => `${withUnit(graph, values[i])} ${graph.between ? "from" : "at"} frame ${frameText(sampleFrame(trail, i))}`;
    const [most, least] = graph.words;
    return `${name}: ${most} ${at(found.most)}, ${least} ${at(found.least)}.`;
  });
  if (trails.length > MOST_NAMES) sentences.push(`And ${trails.length - MOST_NAMES} more.`);
  return `${graph.title} graph. ${sentences.join(" ")}`;
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
  const graph = chosenGraph(app);
  const frame = place.scale.frame(x);
  let nearest: Hover | null = null;
  let least = Infinity;
  for (const trail of trails) {
    const sample = nearestSample(app.motion.trails[trail], frame);
    const distance = Math.abs(place.y(graph.at(trail, sample)) - y);
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
  const graph = chosenGraph(app);
  return `${named} ${frameText(sampleFrame(of, sample))}: ${withUnit(graph, graph.at(trail, sample))}`;
}

export interface GraphPanel {
  readonly element: HTMLElement;
  redraw(): void;
  /** After measures were worked out. */
  measured(): void;
  /** After some trails have moved. */
  trailsMoved(moved: ReadonlySet<number>): void;
}

/** `openMeasures` shows the measures of the selection. */
export function buildGraph(app: App, openMeasures: () => void): GraphPanel {
  const { store } = app;
  let trails = drawnTrails(app);
  let largest = 0;
  const place = () => placeOf(app, largest, plot.clientWidth, plot.clientHeight);
  const curves = new Layer("curves", (context, width, height) => drawCurves(context, app, chosenGraph(app), trails, place(), width, height));
  const moving = new Layer("moving", (context, _, height) => drawMoving(context, app, chosenGraph(app), place(), height));
  const plot = el("div", { class: "plot", role: "img" }, curves.canvas, moving.canvas);
  const list = el("ul", { class: "graph-names" });
  const value = el("span", { class: "graph-value" });
  const inWords = el("p", { class: "hidden", role: "status" });
  const empty = el("p", { class: "none" });
  const unit = el("span", { class: "graph-unit" });

  const follow = () => {
    setText(value, reading(app, trails));
    moving.invalidate();
  };
  const redraw = () => {
    trails = drawnTrails(app);
    const graph = chosenGraph(app);
    largest = largestValue(app, graph, trails);
    const text = summary(app, trails);
    setAttributes(plot, { "aria-label": text });
    setText(inWords, text);
    list.replaceChildren(...names(app, trails));
    setAttributes(element, { "aria-label": `${graph.title} graph` });
    setText(unit, graph.unit);
    setText(empty, `Select objects to see their ${graph.title.toLowerCase()}.`);
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
  store.subscribe(redraw, ["selected", "relativeTo", "seen", "palette", "theme", "graph"]);
  store.subscribe(() => (curves.invalidate(), moving.invalidate()), ["timeSpan"]);
  const kinds = graphsOf(app).map((name): Option<GraphName> => [name, graphOf(app, name).title]);
  const element = el(
    "section", { class: "graph" },
    el("div", { class: "graph-head" }, select(app, "graph", "Graph", kinds), unit,
      button({ text: "Measures", title: "All measures of the selected objects", class: "button small" }, openMeasures),
      ...(app.editing ? [checkbox(app, "showChannels", "Channels"), selectedTangents(app)] : []), list, value), plot, empty, inWords,
  );
  redraw();
  return {
    element, redraw,
    measured: () => void (needsMeasures(store.state.graph) && redraw()),
    trailsMoved: (moved) => (trails.some((trail) => moved.has(trail)) ? redraw() : follow()),
  };
}
