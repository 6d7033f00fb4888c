// How far apart the selected objects are in the two scenes, frame by frame, under the first graph.

import "./compare_graph.css";
import type { App } from "../model/app";
import { goTo } from "../model/commands";
import { markColor } from "../model/colors";
import { apartText, comparisonOf, distanceText, secondName, shownComparison, type Apart, type Comparison } from "../model/compare";
import { frameText, unitName } from "../model/format";
import { nearestSample, sampleFrame } from "../model/motion";
import { distinctNames } from "../model/names";
import { visibleTrails } from "../model/pose";
import type { Trail } from "../source/trail";
import { button, el, setAttributes, setText } from "./parts/dom";
import { isSeen, LEFT, RIGHT } from "./frame_scale";
import { curveOf } from "./graph_curves";
import { drawAxis, placeOf, strokeCurve, type Place } from "./graph_drawing";
import { Layer, onDrag } from "./parts/layer";
import { styleColors } from "./parts/theme";
import { zoomsTime } from "./time_zoom";
import { frameAt } from "./timeline";

/** The most curves that are drawn: nobody could tell more apart. */
const MOST_CURVES = 50;
/** The most objects that the words name. */
const MOST_NAMES = 6;

const nameOf = (app: App, trail: number): string => distinctNames(app.motion.trails)[trail];

/** The selected objects that both scenes have. */
const drawnTrails = (app: App, comparison: Comparison): number[] =>
  [...app.store.state.selected].filter((trail) => comparison.has(trail)).slice(0, MOST_CURVES);

/** Of the selection, or of all that is shown where it is nothing. */
function largestShown(app: App, comparison: Comparison): Apart | null {
  const { state } = app.store;
  const trails = state.selected.size > 0 ? [...state.selected] : visibleTrails(app.motion, state);
  return comparison.largest(trails);
}

function summary(app: App, comparison: Comparison, trails: readonly number[]): string {
  const start = `Distance to ${secondName(app)}`;
  if (trails.length === 0)
    return app.store.state.selected.size === 0 ? `${start}: nothing is selected.` : `${start}: it has none of the selected objects.`;
  const sentences = trails.slice(0, MOST_NAMES).map((trail) => {
    const found = comparison.largest([trail]);
    return `${nameOf(app, trail)}: ${found ? `at most ${apartText(app, found)}` : "no distance is known"}.`;
  });
  if (trails.length > MOST_NAMES) sentences.push(`And ${trails.length - MOST_NAMES} more.`);
  return `${start}. ${sentences.join(" ")}`;
}

/** The first object that is drawn, at the current frame. */
function reading(app: App, comparison: Comparison, trails: readonly number[]): string {
  const { frame, hover } = app.store.state;
  const trail = hover && comparison.has(hover.trail) ? hover.trail : trails[0];
  if (trail === undefined) return "";
  const of = app.motion.trails[trail];
  const sample = hover?.trail === trail ? hover.sample : nearestSample(of, frame);
  return `${nameOf(app, trail)}, frame ${frameText(sampleFrame(of, sample))}: ${distanceText(app, comparison.apart(trail)[sample])}`;
}

type Context = CanvasRenderingContext2D;

/** A ring where the curve is highest. */
function drawLargest(context: Context, app: App, { trail, sample, distance }: Apart, place: Place, colors: Record<"text" | "surface", string>): void {
  const x = place.scale.x(sampleFrame(app.motion.trails[trail], sample));
  context.beginPath();
  context.arc(x, place.y(distance), 4, 0, 2 * Math.PI);
  context.fillStyle = colors.surface;
  context.fill();
  context.lineWidth = 2;
  context.strokeStyle = colors.text;
  context.stroke();
}

/** From sample to sample; where samples are closer than pixels, the least and the most of each. */
function drawCurve(context: Context, trail: Trail, apart: Float64Array, place: Place, color: string, width: number): void {
  const { startFrame, frameStep } = trail;
  if (frameStep * place.scale.pixelsPerFrame < 1)
    return strokeCurve(context, curveOf({ values: apart, startFrame, frameStep }, place.scale, width), place, color, 2);
  context.strokeStyle = color;
  context.lineWidth = 2;
  context.lineJoin = "round";
  context.beginPath();
  apart.forEach((distance, sample) => {
    const x = place.scale.x(sampleFrame(trail, sample));
    if (Number.isFinite(distance) && Number.isFinite(apart[sample - 1])) context.lineTo(x, place.y(distance));
    else if (Number.isFinite(distance)) context.moveTo(x, place.y(distance));
  });
  context.stroke();
}

function drawCurves(context: Context, app: App, comparison: Comparison, trails: readonly number[], place: Place, width: number, height: number): void {
  const colors = styleColors("line", "muted", "text", "surface");
  drawAxis(context, place, width, colors);
  context.save();
  context.beginPath();
  context.rect(LEFT, 0, width - LEFT - RIGHT, height);
  context.clip();
  for (const trail of trails) drawCurve(context, app.motion.trails[trail], comparison.apart(trail), place, markColor(trail, app.store.state.selected), width);
  const largest = comparison.largest(trails);
  if (largest) drawLargest(context, app, largest, place, colors);
  context.restore();
}

export interface CompareGraph {
  readonly element: HTMLElement;
  redraw(): void;
}

/** Null where there is no second scene. */
export function buildCompareGraph(app: App): CompareGraph | null {
  if (!comparisonOf(app)) return null;
  const { store } = app;
  let [trails, largest]: [readonly number[], Apart | null] = [[], null];
  let most = 0; // of the curves
  const place = () => placeOf(app, most, plot.clientWidth, plot.clientHeight);
  const curves = new Layer("curves", (context, width, height) =>
    drawCurves(context, app, comparisonOf(app)!, trails, place(), width, height));
  const moving = new Layer("moving", (context, _, height) => {
    if (!isSeen(app, store.state.frame)) return;
    context.fillStyle = styleColors("accent").accent;
    context.fillRect(Math.round(place().scale.x(store.state.frame)) - 1, 0, 2, height);
  });
  const plot = el("div", { class: "plot", role: "img" }, curves.canvas, moving.canvas);
  const value = el("span", { class: "graph-value" });
  const inWords = el("p", { class: "hidden", role: "status" });
  const empty = el("p", { class: "none" });
  const goToLargest = button({ text: "", class: "button small" }, () => {
    if (!largest) return;
    if (store.state.selected.size === 0) store.set({ selected: new Set([largest.trail]) });
    goTo(app, sampleFrame(app.motion.trails[largest.trail], largest.sample));
  });

  const follow = () => {
    const comparison = shownComparison(app);
    if (comparison) setText(value, reading(app, comparison, trails));
    moving.invalidate();
  };
  const redraw = () => {
    const comparison = shownComparison(app);
    element.hidden = !comparison;
    if (!comparison) return;
    trails = drawnTrails(app, comparison);
    largest = largestShown(app, comparison);
    most = comparison.largest(trails)?.distance ?? 0;
    const text = summary(app, comparison, trails);
    setAttributes(plot, { "aria-label": text });
    setText(inWords, text);
    setText(goToLargest, largest ? `Largest: ${nameOf(app, largest.trail)}, ${apartText(app, largest)}` : "");
    goToLargest.hidden = !largest;
    setText(empty, store.state.selected.size > 0 ? "The second scene has none of the selected objects." : "Select objects to see how far apart they are.");
    empty.hidden = trails.length > 0;
    curves.invalidate();
    follow();
  };
  zoomsTime(app, plot);
  onDrag(plot, (x) => goTo(app, frameAt(app, place().scale, x)));
  store.subscribe(follow, ["frame", "hover"]);
  store.subscribe(() => (curves.invalidate(), moving.invalidate()), ["timeSpan"]);
  store.subscribe(redraw, ["selected", "hidden", "solo", "relativeTo", "seen", "theme", "showCompared"]);
  const heading = el("h2", {}, `Distance to ${secondName(app)}, ${unitName(app.scene.unit)}`);
  const element = el(
    "section", { class: "graph compare-graph", "aria-label": "Distance graph" },
    el("div", { class: "graph-head" }, heading, goToLargest, value), plot, empty, inWords,
  );
  redraw();
  return { element, redraw };
}
