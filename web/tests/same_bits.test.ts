import { basename } from "node:path";
import { describe, expect, test } from "vitest";
import { examine, type Results } from "./support/commands";
import { differences } from "./support/differences";
import { filesOf, onlyFirst, scenes, startEngine } from "./support/engine";
import { nativeResults } from "./support/native";

const engine = await startEngine();

function takesOf(path: string): string[] {
  try {
    const scene = engine.open(filesOf(path));
    const takes = scene.describe().takes.map(({ name }) => name);
    scene.close();
    return takes.length > 1 ? takes : [""];
  } catch {
    return [""];  // what is refused is compared, too
  }
}

const arrays = (results: Results) => [...results.keys()].filter((name) => / trail \d+ /.test(name)).length;

describe("every array has the bits that the native engine gives it, before and after edits", () => {
  for (const path of scenes)
    for (const take of takesOf(path))
      test(`${basename(path)} ${take}`, () => {
        const { results, commands } = examine(engine, filesOf(path), take);
        const native = nativeResults(filesOf(path), take, commands);
        expect(differences(results, native)).toEqual([]);
        expect(results.size).toBe(native.size);
        if (onlyFirst) expect(arrays(results)).toBeGreaterThan(50);
      });
});
