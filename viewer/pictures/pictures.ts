// The pictures of docs/viewer.md, of docs/live.md and of the README: npm run pictures -- FOLDER-OF-PAGES OUT [NAME...]
// FOLDER-OF-PAGES holds the pages that ./dev demo writes.

import { mkdirSync } from "node:fs";
import { join, resolve } from "node:path";
import { pathToFileURL } from "node:url";
import { chromium, type Page } from "playwright-core";
import { BROWSER_ARGUMENTS } from "../tests/support/browser_arguments";

interface Shot {
  page: string;
  /** The page's state. */
  hash: string;
  /** CSS selector of what is pictured; none: everything. */
  of?: string;
  dark?: boolean;
  size?: { width: number; height: number };
  before?(page: Page): Promise<unknown>;
}

/** Puts a key of the bouncing ball into the middle of the picture, and presses the pointer on it. */
async function pressKey(page: Page): Promise<void> {
  await page.evaluate(() => {
    const { store, motion } = window.vantorelixViewer;
    const { keyPoints, keyTimes } = motion.trails[0];
    const k = keyTimes.indexOf(38);
    const [x, y, z] = keyPoints.subarray(3 * k, 3 * k + 3);
    store.set({ camera: { ...store.state.camera, view: "front", azimuth: 0, elevation: 0, target: [x, y, z] } });
  });
  await page.waitForSelector(".viewport[data-drawn=still]");
  const { x, y, width, height } = (await page.locator(".viewport").boundingBox())!;
  await page.mouse.move(x + width / 2, y + height / 2);
  await page.mouse.down();
}

/** Pulls it up from there. */
async function pullKey(page: Page): Promise<void> {
  await pressKey(page);
  const { x, y, width, height } = (await page.locator(".viewport").boundingBox())!;
  await page.mouse.move(x + width / 2 + 20, y + height / 2 - 80, { steps: 5 });
  await page.waitForTimeout(500); // the trail that follows at once is there long before
}

/** Lets go of it, and waits for the engine. */
async function dragKey(page: Page): Promise<void> {
  await pullKey(page);
  await page.mouse.up();
  await page.waitForFunction(() => {
    const { undoes, working } = window.vantorelixViewer.editing!;
    return undoes !== null && working === null;
  });
}

const arm = (hash: string): Shot => ({ page: "arm.ma.html", of: ".viewport", hash });

const SHOTS: Record<string, Shot> = {
  "viewer": { page: "walk.bvh.html", hash: "frame=40" },
  "viewer-dark": { page: "arm.ma.html", hash: "mode=1&frame=20", dark: true },
  "viewer-objects": { page: "walk.bvh.html", of: "#objects", hash: "hide=3-6" },
  "viewer-settings": { page: "walk.bvh.html", of: "#settings", hash: "mode=1", size: { width: 1280, height: 1100 } },
  "viewer-time": { page: "arm.ma.html", of: ".time-panel", hash: "mode=1&frame=20&select=3-4&color=object" },
  "viewer-measures": { page: "walk.bvh.html", of: "dialog[open]", hash: "select=3.6",
    before: (page) => page.getByRole("button", { name: "Measures" }).click() },
  "viewer-toolbar": { page: "arm.ma.html", of: ".toolbar", hash: "" },
  "viewer-bones": { page: "walk.bvh.html", of: ".viewport", hash: "frame=40&onion=frames&onionEvery=8" },
  "viewer-window": { page: "walk.bvh.html", of: ".viewport", hash: "frame=60&window=1" },
  "viewer-compare": { page: "robot-compared.html", hash: "frame=20" },
  "viewer-standard": arm("mode=0&frame=20"),
  "viewer-spacing": arm("mode=1&frame=20"),
  "viewer-flow": arm("mode=2&frame=20"),
  "viewer-beats": arm("mode=3&frame=20"),
  "viewer-relative": { page: "walk.bvh.html", of: ".viewport", hash: "mode=1&relative=0&select=9&frame=40" },
  "viewer-tooltip": {
    ...arm("mode=1&frame=20"),
    before: (page) => page.evaluate(() => window.vantorelixViewer.store.set({ hover: { trail: 0, sample: 10 } })),
  },
  "live-before": { page: "bounce-live.html", hash: "select=0", of: ".viewport", size: { width: 1000, height: 820 }, before: pressKey },
  "live-pulled": { page: "bounce-live.html", hash: "select=0", of: ".viewport", size: { width: 1000, height: 820 }, before: pullKey },
  "live-compared": { page: "bounce-live.html", hash: "select=0&compare=1", of: ".viewport", size: { width: 1000, height: 820 }, before: dragKey },
  "live": { page: "bounce-live.html", hash: "select=0&compare=1", before: async (page) => {
    await dragKey(page);
    await page.keyboard.press("a");
  } },
  "viewer-help": { page: "arm.ma.html", of: "dialog[open]", hash: "", before: (page) => page.keyboard.press("Shift+?") },
};

async function main(pages: string, out: string, names: string[]): Promise<void> {
  mkdirSync(out, { recursive: true });
  const executablePath = process.env.VANTORELIX_CHROMIUM ?? "/usr/bin/chromium";
  const browser = await chromium.launch({ executablePath, args: BROWSER_ARGUMENTS });
  for (const name of names.length > 0 ? names : Object.keys(SHOTS)) {
    const shot = SHOTS[name];
    if (!shot) throw new Error(`there is no picture ${name}; there are ${Object.keys(SHOTS).join(", ")}`);
    const context = await browser.newContext({
      viewport: shot.size ?? { width: 1280, height: 800 }, colorScheme: shot.dark ? "dark" : "light",
    });
    const page = await context.newPage();
    await page.goto(`${pathToFileURL(resolve(pages, shot.page)).href}#${shot.hash}`);
    await page.waitForSelector("html[data-ready=true]", { state: "attached" });
    await shot.before?.(page);
    await page.waitForSelector(".viewport[data-drawn=still]");
    const path = join(out, `${name}.png`);
    await (shot.of ? page.locator(shot.of).first().screenshot({ path }) : page.screenshot({ path }));
    console.log(path);
    await context.close();
  }
  await browser.close();
}

const [pages, out, ...names] = process.argv.slice(2);
if (!pages || !out) throw new Error("usage: npm run pictures -- FOLDER-OF-PAGES OUT [NAME...]");
await main(pages, out, names);
