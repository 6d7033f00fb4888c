// Two engines' results side by side.

import { createHash } from "node:crypto";
import type { Results } from "./commands";

const hash = (bytes: Uint8Array) => createHash("sha256").update(bytes).digest("hex");

/** A hash of every result, by its name. */
export const hashes = (results: Results) => new Map([...results].map(([name, bytes]) => [name, hash(bytes)]));

/** A line for each of the first results that the two do not share. */
export function differences(here: Results, there: Results): string[] {
  const ours = hashes(here), theirs = hashes(there);
  const names = new Set([...ours.keys(), ...theirs.keys()]);
  const shown = (results: Results, name: string) =>
    results.has(name) ? `${hash(results.get(name)!).slice(0, 12)} (${results.get(name)!.length} bytes)` : "nothing";
  return [...names].filter((name) => ours.get(name) !== theirs.get(name)).slice(0, 10)
    .map((name) => `${name}: here ${shown(here, name)}, natively ${shown(there, name)}`);
}
