// Names of objects, with as much of their path as tells equal ones apart.

import type { Trail } from "../source/trail";
import type { App } from "./app";
import { keptForObjects } from "./hierarchy";

const stepsOf = ({ source }: Trail) => source.split("|").filter((step) => step !== "");

/** The end of the path above an object, of so many steps, and its name. */
function withPath(trail: Trail, steps: number): string {
  const path = stepsOf(trail);
  return [...path.slice(Math.max(0, path.length - 1 - steps), -1), trail.name].join("|");
}

/** Adds steps of the path to names that are equal, until they differ or the path ends. */
function tellApart(trails: readonly Trail[], names: string[]): void {
  const longest = Math.max(0, ...trails.map((trail) => stepsOf(trail).length - 1));
  let equal = repeated(names);
  for (let steps = 1; steps <= longest && equal.length > 0; ++steps) {
    const texts = new Map(equal.map((i) => [i, withPath(trails[i], steps)]));
    const count = new Map<string, number>();
    for (const text of texts.values()) count.set(text, (count.get(text) ?? 0) + 1);
    for (const [i, text] of texts) if (count.get(text) === 1) names[i] = text;
    equal = equal.filter((i) => count.get(texts.get(i)!)! > 1);
  }
}

/** The places of names that come more than once. */
function repeated(names: readonly string[]): number[] {
  const count = new Map<string, number>();
  for (const name of names) count.set(name, (count.get(name) ?? 0) + 1);
  return [...names.keys()].filter((i) => count.get(names[i])! > 1);
}

/** A name for each trail, in their order. Equal names stay equal only where the whole paths are. */
export const distinctNames = keptForObjects((trails): readonly string[] => {
  const names = trails.map(({ name }) => name);
  tellApart(trails, names);
  return names;
});

/** What positions are relative to; null: the world. */
export function referenceName({ motion, store, spaces }: Pick<App, "motion" | "store" | "spaces">): string | null {
  const { relativeTo, space, through } = store.state;
  const camera = spaces?.cameras[through ?? 0]?.name;
  if (space === "camera" && camera) return camera;
  if (space === "screen" && camera) return `the screen of ${camera}`;
  if (relativeTo === null) return null;
  const { name } = motion.trails[relativeTo];
  return space === "turning" ? `${name}, as it turns` : name;
}
