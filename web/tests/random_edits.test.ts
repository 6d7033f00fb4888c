import { basename } from "node:path";
import { describe, expect, test } from "vitest";
import { examine, type Command, type Results } from "./support/commands";
import { differences } from "./support/differences";
import { examples, filesOf, onlyFirst, scenes, startEngine } from "./support/engine";
import { nativeResults } from "./support/native";
import { EDITS_BETWEEN, randomEdits } from "./support/random_edits";

const engine = await startEngine();
const count = onlyFirst ? EDITS_BETWEEN : 1000;

/** The results of so many rows from this one on, by their names without the row. */
function resultsFrom(results: Results, first: number, rows: number): Results {
  const split = [...results].map(([name, bytes]) => [Number.parseInt(name, 10), name, bytes] as const);
  return new Map(split.filter(([row]) => row >= first && row < first + rows)
    .map(([row, name, bytes]) => [`${row - first} ${name.slice(name.indexOf(" ") + 1)}`, bytes]));
}

const isEdit = ([what]: Command) => ["undo", "redo", "set", "place", "put", "slide"].includes(what) || /Keys|^set/.test(what);
const refused = (results: Results, commands: Command[]) =>
  commands.filter((command, row) => isEdit(command) && results.has(`${row} ${command[0]} fails`)).length;

describe(`${count} edits of all sorts leave every array as they leave it natively, and undoing them leaves the first one`, () => {
  for (const path of onlyFirst ? scenes : examples)
    test(basename(path), () => {
      const { results, commands } = examine(engine, filesOf(path), "", (scene) => randomEdits(scene, count, 20));
      expect(differences(results, nativeResults(filesOf(path), "", commands))).toEqual([]);
      const asked = commands.findIndex(isEdit);
      expect(differences(resultsFrom(results, 0, asked), resultsFrom(results, commands.length - asked, asked))).toEqual([]);
      expect(resultsFrom(results, 0, asked).size).toBeGreaterThan(asked / 2);
      expect(refused(results, commands)).toBeLessThan(count / 2);
    });
});
