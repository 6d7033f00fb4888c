// Values as a curve of pixels: however many samples there are, a column of the picture holds their least and most.

import type { FrameScale } from "./frame_scale";

/** Per column, from the left; NaN where there is nothing to draw. */
export interface Curve {
  readonly low: Float64Array;
  readonly high: Float64Array;
}

export interface Stretches {
  /** One for each stretch. */
  readonly values: Float64Array;
  /** Where the first stretch begins, and how long each is. */
  readonly startFrame: number;
  readonly frameStep: number;
}

/** The least and the most of the stretches that lie in each column, at least in part. */
export function curveOf({ values, startFrame, frameStep }: Stretches, scale: FrameScale, width: number): Curve {
  const columns = Math.max(0, Math.ceil(width));
  const low = new Float64Array(columns).fill(NaN);
  const high = new Float64Array(columns).fill(NaN);
  const place = (x: number) => (scale.frame(x) - startFrame) / frameStep;
  for (let column = 0; column < columns; ++column) {
    const first = Math.max(0, Math.floor(place(column)));
    const last = Math.min(values.length - 1, Math.ceil(place(column + 1)) - 1);
    for (let i = first; i <= last; ++i) {
      const value = values[i];
      if (!Number.isFinite(value)) continue;
      if (!(low[column] <= value)) low[column] = value;
      if (!(high[column] >= value)) high[column] = value;
    }
  }
  return { low, high };
}

export interface Extremes {
  readonly least: number;
  readonly most: number;
}

/** The places of the least and the largest value; null when none is finite. */
export function extremes(values: Float64Array): Extremes | null {
  let [least, most] = [-1, -1];
  for (let i = 0; i < values.length; ++i) {
    if (!Number.isFinite(values[i])) continue;
    if (least < 0 || values[i] < values[least]) least = i;
    if (most < 0 || values[i] > values[most]) most = i;
  }
  return least < 0 ? null : { least, most };
}
