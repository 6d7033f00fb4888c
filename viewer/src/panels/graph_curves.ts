// Spacing as a curve of pixels: however many samples there are, a column of the picture holds their least and most.

import type { FrameScale } from "./frame_scale";

/** Per column, from the left; NaN where there is nothing to draw. */
export interface Curve {
  readonly low: Float64Array;
  readonly high: Float64Array;
}

export interface Stretches {
  /** Distance a frame from each sample to the next. */
  readonly spacing: Float64Array;
  readonly startFrame: number;
  readonly frameStep: number;
}

/** The least and the most of the stretches that lie in each column, at least in part. */
export function curveOf({ spacing, startFrame, frameStep }: Stretches, scale: FrameScale, width: number): Curve {
  const columns = Math.max(0, Math.ceil(width));
  const low = new Float64Array(columns).fill(NaN);
  const high = new Float64Array(columns).fill(NaN);
  const place = (x: number) => (scale.frame(x) - startFrame) / frameStep;
  for (let column = 0; column < columns; ++column) {
    const first = Math.max(0, Math.floor(place(column)));
    const last = Math.min(spacing.length - 1, Math.ceil(place(column + 1)) - 1);
    for (let i = first; i <= last; ++i) {
      const value = spacing[i];
      if (!Number.isFinite(value)) continue;
      if (!(low[column] <= value)) low[column] = value;
      if (!(high[column] >= value)) high[column] = value;
    }
  }
  return { low, high };
}

export interface Extremes {
  readonly slowest: number;
  readonly fastest: number;
}

/** The stretches with the least and the most spacing; null when none is finite. */
export function extremes(spacing: Float64Array): Extremes | null {
  let [slowest, fastest] = [-1, -1];
  for (let i = 0; i < spacing.length; ++i) {
    if (!Number.isFinite(spacing[i])) continue;
    if (slowest < 0 || spacing[i] < spacing[slowest]) slowest = i;
    if (fastest < 0 || spacing[i] > spacing[fastest]) fastest = i;
  }
  return slowest < 0 ? null : { slowest, fastest };
}
