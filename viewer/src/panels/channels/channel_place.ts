// Where the graph of channels has frames and values, its keys and the handles of their tangents.

import type { App } from "../../model/app";
import { niceStep } from "../../model/format";
import type { Gripped } from "../../model/editing/gripping";
import type { ChannelCurve, Side } from "../../source/trail";
import { seenScale, type FrameScale } from "../frame_scale";

const [TOP, BOTTOM] = [10, 8];
/** Pixels within which a key or a handle is hit. */
const HIT = 8;

export type Range = readonly [low: number, high: number];

export interface ChannelPlace {
  readonly scale: FrameScale;
  readonly low: number;
  readonly high: number;
  readonly step: number;
  y(value: number): number;
  value(y: number): number;
}

/** What the curves and keys reach, with a little room around it. */
export function rangeOf(curves: readonly ChannelCurve[]): Range {
  let [low, high] = [Infinity, -Infinity];
  for (const { values, keys } of curves)
    for (const value of [...values, ...keys.map((key) => key.value)]) if (Number.isFinite(value)) [low, high] = [Math.min(low, value), Math.max(high, value)];
  if (!(low <= high)) return [-1, 1];
  const room = 0.08 * (high - low) || Math.max(1e-3, 0.1 * Math.abs(low));
  return [low - room, high + room];
}

export function channelPlace(app: App, [low, high]: Range, width: number, height: number): ChannelPlace {
  const pixels = Math.max(1, height - TOP - BOTTOM) / (high - low);
  return {
    scale: seenScale(app, width), low, high, step: niceStep((high - low) / Math.max(2, Math.floor(height / 34))),
    y: (value) => TOP + (high - value) * pixels, value: (y) => high - (y - TOP) / pixels,
  };
}

export interface Handle {
  readonly side: Side;
  readonly frame: number;
  readonly value: number;
}

/** The ends of a key's tangents: a third of the way that they lead. */
export function handlesOf(app: App, key: ChannelCurve["keys"][number]): Handle[] {
  const { inX, inY, outX, outY } = key.tangents;
  const third = app.scene.fps / 3;
  return [
    ...(key.in ? [{ side: "in", frame: key.frame - inX * third, value: key.value - inY / 3 } as const] : []),
    ...(key.out ? [{ side: "out", frame: key.frame + outX * third, value: key.value + outY / 3 } as const] : []),
  ];
}

/** What of the curves is at a place of the graph: a key, or a handle of a key at the current frame. */
export function channelGrip(
  app: App, trail: number, curves: readonly ChannelCurve[], place: ChannelPlace, { x, y }: { x: number; y: number },
): Gripped | null {
  const away = (at: { frame: number; value: number }) => Math.hypot(place.scale.x(at.frame) - x, place.y(at.value) - y);
  let [best, least]: [Gripped | null, number] = [null, HIT];
  const offer = (distance: number, found: Gripped) => {
    if (distance < least) [best, least] = [found, distance];
  };
  for (const { channel, keys } of curves)
    for (const key of keys) {
      const { frame, value } = key;
      offer(away(key), { grip: { what: "key", trail, channel, frame },
        wanted: (to) => [frame + (to.x - x) / place.scale.pixelsPerFrame, value + place.value(to.y) - place.value(y)] });
      if (frame !== app.store.state.frame) continue;
      for (const handle of handlesOf(app, key)) {
        const sign = handle.side === "out" ? 3 : -3;
        offer(away(handle), { grip: { what: "tangent", trail, channel, frame, side: handle.side },
          wanted: (to) => [(sign * (place.scale.frame(to.x) - frame)) / app.scene.fps, sign * (place.value(to.y) - value)] });
      }
    }
  return best;
}
