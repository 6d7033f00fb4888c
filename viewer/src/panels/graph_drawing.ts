// How the graph looks: the curves, which change with the selection, and above them what moves.

import type { App } from "../model/app";
import { markColor, rgbText, trailColors } from "../model/colors";
import { lengthText, niceStep } from "../model/format";
import type { Graph } from "../model/graphs";
import { nearestSample, sampleFrame } from "../model/motion";
import { hasExtent } from "../model/reach";
import type { Hover } from "../model/state";
import { isSeen, LEFT, RIGHT, seenScale, ticks, type FrameScale } from "./frame_scale";
import { curveOf, extremes, type Curve, type Stretches } from "./graph_curves";
import { styleColors } from "./parts/theme";
import { isCrowded, keyPlaces } from "./timeline_drawing";

const TOP = 10;
const BOTTOM = 8;

export interface Place {
  readonly scale: FrameScale;
  /** The most that the axis shows. */
  readonly most: number;
  readonly step: number;
  y(value: number): number;
}

/** The largest value of these trails; what moves by the rounding of its coordinates has none. */
export function largestValue(app: App, graph: Graph, trails: readonly number[]): number {
  const tops = trails.filter((trail) => hasExtent(app.motion.reach[trail])).map((trail) => {
    const values = graph.values(trail);
    const found = extremes(values);
    return found ? values[found.most] : 0;
  });
  return Math.max(0, ...tops);
}

/** Axes that reach the largest value. */
export function placeOf(app: App, largest: number, width: number, height: number): Place {
  const reach = largest > 0 ? largest : 1;
  const step = niceStep(reach / Math.max(2, Math.floor((height - TOP - BOTTOM) / 34)));
  const most = Math.ceil(reach / step - 1e-6) * step; // rounding opens no new step
  return {
    scale: seenScale(app, width), most, step,
    y: (value) => height - BOTTOM - (value / most) * (height - TOP - BOTTOM),
  };
}

type Context = CanvasRenderingContext2D;

export function drawAxis(context: Context, place: Place, width: number, colors: Record<"line" | "muted", string>): void {
  context.font = "11px system-ui, sans-serif";
  context.textAlign = "right";
  context.textBaseline = "middle";
  context.strokeStyle = colors.line;
  context.fillStyle = colors.muted;
  context.lineWidth = 1;
  context.beginPath();
  for (const value of ticks(0, place.most, place.step)) {
    const y = Math.round(place.y(value)) + 0.5;
    context.moveTo(LEFT, y);
    context.lineTo(width - RIGHT, y);
    context.fillText(lengthText(value), LEFT - 8, y);
  }
  context.stroke();
}

function drawKeyTimes(context: Context, app: App, { scale, y, most }: Place, color: string): void {
  const places = keyPlaces(app, scale);
  const top = isCrowded(places, 16) ? y(0) - 5 : y(most);
  context.strokeStyle = color;
  context.lineWidth = 1;
  context.setLineDash(isCrowded(places, 16) ? [] : [2, 3]);
  context.beginPath();
  for (const x of places) {
    context.moveTo(Math.round(x) + 0.5, top);
    context.lineTo(Math.round(x) + 0.5, y(0));
  }
  context.stroke();
  context.setLineDash([]);
}

/** The stretches of a graph: where values belong to samples, from half way before each to half way after it. */
function stretchesOf(app: App, graph: Graph, index: number): Stretches {
  const { startFrame, frameStep } = app.motion.trails[index];
  return { values: graph.values(index), startFrame: graph.between ? startFrame : startFrame - frameStep / 2, frameStep };
}

/** In the colours that spacing gives the samples: pale under the curve, full along its edge. */
function fillCurve(context: Context, app: App, index: number, curve: Curve, { scale, y }: Place, surface: string): void {
  const trail = app.motion.trails[index];
  const colors = trailColors(trail, 1, app.store.state.frame, app.store.state.palette);
  const columns = (bottom: (top: number) => number) =>
    curve.high.forEach((value, column) => {
      if (Number.isNaN(value)) return;
      context.fillStyle = rgbText(colors, nearestSample(trail, scale.frame(column + 0.5)));
      context.fillRect(column, y(value), 1.6, bottom(y(value)) - y(value)); // a bit over the next: no gaps between pixels
    });
  columns(() => y(0));
  context.globalAlpha = 0.6;
  context.fillStyle = surface;
  context.fillRect(0, 0, curve.high.length, y(0));
  context.globalAlpha = 1;
  columns((top) => Math.min(top + 4, y(0)));
}

export function strokeCurve(context: Context, { low, high }: Curve, { y }: Place, color: string, width: number): void {
  context.strokeStyle = color;
  context.lineWidth = width;
  context.lineJoin = "round";
  context.beginPath();
  let drawn = false;
  high.forEach((most, column) => {
    if (Number.isNaN(most)) drawn = false;
    else {
      const [x, top, bottom] = [column + 0.5, y(most), y(low[column])];
      if (drawn) context.lineTo(x, top);
      else context.moveTo(x, top);
      if (bottom !== top) context.lineTo(x, bottom);
      drawn = true;
    }
  });
  context.stroke();
}

export function drawCurves(
  context: Context, app: App, graph: Graph, trails: readonly number[], place: Place, width: number, height: number,
): void {
  const colors = styleColors("line", "muted", "key", "text", "surface");
  context.save();
  context.beginPath();
  context.rect(LEFT, 0, width - LEFT - RIGHT, height);
  context.clip();
  for (const index of trails) {
    const curve = curveOf(stretchesOf(app, graph, index), place.scale, width);
    if (trails.length === 1) fillCurve(context, app, index, curve, place, colors.surface);
    strokeCurve(context, curve, place, trails.length === 1 ? colors.text : markColor(index, app.store.state.selected), trails.length === 1 ? 1 : 2);
  }
  context.restore();
  drawAxis(context, place, width, colors);
  if (trails.length > 0) drawKeyTimes(context, app, place, colors.key);
}

function drawHover(context: Context, app: App, graph: Graph, { trail, sample }: Hover, place: Place, colors: Record<"text" | "surface", string>): void {
  const x = place.scale.x(sampleFrame(app.motion.trails[trail], sample));
  const value = graph.at(trail, sample);
  context.strokeStyle = colors.text;
  context.lineWidth = 1;
  context.beginPath();
  context.moveTo(x, place.y(place.most));
  context.lineTo(x, place.y(0));
  context.stroke();
  if (!Number.isFinite(value)) return;
  context.beginPath();
  context.arc(x, place.y(value), 4.5, 0, 2 * Math.PI);
  context.fillStyle = markColor(trail, app.store.state.selected);
  context.fill();
  context.lineWidth = 2;
  context.strokeStyle = colors.text;
  context.stroke();
}

/** The current frame, and the sample that is pointed at. */
export function drawMoving(context: Context, app: App, graph: Graph, place: Place, height: number): void {
  const colors = styleColors("accent", "text", "surface");
  const { frame, hover } = app.store.state;
  context.fillStyle = colors.accent;
  if (isSeen(app, frame)) context.fillRect(Math.round(place.scale.x(frame)) - 1, 0, 2, height);
  const of = hover && app.motion.trails[hover.trail];
  if (of && isSeen(app, sampleFrame(of, hover.sample))) drawHover(context, app, graph, hover, place, colors);
}
