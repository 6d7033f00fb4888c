// How long a page of a thousand trails of a thousand samples takes to open, and a frame while it is turned, where
// software draws: npm run bench. The first column is the same for a page with one trail, so that the two can be told
// apart from what the machine does besides.

import { statSync } from "node:fs";
import { pathToFileURL } from "node:url";
import { chromium, type Browser, type Page } from "playwright-core";
import type { Vec3 } from "../src/source/trail";
import { BROWSER_ARGUMENTS } from "../tests/support/browser_arguments";
import { writePage } from "../tests/support/page";

const trail = (t: number) => ({
  name: `object${t}`,
  keyTimes: [1, 250, 500, 750, 1000],
  points: Array.from({ length: 1000 }, (_, i): Vec3 => [
    (t % 32) * 5 + 10 * Math.sin(i / 50 + t), 5 + 5 * Math.cos(i / 30 + t), Math.floor(t / 32) * 5 + i / 200,
  ]),
});

const quantile = (values: readonly number[], part: number) =>
  [...values].sort((a, b) => a - b)[Math.min(values.length - 1, Math.floor(part * values.length))];

/** Milliseconds from the start of loading to the first picture. */
async function opening(page: Page, url: string): Promise<number> {
  await page.goto("about:blank");
  await page.goto(url);
  await page.waitForSelector("html[data-ready=true]", { state: "attached" });
  return page.evaluate(() => new Promise<number>((done) => requestAnimationFrame(() => setTimeout(() => done(performance.now())))));
}

/** Milliseconds of each of many frames while the left button drags. */
async function turning(page: Page): Promise<number[]> {
  return page.evaluate(async () => {
    const canvas = document.querySelector(".viewport canvas")!;
    const box = canvas.getBoundingClientRect();
    const send = (type: string, x: number) =>
      canvas.dispatchEvent(new PointerEvent(type, {
        clientX: box.x + x, clientY: box.y + 200, button: 0, buttons: type === "pointerup" ? 0 : 1, pointerId: 1, bubbles: true,
      }));
    const frames: number[] = [];
    send("pointerdown", 100);
    let last = performance.now();
    for (let i = 0; i < 60; ++i) {
      send("pointermove", 100 + 5 * i);
      await new Promise(requestAnimationFrame);
      frames.push(performance.now() - last);
      last = performance.now();
    }
    send("pointerup", 400);
    return frames;
  });
}

async function measure(browser: Browser, count: number): Promise<number[]> {
  const file = writePage({ range: [1, 1000], trails: Array.from({ length: count }, (_, t) => trail(t)) });
  const page = await browser.newPage({ viewport: { width: 1280, height: 800 } });
  const openings: number[] = [];
  const frames: number[] = [];
  for (let i = 0; i < 5; ++i) {
    openings.push(await opening(page, pathToFileURL(file).href));
    await page.waitForTimeout(2000);
    frames.push(...(await turning(page)));
  }
  await page.close();
  return [quantile(openings, 0.5), Math.max(...openings), quantile(frames, 0.5), quantile(frames, 0.95),
    statSync(file).size / (1000 * count)];
}

const browser = await chromium.launch({ executablePath: process.env.VANTORELIX_CHROMIUM ?? "/usr/bin/chromium", args: BROWSER_ARGUMENTS });
const [one, many] = [await measure(browser, 1), await measure(browser, 1000)];
await browser.close();
console.log("                                    1 trail   1000 trails");
["open, median ms", "open, slowest ms", "frame while turning, median ms", "frame while turning, 95th of 100, ms",
  "bytes a sample, page included"]
  .forEach((name, i) => console.log(name.padEnd(36), one[i].toFixed(1).padStart(6), many[i].toFixed(1).padStart(12)));
