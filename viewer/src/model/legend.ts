// What the colours of a mode mean: every colour comes from the functions that colour the trails.

import type { ColorMode, Trail } from "../source/trail";
import { rampColor, rgbText, trailColors, type Palette } from "./colors";

const STEPS = 40;

/** A trail whose samples have all colours of every mode: slow to fast, past and future of frame 0, two beats. */
const samples: Trail = {
  viz: "", source: "", name: "", parent: null, samplesPerFrame: 1, colorMode: 1, startFrame: 0, frameStep: 1, lineWidth: 1, pointSize: 1,
  showLine: true, showDots: true, ghost: false, count: STEPS + 1, points: new Float64Array(3 * (STEPS + 1)),
  colors: Uint8Array.from({ length: 3 * (STEPS + 1) }, (_, i) => Math.round(255 * rampColor(Math.floor(i / 3) / STEPS)[i % 3])),
  keyTimes: Float64Array.of(0, STEPS / 2), keyPoints: new Float64Array(6), warnings: [], measures: [],
};

/** All colours of a mode, in their order. */
export function legendColors(mode: ColorMode, palette: Palette): string[] {
  const bytes = trailColors(samples, mode, STEPS / 2, palette);
  return Array.from({ length: samples.count }, (_, i) => rgbText(bytes, i));
}

export type LegendItem = readonly [color: string, text: string];

/** The colours that have a meaning each; Spacing has a ramp instead, from slow to fast. */
export function legendItems(mode: Exclude<ColorMode, 1>, palette: Palette): LegendItem[] {
  const colors = legendColors(mode, palette);
  const last = colors[colors.length - 1];
  switch (mode) {
    case 0:
      return [[colors[0], "every trail"]];
    case 2:
      return [[colors[0], "up to the current frame"], [last, "after it"]];
    case 3:
      return [[colors[0], "from an odd key on: first, third, …"], [last, "from an even key on, and before the first"]];
  }
}
