// Who hangs from whom among the trails.

import type { Trail } from "../source/trail";

export interface Hierarchy {
  /** By trail; null at the top. */
  readonly parents: readonly (number | null)[];
  /** By trail, in the order of the trails. */
  readonly children: readonly (readonly number[])[];
}

const kept = new WeakMap<readonly Trail[], Hierarchy>();

/** Of these trails; kept as long as their list is. A parent that is not there, or that would close a circle, counts as none. */
export function hierarchyOf(trails: readonly Trail[]): Hierarchy {
  let hierarchy = kept.get(trails);
  if (!hierarchy) kept.set(trails, (hierarchy = makeHierarchy(trails)));
  return hierarchy;
}

function makeHierarchy(trails: readonly Trail[]): Hierarchy {
  const places = new Map(trails.map(({ source }, index) => [source, index]));
  const parents = trails.map(({ parent }) => (parent === null ? null : (places.get(parent) ?? null)));
  parents.forEach((_, index) => {
    let steps = 0;
    for (let at: number | null = index; at !== null && steps <= trails.length; at = parents[at]) ++steps;
    if (steps > trails.length) parents[index] = null;
  });
  const children: number[][] = trails.map(() => []);
  parents.forEach((parent, index) => {
    if (parent !== null) children[parent].push(index);
  });
  return { parents, children };
}
