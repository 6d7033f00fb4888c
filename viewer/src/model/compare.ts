// The same objects in a second scene: where they are there, and how far that is from where they are here.

import type { Trail } from "../source/trail";
import type { App } from "./app";
import { baseName, lengthText, frameText, unitName } from "./format";
import type { Shown } from "./framing";
import { Motion, sampleFrame } from "./motion";

/** A sample, and how far apart the object is in the two scenes there. */
export interface Apart {
  readonly trail: number;
  readonly sample: number;
  readonly distance: number;
}

const NOWHERE = new Float64Array();

/** A trail as the second scene has it; without samples where that lacks the object. */
const there = (trail: Trail): Trail => ({ ...trail, points: trail.compare?.points ?? NOWHERE, keyPoints: NOWHERE });

function apart(here: Float64Array, second: Float64Array): Float64Array {
  const result = new Float64Array(here.length / 3);
  for (let i = 0; i < here.length; i += 3)
    result[i / 3] = Math.hypot(here[i] - second[i], here[i + 1] - second[i + 1], here[i + 2] - second[i + 2]);
  return result;
}

/** Both as they are shown: relative to an object, each scene is relative to its own; in a space, both are in that of the first. */
export class Comparison {
  /** The second scene's trails, by the numbers of the first's. */
  readonly second: Motion;
  private readonly distances = new Map<number, Float64Array>();

  constructor(private readonly first: Motion) {
    this.second = new Motion(first.trails.map(there));
    this.second.relativeTo(first.relation);
    this.second.within(first.space);
  }

  /** Whether the second scene has the object. */
  has(trail: number): boolean {
    return Boolean(this.first.trails[trail]?.compare);
  }

  /** A distance a sample; NaN where a position is not finite. */
  apart(trail: number): Float64Array {
    let found = this.distances.get(trail);
    if (!found) {
      const second = this.second.shownPoints(trail);
      found = this.has(trail) ? apart(this.first.shownPoints(trail), second) : new Float64Array(this.first.trails[trail].count).fill(NaN);
      this.distances.set(trail, found);
    }
    return found;
  }

  /** The largest distance of these trails, where it is reached first; null where none is known. */
  largest(trails: readonly number[]): Apart | null {
    let most: Apart | null = null;
    for (const trail of trails)
      this.apart(trail).forEach((distance, sample) => {
        if (Number.isFinite(distance) && !(most && distance <= most.distance)) most = { trail, sample, distance };
      });
    return most;
  }
}

type Compared = Pick<App, "scene" | "motion">;

const kept = new WeakMap<Motion, { of: readonly unknown[]; comparison: Comparison }>();

/** The comparison with the second scene; null where there is none, or where it is not to be shown. */
export function shownComparison(app: App): Comparison | null {
  return app.store.state.showCompared ? comparisonOf(app) : null;
}

/** The comparison with the second scene, shown or not; null where there is none. Kept until what is shown changes. */
export function comparisonOf({ scene, motion }: Compared): Comparison | null {
  if (!scene.compared) return null;
  const of = [motion.trails, motion.relation, motion.space];
  let found = kept.get(motion);
  if (!found || of.some((each, i) => each !== found!.of[i])) kept.set(motion, (found = { of, comparison: new Comparison(motion) }));
  return found.comparison;
}

/** The comparison that is told of where nothing says what to show; with the scene as it was opened, only where it is shown. */
export function toldComparison(app: App): Comparison | null {
  return app.scene.compared?.opened ? shownComparison(app) : comparisonOf(app);
}

/** What framing is to fit of these trails: those that move, and in both scenes those that move in one of them. */
export function movingIn(motion: Motion, comparison: Comparison | null, trails: readonly number[]): [Shown, readonly number[]] {
  if (!comparison) return [motion, motion.thatMove(trails)];
  const { second } = comparison;
  const found = trails.filter((trail) => motion.moving[trail] || second.moving[trail]);
  const framed = found.length > 0 ? found : trails;
  const count = motion.trails.length;
  const both: Shown = {
    shownPoints: (index) => (index < count ? motion.shownPoints(index) : second.shownPoints(index - count)),
    reach: [...motion.reach, ...second.reach],
  };
  return [both, [...framed, ...framed.filter((trail) => comparison.has(trail)).map((trail) => count + trail)]];
}

/** What to call the second scene: its take where it is the same file. */
export function secondName({ scene: { name, compared } }: App): string {
  if (!compared) return "";
  const { scene, take, opened } = compared;
  if (opened) return `${baseName(scene)} as opened`;
  if (take === null) return baseName(scene);
  return scene === name ? `take ${take}` : `${baseName(scene)}, take ${take}`;
}

export const distanceText = (app: App, distance: number): string => `${lengthText(distance)} ${unitName(app.scene.unit)}`;

/** "3.2 cm at frame 12". */
export const apartText = (app: App, { trail, sample, distance }: Apart): string =>
  `${distanceText(app, distance)} at frame ${frameText(sampleFrame(app.motion.trails[trail], sample))}`;
