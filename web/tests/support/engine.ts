// The engine and the scenes that the tests are about.

import { readFileSync, readdirSync } from "node:fs";
import { basename, dirname, join } from "node:path";
import { Engine, type Clock, type SceneFile } from "../../src/index";

function given(name: string): string {
  const value = process.env[name];
  if (value === undefined) throw new Error(`${name} is not set; run the tests with tools/web.py`);
  return value;
}

export const onlyFirst = given("VANTORELIX_WEB_TESTS") === "first";
export const native = given("VANTORELIX_NATIVE");
export const wasm = given("VANTORELIX_WASM");
const folders = given("VANTORELIX_SCENES").split(":");

const compiled = new WebAssembly.Module(readFileSync(wasm));

export const startEngine = (clock?: Clock) => Engine.start(compiled, clock);

const isScene = (path: string) => /\.(bvh|ma|fbx|gltf|glb)$/i.test(path);

function below(folder: string): string[] {
  return readdirSync(folder, { withFileTypes: true })
    .flatMap((entry) => {
      const path = join(folder, entry.name);
      return entry.isDirectory() ? below(path) : isScene(path) ? [path] : [];
    })
    .sort();
}

/** Every scene, or the first; of the examples one that has parents, keys and tangents. */
export const scenes = onlyFirst ? [join(folders[0], "arm.ma")] : folders.flatMap(below);
export const examples = below(folders[0]);

/** A scene with all that lies beside it and may be its buffers. */
export function filesOf(path: string): SceneFile[] {
  const beside = readdirSync(dirname(path)).filter((name) => name.endsWith(".bin"));
  return [basename(path), ...beside].map((name) => ({ name, bytes: readFileSync(join(dirname(path), name)) }));
}
