// How soon a live page is ready, without a scene and with one: npx vite-node bench/live.ts. Medians of five runs, each after the page
// of fixed work.

import { tmpdir } from "node:os";
import { join } from "node:path";
import { pathToFileURL } from "node:url";
import type { Browser } from "playwright-core";
import { example, run } from "../tests/support/program";
import { calibration, launch, median, RUNS } from "./steps";

/** Milliseconds after the page itself within which the engine has to be ready. */
const BAR = 300;

declare global {
  interface Window {
    readyAt?: number;
  }
}

/** Writes down when the page says that it is ready; runs before the page's own script. */
function noteReady(): void {
  const look = () => {
    if (document.documentElement?.dataset.ready === "true") window.readyAt ??= performance.now();
  };
  new MutationObserver(look).observe(document, { attributes: true, subtree: true, attributeFilter: ["data-ready"] });
}

/** Milliseconds to where the page's own document is read, and from there until it is ready. */
async function opened(browser: Browser, file: string): Promise<{ page: number; engine: number }> {
  const page = await browser.newPage({ viewport: { width: 1280, height: 800 } });
  await page.addInitScript(noteReady);
  await page.waitForTimeout(1500); // a new window of Chromium runs scripts of its own at first
  await page.goto(pathToFileURL(file).href);
  await page.waitForFunction(() => window.readyAt !== undefined);
  const times = await page.evaluate(() => {
    const [{ domInteractive }] = performance.getEntriesByType("navigation") as PerformanceNavigationTiming[];
    return { page: domInteractive, engine: window.readyAt! - domInteractive };
  });
  await page.close();
  return times;
}

async function measure(browser: Browser, name: string, file: string): Promise<void> {
  const runs: { calibration: number; page: number; engine: number }[] = [];
  for (let i = 0; i < RUNS; ++i) runs.push({ calibration: await calibration(browser), ...(await opened(browser, file)) });
  const of = (figure: "calibration" | "page" | "engine") => median(runs.map((each) => each[figure]));
  console.log(`${name.padEnd(24)} page ${of("page").toFixed(0)} ms, ready ${of("engine").toFixed(0)} ms after it, bar ${BAR} ms: ` +
    `${of("engine") <= BAR ? "holds" : "DOES NOT HOLD"}; ${(of("engine") / of("calibration")).toFixed(2)} of the calibration page ` +
    `(${of("calibration").toFixed(0)} ms)`);
}

const fileOf = (name: string) => join(tmpdir(), `vantorelix-live-${process.pid}-${name}.html`);
const browser = await launch();
run("page", "--out", fileOf("empty"), "--no-open");
await measure(browser, "without a scene", fileOf("empty"));
for (const scene of ["arm.ma", "walk.bvh"]) {
  run("view", example(scene), "--live", "--out", fileOf(scene), "--no-open");
  await measure(browser, `with ${scene}`, fileOf(scene));
}
await browser.close();
