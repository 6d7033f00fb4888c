// A live page that is worked with for long keeps within the memory that it has had after a while.

import { readdirSync, readFileSync, writeFileSync } from "node:fs";
import { basename } from "node:path";
import type { Page } from "playwright-core";
import { describe, expect, test } from "vitest";
import { useBrowser } from "../support/browser";
import { temporaryFolder } from "../support/files";
import { IN_FIREFOX } from "../support/launch";
import { drop, exact, filesOf, shows } from "../support/live";
import { example, run } from "../support/program";

const browser = useBrowser();
const file = temporaryFolder();
const examples = readdirSync(example(".")).filter((name) => /\.(bvh|ma|fbx|gltf)$/.test(name)).map((name) => example(name));

/** Only in a run of all tests, and where the system tells what a process takes. */
const LONG = process.env.VANTORELIX_PAGE_TESTS !== "first" && !IN_FIREFOX && Boolean(process.env.VANTORELIX_NATIVE);

/** Runs in the Worker before its own script: keeps the memory of the engine where it can be asked. */
const HOOK = "{ const made = WebAssembly.instantiate; WebAssembly.instantiate = async (...given) => {" +
  "const instance = await made(...given); self.engineMemory = instance.exports.memory; return instance; }; }\n";

/** The page that waits for a scene, with that in it. */
async function openWatched(path: string): Promise<Page> {
  run("page", "--out", path, "--no-open");
  writeFileSync(path, readFileSync(path, "utf8").replace('id="engine-worker">', (mark) => mark + HOOK));
  return browser.openFile(path);
}

/** Megabytes of the engine in the page's Worker. */
const engineMemory = (page: Page) => page.workers()[0].evaluate(() =>
  (globalThis as unknown as { engineMemory: WebAssembly.Memory }).engineMemory.buffer.byteLength / 1e6);

/** Megabytes that the page's own process takes, its Worker included, once what is not needed any more is gone. */
async function memoryOf(page: Page): Promise<number> {
  const session = await page.context().newCDPSession(page);
  await session.send("HeapProfiler.collectGarbage");
  await session.detach();
  await page.waitForTimeout(500);
  const all = await page.context().browser()!.newBrowserCDPSession();
  const { processInfo } = await all.send("SystemInfo.getProcessInfo");
  await all.detach();
  const sizes = processInfo.filter(({ type }) => type === "renderer")
    .map(({ id }) => Number(readFileSync(`/proc/${id}/statm`, "utf8").split(" ")[1]) * 4096 / 1e6);
  return Math.max(...sizes);
}

async function dropAll(page: Page, times: number): Promise<void> {
  for (let i = 0; i < times; ++i) {
    const scene = examples[i % examples.length];
    await drop(page, filesOf(scene));
    await shows(page, basename(scene));
    await exact(page);
  }
}

/** Moves the ball's keys about, a step each. */
async function edit(page: Page, times: number): Promise<void> {
  await drop(page, filesOf(example("bounce.ma")));
  await shows(page, "bounce.ma");
  await page.evaluate(async (count) => {
    const { editing, motion } = window.vantorelixViewer;
    const trail = motion.trails.findIndex(({ name }) => name === "ball");
    const keys = [22, 31, 38, 45];
    for (let i = 0; i < count; ++i) {
      await editing!.beginDrag({ what: "place", trail, frame: keys[i % keys.length] });
      await editing!.drag([i % 7, 1 + (i % 5), -(i % 3)]);
      await editing!.endDrag(true);
      if (i % 10 === 0) await new Promise((resolve) => setTimeout(resolve, 400));
    }
  }, times);
  await exact(page);
}

describe.skipIf(!LONG)("a page in which 20 scenes are dropped and 200 edits are made", () => {
  test("takes no more memory after the last of them than after the first few", async () => {
    const page = await openWatched(file("empty.html"));
    await dropAll(page, 8);
    await edit(page, 50);
    const [before, engineBefore] = [await memoryOf(page), await engineMemory(page)];
    await dropAll(page, 20);
    await edit(page, 200);
    const [after, engineAfter] = [await memoryOf(page), await engineMemory(page)];
    console.log(`${before.toFixed(1)} and ${after.toFixed(1)} MB, of the engine ${engineBefore.toFixed(2)} and ${engineAfter.toFixed(2)} MB`);
    expect(engineAfter).toBeLessThan(1.05 * engineBefore);
    expect(after).toBeLessThan(1.1 * before + 5);
  }, 300_000);
});
