// How quickly large pages answer where software draws: npm run bench. Medians of five runs. Each run begins with a page
// of fixed work, so that its figure tells what the machine did besides.

import { pathToFileURL } from "node:url";
import type { Browser } from "playwright-core";
import { hovering, noteFirstPicture, opening, playing, turning } from "./measures";
import { writePages, type BenchPage } from "./pages";
import { calibration, launch, median, RUNS } from "./steps";

type Figures = Record<"calibration" | "open" | "turn" | "hover" | "play", number>;

async function run(browser: Browser, { file }: BenchPage): Promise<Figures> {
  const fixed = await calibration(browser);
  const page = await browser.newPage({ viewport: { width: 1280, height: 800 } });
  await page.addInitScript(noteFirstPicture);
  await page.waitForTimeout(1500); // a new window of Chromium runs scripts of its own at first
  const open = await opening(page, pathToFileURL(file).href);
  await page.waitForSelector(".viewport[data-drawn=still]");
  await page.waitForTimeout(1000);
  const turn = median(await turning(page));
  await page.waitForSelector(".viewport[data-drawn=still]");
  const hover = median(await hovering(page));
  const play = await playing(page);
  await page.close();
  return { calibration: fixed, open, turn, hover, play };
}

async function measure(browser: Browser, page: BenchPage): Promise<Figures> {
  const runs: Figures[] = [];
  for (let i = 0; i < RUNS; ++i) runs.push(await run(browser, page));
  const of = (name: keyof Figures) => median(runs.map((figures) => figures[name]));
  return { calibration: of("calibration"), open: of("open"), turn: of("turn"), hover: of("hover"), play: of("play") };
}

function print(page: BenchPage, figures: Figures): void {
  const line = (name: string, value: number, bar: number, unit: string, holds: boolean) =>
    console.log(`  ${name.padEnd(32)}${value.toFixed(1).padStart(8)} ${unit.padEnd(3)}  bar ${String(bar).padStart(4)}  ${holds ? "holds" : "DOES NOT HOLD"}  ` +
      `${(value / figures.calibration).toFixed(2)} of the calibration page`);
  console.log(`${page.name} samples, ${page.bytesPerSample.toFixed(1)} bytes a sample; calibration page ${figures.calibration.toFixed(0)} ms`);
  line("open", figures.open, page.openBar, "ms", figures.open <= page.openBar);
  line("a frame while turning", figures.turn, 33.4, "ms", figures.turn <= 33.4); // two pictures of a screen of 60 Hz
  line("an answer to the pointer", figures.hover, 16, "ms", figures.hover <= 16);
  line("frames shown while playing", 100 * figures.play, 95, "%", figures.play >= 0.95);
}

const wanted = process.argv.slice(2);
const browser = await launch();
for (const page of writePages().filter(({ name }) => wanted.length === 0 || wanted.some((each) => name.startsWith(each))))
  print(page, await measure(browser, page));
await browser.close();
