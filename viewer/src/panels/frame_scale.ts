// Where frames are, from left to right: the same for the timeline and for the graph under it.

import type { App } from "../model/app";
import { seenTime } from "../model/time_span";

/** Room for the numbers of the graph's axis, and for the handles at the ends of the range. */
export const LEFT = 64;
export const RIGHT = 32;

export interface FrameScale {
  x(frame: number): number;
  frame(x: number): number;
  readonly pixelsPerFrame: number;
}

/** Of the part of the time that is seen. */
export function seenScale(app: App, width: number): FrameScale {
  const [first, last] = seenTime(app);
  return frameScale(first, last, width);
}

export function frameScale(first: number, last: number, width: number): FrameScale {
  const [from, length] = last > first ? [first, last - first] : [first - 0.5, 1];
  const pixelsPerFrame = Math.max(1, width - LEFT - RIGHT) / length;
  return {
    x: (frame) => LEFT + (frame - from) * pixelsPerFrame,
    frame: (x) => from + (x - LEFT) / pixelsPerFrame,
    pixelsPerFrame,
  };
}

/** Whether a frame is between the two ends of the picture. */
export const isSeen = (app: App, frame: number): boolean => {
  const [first, last] = seenTime(app);
  return frame >= first && frame <= last;
};

/** The multiples of a step from `low` to `high`. */
export function ticks(low: number, high: number, step: number): number[] {
  const begin = Math.ceil(low / step - 1e-9);
  const count = Math.floor(high / step + 1e-9) - begin + 1;
  return Array.from({ length: Math.max(0, count) }, (_, i) => (begin + i) * step);
}
