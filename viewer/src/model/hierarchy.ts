// Who hangs from whom among the trails.

import type { Trail } from "../source/trail";

export interface Hierarchy {
  /** By trail; null at the top. */
  readonly parents: readonly (number | null)[];
  /** By trail, in the order of the trails. */
  readonly children: readonly (readonly number[])[];
}

const sameObjects = (a: readonly Trail[], b: readonly Trail[]) =>
  a === b || (a.length === b.length && a.every(({ source, name, parent }, i) => source === b[i].source && name === b[i].name && parent === b[i].parent));

/** What `make` finds out about the objects of trails; kept for the list that was last asked about, while it is of these objects. */
export function keptForObjects<T>(make: (trails: readonly Trail[]) => T): (trails: readonly Trail[]) => T {
  let kept: { trails: readonly Trail[]; of: T } | null = null;
  return (trails) => {
    const of = kept && sameObjects(kept.trails, trails) ? kept.of : make(trails);
    kept = { trails, of };
    return of;
  };
}

/** A parent that is not there, or that would close a circle, counts as none. */
export const hierarchyOf = keptForObjects(makeHierarchy);

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
