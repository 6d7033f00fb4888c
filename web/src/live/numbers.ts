// Trails' arrays as they leave the engine: copies, which can be handed over.

import type { TrailArrays } from "../trails";
import type { TrailNumbers } from "./protocol";

/** Places of which one number is not finite are none: not a number in all three. */
export function finitePlaces(places: Float64Array): Float64Array {
  const own = places.slice();
  for (let i = 0; i < own.length; i += 3)
    if (!Number.isFinite(own[i] + own[i + 1] + own[i + 2])) own.fill(NaN, i, i + 3);
  return own;
}

export function trailNumbers(index: number, { points, colors, keyPoints, keyTimes }: TrailArrays): TrailNumbers {
  return {
    index, points: finitePlaces(points), keyPoints: finitePlaces(keyPoints), keyTimes: keyTimes.slice(),
    colors: Uint8Array.from(colors, (value) => (value > 0 ? Math.round(Math.min(value, 1) * 255) : 0)),
  };
}

/** What a message hands over instead of copying it. */
export const ownBuffers = (all: readonly { readonly points: Float64Array; readonly colors?: Uint8Array }[]): ArrayBuffer[] =>
  all.flatMap(({ points, colors }) => [points.buffer, ...(colors ? [colors.buffer] : [])] as ArrayBuffer[]);
