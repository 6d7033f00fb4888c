// What objects are called where their names alone do not tell them apart.

import type { Trail } from "../source/trail";

/** The last parts of a path, as many as asked for. */
function ending(source: string, parts: number): string {
  const separator = source.includes("|") ? "|" : "/";
  return source.split(separator).slice(-parts).join(separator);
}

let known: { of: readonly Trail[]; names: readonly string[] } = { of: [], names: [] };

/**
 * By trail: its name; where several have the same name, so much of the path before it that no other has it. Paths that
 * are the same get their number in the list.
 */
export function distinctNames(trails: readonly Trail[]): readonly string[] {
  if (known.of !== trails) known = { of: trails, names: tellApart(trails) };
  return known.names;
}

function tellApart(trails: readonly Trail[]): readonly string[] {
  const names = trails.map(({ name }) => name);
  const deepest = trails.reduce((most, { source }) => Math.max(most, source.split(/[|/]/).length), 0);
  for (let parts = 2; parts <= deepest; ++parts) {
    const again = repeated(names);
    if (again.length === 0) return names;
    for (const index of again) names[index] = ending(trails[index].source, parts) || names[index];
  }
  for (const index of repeated(names)) names[index] += ` (${index + 1})`;
  return names;
}

/** The places of texts that occur more than once. */
function repeated(texts: readonly string[]): number[] {
  const counts = new Map<string, number>();
  for (const text of texts) counts.set(text, (counts.get(text) ?? 0) + 1);
  return [...texts.keys()].filter((index) => counts.get(texts[index])! > 1);
}
