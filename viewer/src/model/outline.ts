// The list of objects as a hierarchy: what it leaves, what is folded, and how deep each object stands.

import type { App } from "./app";
import { hierarchyOf, type Hierarchy } from "./hierarchy";
import type { Motion } from "./motion";
import { matcher } from "./search";

export interface OutlineRow {
  readonly trail: number;
  /** 0 at the top. */
  readonly depth: number;
  /** False where it is listed only for what hangs from it. */
  readonly fits: boolean;
  /** Whether what hangs from it is listed; undefined where nothing does. */
  readonly open: boolean | undefined;
  /** Its place among what hangs from the same object, from 1, and how many those are. */
  readonly place: number;
  readonly siblings: number;
}

/** Whether something holds of a trail, or of any below it. */
export function orBelow({ parents }: Hierarchy, holds: (trail: number) => boolean): boolean[] {
  const result: boolean[] = parents.map(() => false);
  parents.forEach((_, trail) => {
    if (!holds(trail)) return;
    for (let at: number | null = trail; at !== null && !result[at]; at = parents[at]) result[at] = true;
  });
  return result;
}

/** The rows from above, in the order of the scene; what hangs from a folded trail is left out. */
export function outline(hierarchy: Hierarchy, fits: (trail: number) => boolean, folded: (trail: number) => boolean): OutlineRow[] {
  const { parents, children } = hierarchy;
  const kept = orBelow(hierarchy, fits);
  const rows: OutlineRow[] = [];
  const listed = (trails: readonly number[]) => trails.filter((trail) => kept[trail]);
  const waiting: Omit<OutlineRow, "fits" | "open">[] = [];
  const push = (trails: readonly number[], depth: number) => {
    const siblings = trails.length;
    for (let i = siblings; i > 0; --i) waiting.push({ trail: trails[i - 1], depth, place: i, siblings }); // the first is taken first
  };
  push(listed([...parents.keys()].filter((trail) => parents[trail] === null)), 0);
  for (let next = waiting.pop(); next; next = waiting.pop()) {
    const below = listed(children[next.trail]);
    const open = below.length > 0 ? !folded(next.trail) : undefined;
    rows.push({ ...next, fits: fits(next.trail), open });
    if (open) push(below, next.depth + 1);
  }
  return rows;
}

/** Those from which others hang, but nothing that moves: they are folded at first. */
export function stillBranches(motion: Motion): ReadonlySet<number> {
  const hierarchy = hierarchyOf(motion.trails);
  const moves = orBelow(hierarchy, (trail) => motion.moving[trail]);
  return new Set([...moves.keys()].filter((trail) => hierarchy.children[trail].length > 0 && !moves[trail]));
}

/** What search and filter leave, folded or not. When nothing moves, the filter leaves everything. */
export function foundTrails({ motion, store }: App): readonly number[] {
  const { search, movingOnly } = store.state;
  const all = motion.trails.map((_, trail) => trail);
  const fits = matcher(search);
  return (movingOnly ? motion.thatMove(all) : all).filter((trail) => fits(motion.trails[trail]));
}
