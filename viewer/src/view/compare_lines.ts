// The second scene in the picture, muted: where the objects go there, where they are now, and how far that is from here.

import { secondName, shownComparison, type Comparison } from "../model/compare";
import { bonesOf } from "../model/figure";
import { hierarchyOf } from "../model/hierarchy";
import { sampleFrame, triple } from "../model/motion";
import type { Picture } from "./annotations";
import type { Overlay } from "./overlay";
import { spotOf, windowOf } from "./places";
import type { Spot } from "./primitives/projection";

/** The most samples that are drawn of the second scene's lines; of more, every second, third ... */
const MOST_SAMPLES = 20_000;
/** The most markers of current positions, and the most bones. */
const MOST_MARKS = 500;

/** Of the samples in the window in time, where there is one. */
function spots(picture: Picture, comparison: Comparison, trail: number, stride: number): (Spot | null)[] {
  const { state } = picture.app.store;
  const { from, to } = state.window ? windowOf(state) : { from: -Infinity, to: Infinity };
  const points = comparison.second.shownPoints(trail);
  const of = comparison.second.trails[trail];
  const result: (Spot | null)[] = [];
  for (let i = 0; i < of.count; i += stride) {
    const frame = sampleFrame(of, i);
    if (frame >= from && frame <= to) result.push(spotOf(picture, triple(points, i)));
  }
  return result;
}

/** The bones of the figure that both scenes have, as it is in the second one now. */
function drawBones(overlay: Overlay, picture: Picture, comparison: Comparison): void {
  const { app } = picture;
  const { state } = app.store;
  if (!state.showBones) return;
  const bones = bonesOf(hierarchyOf(app.motion.trails), state).filter((bone) => bone.every((trail) => comparison.has(trail)));
  for (const bone of bones.slice(0, MOST_MARKS))
    overlay.mutedLine(bone.map((trail) => spotOf(picture, comparison.second.shownPosition(trail, state.frame))), { strength: 0.5 });
}

/** The selected objects that both scenes have; all of them where nothing is selected. */
function drawnTrails({ app, layers }: Picture, comparison: Comparison): number[] {
  const { selected } = app.store.state;
  return layers.trails.map(({ index }) => index)
    .filter((index) => comparison.has(index) && (selected.size === 0 || selected.has(index)));
}

/** One sample in so many of these trails' lines. */
function strideOf(comparison: Comparison, trails: readonly number[]): number {
  const samples = trails.reduce((sum, trail) => sum + comparison.second.trails[trail].count, 0);
  return Math.max(1, Math.ceil(samples / MOST_SAMPLES));
}

/** How the second scene is drawn, and what of it is left out; null where it is not shown. */
export function comparedNote(picture: Picture): string | null {
  const comparison = shownComparison(picture.app);
  if (!comparison) return null;
  const trails = drawnTrails(picture, comparison);
  const stride = strideOf(comparison, trails);
  const thinned = stride > 1 ? `, one sample in ${stride}` : "";
  const fewer = trails.length > MOST_MARKS ? `, current positions of ${MOST_MARKS} of ${trails.length} objects` : "";
  return `thin and grey: ${secondName(picture.app)}${thinned}${fewer}`;
}

/** Goes under what is drawn after it. */
export function drawCompared(overlay: Overlay, picture: Picture): void {
  const { app } = picture;
  const comparison = shownComparison(app);
  if (!comparison) return;
  const trails = drawnTrails(picture, comparison);
  const stride = strideOf(comparison, trails);
  for (const trail of trails) overlay.mutedLine(spots(picture, comparison, trail, stride));
  drawBones(overlay, picture, comparison);
  const { frame } = app.store.state;
  for (const trail of trails.slice(0, MOST_MARKS)) {
    const here = spotOf(picture, app.motion.shownPosition(trail, frame));
    const second = spotOf(picture, comparison.second.shownPosition(trail, frame));
    if (here && second) overlay.mutedLine([here, second], { dash: [4, 3] });
    if (second) overlay.mutedMark(second);
  }
}
