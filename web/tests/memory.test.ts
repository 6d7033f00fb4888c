import { join } from "node:path";
import { describe, expect, test } from "vitest";
import { EngineError, FORMS, type Scene } from "../src/index";
import { examine } from "./support/commands";
import { examples, filesOf, startEngine } from "./support/engine";
import { randomEdits } from "./support/random_edits";

const EDITS = 10;
/** Bytes. Where slices end depends on the time, and with it how the pieces of memory lie: by a page of WebAssembly or two. */
const CHANCE = 2 * 65536;

function write(scene: Scene) {
  for (const form of FORMS)
    try {
      scene.written(form);
    } catch (error) {
      if (!(error instanceof EngineError && error.kind === "refused")) throw error;
    }
}

describe("20 openings with the same 10 edits, undone, and written in every form, take as much memory as 5, but for chance", () => {
  for (const name of ["walk.bvh", "crane.gltf", "bounce.ma"])
    test(name, async () => {
      const engine = await startEngine(), sizes: number[] = [];
      const files = filesOf(examples.find((path) => path.endsWith(join("/", name)))!);
      for (let opening = 1; opening <= 20; ++opening) {
        examine(engine, files, "", function* (scene) {
          yield* randomEdits(scene, EDITS, 3);
          write(scene);
        });
        sizes.push(engine.memory.size);
      }
      expect(sizes[19] - sizes[4]).toBeLessThanOrEqual(CHANCE);
    });
});
