// How the graph of channels looks.

import type { App } from "../../model/app";
import { lengthText } from "../../model/format";
import type { ChannelCurve } from "../../source/trail";
import { isSeen, LEFT, RIGHT, ticks } from "../frame_scale";
import { styleColors } from "../parts/theme";
import { handlesOf, type ChannelPlace } from "./channel_place";

/** Of what belongs to an axis; others are of the text's colour. */
const AXES: Readonly<Record<string, string>> = { X: "#d0463b", Y: "#3c8f3c", Z: "#3b78d8" };

export const channelColor = (channel: string, other: string): string => AXES[channel.slice(-1)] ?? other;

type Context = CanvasRenderingContext2D;

function drawValues(context: Context, { low, high, step, y }: ChannelPlace, width: number, colors: Record<"line" | "muted", string>): void {
  context.font = "11px system-ui, sans-serif";
  context.textAlign = "right";
  context.textBaseline = "middle";
  context.strokeStyle = colors.line;
  context.fillStyle = colors.muted;
  context.lineWidth = 1;
  context.beginPath();
  for (const value of ticks(low, high, step)) {
    const at = Math.round(y(value)) + 0.5;
    context.moveTo(LEFT, at);
    context.lineTo(width - RIGHT, at);
    context.fillText(lengthText(value), LEFT - 8, at);
  }
  context.stroke();
}

function drawCurve(context: Context, { values }: ChannelCurve, frames: Float64Array, { scale, y }: ChannelPlace): void {
  context.lineWidth = 1.5;
  context.beginPath();
  values.forEach((value, i) => context.lineTo(scale.x(frames[i]), y(value)));
  context.stroke();
}

function drawHandles(context: Context, app: App, key: ChannelCurve["keys"][number], { scale, y }: ChannelPlace): void {
  context.setLineDash(key.broken ? [4, 3] : []);
  for (const { frame, value } of handlesOf(app, key)) {
    context.beginPath();
    context.moveTo(scale.x(key.frame), y(key.value));
    context.lineTo(scale.x(frame), y(value));
    context.stroke();
    context.beginPath();
    context.arc(scale.x(frame), y(value), 3.5, 0, 2 * Math.PI);
    context.fill();
  }
  context.setLineDash([]);
}

function drawKey(context: Context, x: number, y: number, strong: boolean): void {
  const size = strong ? 5.5 : 4;
  context.beginPath();
  context.moveTo(x, y - size);
  context.lineTo(x + size, y);
  context.lineTo(x, y + size);
  context.lineTo(x - size, y);
  context.fill();
}

export function drawChannels(context: Context, app: App, curves: readonly ChannelCurve[], frames: Float64Array, place: ChannelPlace,
                             width: number, height: number): void {
  const colors = styleColors("line", "muted", "text", "accent");
  const now = app.store.state.frame;
  drawValues(context, place, width, colors);
  context.save();
  context.beginPath();
  context.rect(LEFT - 6, 0, width - LEFT - RIGHT + 12, height);
  context.clip();
  for (const curve of curves) {
    context.strokeStyle = context.fillStyle = channelColor(curve.channel, colors.text);
    drawCurve(context, curve, frames, place);
    for (const key of curve.keys) {
      if (key.frame === now) drawHandles(context, app, key, place);
      drawKey(context, place.scale.x(key.frame), place.y(key.value), key.frame === now);
    }
  }
  context.restore();
  if (!isSeen(app, now)) return;
  context.fillStyle = colors.accent;
  context.fillRect(Math.round(place.scale.x(now)) - 0.5, 0, 1, height);
}
