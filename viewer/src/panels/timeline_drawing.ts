// How the timeline looks.

import type { App } from "../model/app";
import { shownKeyTimes } from "../model/commands";
import { frameText, niceStep } from "../model/format";
import { seenTime } from "../model/time_span";
import { frameScale, isSeen, ticks, type FrameScale } from "./frame_scale";
import { styleColors } from "./parts/theme";

/** From the top: the range with its handles, the keys, the numbers and ticks. */
const RANGE = { top: 3, height: 18 };
export const KEYS = 31;
const TEXT = 47;

/** Closer than this, ticks are a smear. */
const CLOSEST = 5;

function verticals(context: CanvasRenderingContext2D, places: readonly number[], top: number, bottom: number): void {
  context.beginPath();
  for (const x of places) {
    const sharp = Math.round(x) + 0.5;
    context.moveTo(sharp, top);
    context.lineTo(sharp, bottom);
  }
  context.stroke();
}

function drawRuler(context: CanvasRenderingContext2D, app: App, scale: FrameScale, height: number, colors: Record<"line" | "muted", string>): void {
  const [first, last] = seenTime(app);
  const small = niceStep(Math.max(1, CLOSEST / scale.pixelsPerFrame));
  const widest = Math.max(36, ...[first, last].map((frame) => context.measureText(frameText(Math.round(frame))).width));
  const large = niceStep(Math.max(small, (widest + 20) / scale.pixelsPerFrame));
  context.lineWidth = 1;
  context.strokeStyle = colors.line;
  verticals(context, ticks(first, last, small).map(scale.x), height - 5, height);
  context.strokeStyle = colors.muted;
  context.fillStyle = colors.muted;
  context.textAlign = "center";
  const labelled = ticks(first, last, large);
  verticals(context, labelled.map(scale.x), height - 8, height);
  for (const frame of labelled) context.fillText(frameText(frame), scale.x(frame), TEXT);
}

/** Where key times are, none closer to the one before than a pixel. */
export function keyPlaces(app: App, scale: FrameScale): number[] {
  const places: number[] = [];
  for (const time of shownKeyTimes(app)) {
    const x = scale.x(time);
    if (isSeen(app, time) && !(x - places[places.length - 1] < 1)) places.push(x);
  }
  return places;
}

/** Whether marks of this width would run into each other. */
export const isCrowded = (places: readonly number[], width: number): boolean =>
  places.length > 1 && (places[places.length - 1] - places[0]) / (places.length - 1) < width;

function drawKeys(context: CanvasRenderingContext2D, app: App, scale: FrameScale, color: string): void {
  const places = keyPlaces(app, scale);
  if (isCrowded(places, 11)) {
    context.strokeStyle = color;
    verticals(context, places, KEYS - 4, KEYS + 4);
    return;
  }
  context.fillStyle = color;
  for (const x of places) {
    context.beginPath();
    context.moveTo(x, KEYS - 5);
    context.lineTo(x + 4.5, KEYS);
    context.lineTo(x, KEYS + 5);
    context.lineTo(x - 4.5, KEYS);
    context.fill();
  }
}

function drawNow(context: CanvasRenderingContext2D, x: number, height: number, text: string, colors: Record<"accent" | "on-accent", string>): void {
  context.fillStyle = colors.accent;
  context.fillRect(Math.round(x) - 1, RANGE.top + RANGE.height, 2, height);
  const width = Math.max(26, context.measureText(text).width + 12);
  context.beginPath();
  context.roundRect(x - width / 2, TEXT - 13, width, 17, 4);
  context.fill();
  context.fillStyle = colors["on-accent"];
  context.textAlign = "center";
  context.fillText(text, x, TEXT);
}

type Bar = (from: number, to: number, color: string) => void;

/** Which part of all the time is seen: a line over the bar, as long as that part is of the whole. */
function drawOverview(context: CanvasRenderingContext2D, app: App, width: number, color: string): void {
  if (app.store.state.timeSpan === null) return;
  const all = frameScale(app.scene.first, app.scene.last, width);
  const [first, last] = seenTime(app);
  context.fillStyle = color;
  context.fillRect(all.x(first), 0, Math.max(6, all.x(last) - all.x(first)), 2);
}

/** From the handle at the start to that at the end; where one is out of sight, to the edge. */
function drawRange(app: App, bar: Bar, colors: Record<"track" | "range", string>): void {
  const [first, last] = seenTime(app);
  const { playFirst, playLast } = app.store.state;
  bar(first, last, colors.track);
  const [from, to] = [Math.max(first, playFirst), Math.min(last, playLast)];
  if (from <= to) bar(from, to, colors.range);
}

export function drawTimeline(context: CanvasRenderingContext2D, app: App, scale: FrameScale, width: number, height: number): void {
  const colors = styleColors("line", "muted", "key", "accent", "on-accent", "track", "range", "edge");
  const { frame } = app.store.state;
  context.font = "12px system-ui, sans-serif";
  drawRange(app, (from, to, color) => {
    context.fillStyle = color;
    context.fillRect(scale.x(from), RANGE.top, Math.max(1, scale.x(to) - scale.x(from)), RANGE.height);
  }, colors);
  drawOverview(context, app, width, colors.edge);
  drawRuler(context, app, scale, height, colors);
  drawKeys(context, app, scale, colors.key);
  if (isSeen(app, frame)) drawNow(context, scale.x(frame), height, frameText(frame), colors);
}
