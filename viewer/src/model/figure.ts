// The figure that objects make: bones between them, and the frames at which it is drawn once more.

import type { App } from "./app";
import { shownKeyTimes } from "./commands";
import type { Hierarchy } from "./hierarchy";
import { isVisible, type ViewState } from "./state";

/** An object and its nearest ancestor that is shown. */
export type Bone = readonly [child: number, parent: number];

/** The bones between the objects that are shown. */
export function bonesOf({ parents }: Hierarchy, state: ViewState): Bone[] {
  const bones: Bone[] = [];
  parents.forEach((above, child) => {
    if (!isVisible(state, child)) return;
    let parent = above;
    while (parent !== null && !isVisible(state, parent)) parent = parents[parent];
    if (parent !== null) bones.push([child, parent]);
  });
  return bones;
}

/** One more drawing of the figure: its frame, and how much of its strength is left; `side` is -1 before the current frame. */
export interface Skin {
  readonly frame: number;
  readonly side: -1 | 1;
  readonly strength: number;
}

const skin = (frame: number, side: -1 | 1, place: number, count: number): Skin =>
  ({ frame, side, strength: 0.7 * (1 - place / (count + 1)) });

/** The onion skins of the moment, the farthest ones first; none outside the scene's range. */
export function onionSkins(app: App): Skin[] {
  const { onion, onionEvery, onionBefore, onionAfter, frame } = app.store.state;
  if (onion === "off") return [];
  const keys = onion === "keys" ? shownKeyTimes(app) : [];
  const steps = (count: number, side: -1 | 1) => Array.from({ length: count }, (_, i) => frame + side * (i + 1) * onionEvery);
  const before = onion === "keys" ? keys.filter((key) => key < frame - 1e-9).reverse() : steps(onionBefore, -1);
  const after = onion === "keys" ? keys.filter((key) => key > frame + 1e-9) : steps(onionAfter, 1);
  const { first, last: end } = app.scene;
  return [
    ...before.slice(0, onionBefore).map((at, i) => skin(at, -1, i, onionBefore)).reverse(),
    ...after.slice(0, onionAfter).map((at, i) => skin(at, 1, i, onionAfter)).reverse(),
  ].filter(({ frame: at }) => at >= first && at <= end);
}
