import { basename } from "node:path";
import { describe, expect, test } from "vitest";
import type { SceneFile } from "../src/index";
import { examine, type Results } from "./support/commands";
import { differences } from "./support/differences";
import { examples, filesOf, onlyFirst, startEngine } from "./support/engine";
import { nativeResults } from "./support/native";
import { randomFrom } from "./support/random";

const engine = await startEngine();

/** A scene cut off, or with bytes that are others. */
function damaged([scene, ...rest]: SceneFile[], seed: number): SceneFile[] {
  const next = randomFrom(seed);
  const bytes = scene.bytes.slice();
  if (seed % 3 === 0) return [{ ...scene, bytes: bytes.subarray(0, Math.floor(next() * bytes.length)) }, ...rest];
  for (let k = 0; k < seed % 7 + 1; ++k) bytes[Math.floor(next() * bytes.length)] = Math.floor(next() * 256);
  return [{ ...scene, bytes }, ...rest];
}

/** Only whether it opens, and what it says if not. */
function opened(files: SceneFile[]): Results {
  return examine(engine, files, "", () => []).results;
}

describe("damaged files are refused in the words of the native program, and the engine goes on", () => {
  const times = onlyFirst ? 6 : 40;
  for (const path of onlyFirst ? examples.slice(0, 2) : examples)
    test(basename(path), () => {
      let refused = 0;
      for (let seed = 1; seed <= times; ++seed) {
        const files = damaged(filesOf(path), seed), here = opened(files);
        expect(differences(here, nativeResults(files, "", [])), `seed ${seed}`).toEqual([]);
        refused += here.size;
      }
      expect(refused).toBeGreaterThan(0);
      expect(engine.open(filesOf(path)).objects().length).toBeGreaterThan(0);
    });
});

const text = (name: string, content: string): SceneFile => ({ name, bytes: new TextEncoder().encode(content) });
const gltf = (uri: string) => text("clip.gltf", `{"asset": {"version": "2.0"}, "buffers": [{"byteLength": 16, "uri": "${uri}"}],
"bufferViews": [{"buffer": 0, "byteLength": 8}, {"buffer": 0, "byteLength": 8, "byteOffset": 8}],
"accessors": [{"bufferView": 0, "componentType": 5126, "count": 2, "type": "SCALAR", "min": [0], "max": [1]},
{"bufferView": 1, "componentType": 5126, "count": 2, "type": "SCALAR"}],
"nodes": [{"name": "a"}], "animations": [{"samplers": [{"input": 0, "output": 1}],
"channels": [{"sampler": 0, "target": {"node": 0, "path": "translation"}}]}]}`);

describe("what a file may not be is said in the same words", () => {
  const cases: Record<string, SceneFile[]> = {
    "a file of no known kind": [text("notes.txt", "shopping list")],
    "an empty clip": [text("empty.bvh", "")],
    "a file by its content": [text("clip", "HIERARCHY nothing")],
    "a scene in a folder": [text("shots/a/clip.bvh", "HIERARCHY nothing")],
    "a buffer that is missing": [gltf("gone.bin")],
    "a buffer that is too short": [gltf("short.bin"), text("short.bin", "four")],
    "a buffer that leads out of the folder": [gltf("../other.bin")],
    "a buffer in a folder, with a curve of the wrong size": [gltf("in/deep.bin"), text("in/deep.bin", "0123456789abcdef")],
    "brackets without end": [text("deep.gltf", "{\"a\": " + "[".repeat(100_000))],
  };
  for (const [name, files] of Object.entries(cases))
    test(name, () => {
      const here = opened(files);
      expect([...here.keys()]).toEqual(["open fails"]);
      expect(differences(here, nativeResults(files, "", []))).toEqual([]);
    });
});
