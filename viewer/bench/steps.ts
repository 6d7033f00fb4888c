// What all measurements do.

import { tmpdir } from "node:os";
import { join } from "node:path";
import { pathToFileURL } from "node:url";
import { chromium, type Browser } from "playwright-core";
import { BROWSER_ARGUMENTS } from "../tests/support/browser_arguments";
import { writeCalibration } from "./calibration";

export const launch = (): Promise<Browser> =>
  chromium.launch({ executablePath: process.env.VANTORELIX_CHROMIUM ?? "/usr/bin/chromium", args: BROWSER_ARGUMENTS });

export const RUNS = Number(process.env.VANTORELIX_BENCH_RUNS ?? 5);

export const median = (values: readonly number[]) => [...values].sort((a, b) => a - b)[Math.floor(values.length / 2)];

/** What the fixed work of the calibration page takes, in ms. */
export async function calibration(browser: Browser): Promise<number> {
  const file = join(tmpdir(), `vantorelix-calibration-${process.pid}.html`);
  writeCalibration(file);
  const page = await browser.newPage();
  await page.goto(pathToFileURL(file).href);
  const times = await page.evaluate(() => [1, 2, 3].map(() => window.calibrate()));
  await page.close();
  return median(times);
}
