import { readFileSync } from "node:fs";
import { join } from "node:path";
import { Worker } from "node:worker_threads";
import { build } from "vite";
import { expect, test } from "vitest";
import { examples, filesOf, startEngine, wasm } from "./support/engine";

/** The engine's wrapper as one script that imports nothing. */
async function bundled(): Promise<string> {
  const entry = join(__dirname, "..", "src", "index.ts");
  const built = await build({
    configFile: false, logLevel: "silent",
    build: { lib: { entry, formats: ["iife"], name: "vantorelix" }, write: false, target: "es2022", minify: false },
  });
  const [{ output }] = built as { output: { code: string }[] }[];
  expect(output.length).toBe(1);
  return output[0].code;
}

const IN_THE_WORKER = `
  const { parentPort, workerData } = require("node:worker_threads");
  globalThis.require = globalThis.process = undefined;
  WebAssembly.compile(workerData.wasm).then(vantorelix.Engine.start).then((engine) => {
    const scene = engine.open(workerData.files), trails = scene.trails({ patterns: ["wrist"] });
    parentPort.postMessage(trails.arrays(0).points.slice());
  });`;

test("the engine runs in a Worker, without anything of the page or of Node.js", async () => {
  const files = filesOf(examples.find((path) => path.endsWith("arm.ma"))!);
  const worker = new Worker((await bundled()) + IN_THE_WORKER, { eval: true, workerData: { files, wasm: readFileSync(wasm) } });
  const points = await new Promise((resolve, reject) => worker.once("message", resolve).once("error", reject));
  await worker.terminate();
  const scene = (await startEngine()).open(files);
  expect(points).toEqual(scene.trails({ patterns: ["wrist"] }).arrays(0).points.slice());
});
