// What a sample costs here and natively, in one run: medians of five, in turns; and how long the engine takes to be ready.

import { readFileSync } from "node:fs";
import { basename } from "node:path";
import { examine, type Command } from "../tests/support/commands";
import { filesOf, scenes, startEngine, wasm } from "../tests/support/engine";
import { nativeResults } from "../tests/support/native";
import { Engine } from "../src/index";

// What is compiled while it runs is slow at first, so the first turns do not count.
const WARMING = 15, TURNS = 5, SAMPLES_PER_FRAME = 8, FEWEST = 20_000;

const median = (values: ArrayLike<number>) => Array.from(values).sort((a, b) => a - b)[values.length >> 1];
const seconds = (bytes: Uint8Array) => median(new Float64Array(Uint8Array.from(bytes).buffer).subarray(WARMING));

async function ready(): Promise<number> {
  const times: number[] = [];
  for (let turn = 0; turn < TURNS; ++turn) {
    const bytes = readFileSync(wasm), begin = performance.now();
    await Engine.start(await WebAssembly.compile(bytes));
    times.push(performance.now() - begin);
  }
  return median(times);
}

function ratio(engine: Engine, path: string) {
  const files = filesOf(path), scene = engine.open(files);
  const [first, last] = scene.describe().range;
  const samples = scene.objects().length * ((last - first) * SAMPLES_PER_FRAME + 1);
  scene.close();
  if (!(samples >= FEWEST)) return undefined;
  const command: Command = ["time", SAMPLES_PER_FRAME, WARMING + TURNS];
  const here = seconds(examine(engine, files, "", () => [command]).results.get("0 time")!);
  const there = seconds(nativeResults(files, "", [command]).get("0 time")!);
  console.log(`${basename(path).padEnd(44)} ${(here / samples * 1e9).toFixed(0).padStart(6)} ns here ` +
    `${(there / samples * 1e9).toFixed(0).padStart(6)} ns natively   ${(here / there).toFixed(2)} times`);
  return here / there;
}

console.log(`ready after ${(await ready()).toFixed(0)} ms (compiled and started, median of ${TURNS})`);
const engine = await startEngine();
const ratios: number[] = [];
for (const path of scenes) {
  try {
    const found = ratio(engine, path);
    if (found !== undefined) ratios.push(found);
  } catch (error) {
    console.log(`${basename(path)}: ${error}`);
  }
}
console.log(`a sample costs ${median(ratios).toFixed(2)} times as much here (median of ${ratios.length} scenes)`);
