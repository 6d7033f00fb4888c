// What a reader chose of objects, taken to another scene with the same ones: by their paths, not by their places in a list.

import type { Trail } from "../../source/trail";
import type { App } from "../app";
import type { ViewState } from "../state";

type Chosen = Pick<ViewState, "selected" | "hidden" | "solo" | "folded" | "relativeTo">;

/** Null where no object of the one scene is in the other. */
export function choicesIn({ store }: Pick<App, "store">, from: readonly Trail[], to: readonly Trail[]): Chosen | null {
  const places = new Map(to.map(({ source }, index) => [source, index]));
  if (!from.some(({ source }) => places.has(source))) return null;
  const { selected, hidden, solo, folded, relativeTo } = store.state;
  const there = (trail: number) => places.get(from[trail].source) ?? [];
  const all = (chosen: ReadonlySet<number>) => new Set([...chosen].flatMap(there));
  const relative = relativeTo === null ? null : places.get(from[relativeTo].source);
  return { selected: all(selected), hidden: all(hidden), solo: all(solo), folded: all(folded), relativeTo: relative ?? null };
}
