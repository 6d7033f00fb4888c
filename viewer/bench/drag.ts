// How quickly a key is dragged in a large scene where software draws: npx vite-node bench/drag.ts [PROGRAM...]. Medians of five
// runs, each after the page of fixed work; with other builds of the program, in turns with them. The processor time of all the
// browser's processes for a picture tells more than pictures a second where other programs run meanwhile.

import { writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { pathToFileURL } from "node:url";
import type { Browser, Page } from "playwright-core";
import { run } from "../tests/support/program";
import { calibration, launch, median, RUNS } from "./steps";

/** Pictures a second that follow the pointer. */
const BAR = 30;
const [OBJECTS, FRAMES, KEYS] = [1000, 1000, 5];
/** Milliseconds. */
const DRAGGED = 3000;

/** Objects in rows, each on a path of a few keys that leads away. */
function sceneText(): string {
  const lines = ["//Maya ASCII 2022 scene", 'requires maya "2022";', "currentUnit -l centimeter -a degree -t film;"];
  const curve = (t: number, axis: string, value: (part: number) => number) => {
    const keys = Array.from({ length: KEYS }, (_, k) => `${1 + (k * (FRAMES - 1)) / (KEYS - 1)} ${value(k).toFixed(3)}`);
    lines.push(`createNode animCurveTL -n "object${t}_translate${axis}";`, `  setAttr -s ${KEYS} ".ktv[0:${KEYS - 1}]" ${keys.join(" ")};`,
      `connectAttr "object${t}_translate${axis}.o" "object${t}.t${axis.toLowerCase()}";`);
  };
  for (let t = 0; t < OBJECTS; ++t) {
    lines.push(`createNode transform -n "object${t}";`);
    curve(t, "X", (k) => (t % 32) * 20 + 6 * Math.sin(k * 2 + t));
    curve(t, "Y", (k) => 10 + 8 * Math.cos(k * 3 + t));
    curve(t, "Z", (k) => Math.floor(t / 32) * 20 + 4 * k);
  }
  lines.push('createNode script -n "sceneConfigurationScriptNode";',
    `  setAttr ".b" -type "string" "playbackOptions -min 1 -max ${FRAMES} -ast 1 -aet ${FRAMES} ";`, '  setAttr ".st" 6;');
  return lines.join("\n") + "\n";
}

interface Dragging {
  /** A second. */
  pictures: number;
  moves: number;
  shown: number;
}

interface Run extends Omit<Dragging, "shown"> {
  /** Milliseconds of processor time for a picture. */
  work: number;
  calibration: number;
}

/** Seconds of processor time that the browser's processes took. */
async function spent(browser: Browser): Promise<number> {
  const session = await browser.newBrowserCDPSession();
  const { processInfo } = await session.send("SystemInfo.getProcessInfo");
  await session.detach();
  return processInfo.reduce((sum, { cpuTime }) => sum + cpuTime, 0);
}

/** Drags a key for a while, with one move of the pointer for each picture: pictures, and moves that were followed, a second. */
const dragging = (page: Page, milliseconds: number): Promise<Dragging> => page.evaluate(async (time) => {
  const { motion, store, editing } = window.vantorelixViewer;
  const trail = Math.floor(motion.trails.length / 2) + 16;
  const { keyTimes, keyPoints } = motion.trails[trail];
  await editing!.beginDrag({ what: "place", trail, frame: keyTimes[2] });
  const place = [...keyPoints.subarray(6, 9)];
  const next = () => new Promise((resolve) => requestAnimationFrame(resolve));
  let [pictures, moves, known] = [0, 0, motion.trails];
  const start = performance.now();
  while (performance.now() < start + time) {
    const turn = (performance.now() - start) / 200;
    void editing!.drag([place[0] + 5 * Math.cos(turn), place[1] + 5 * Math.sin(turn), place[2]]);
    await next();
    ++pictures;
    if (motion.trails !== known) ++moves;
    known = motion.trails;
  }
  const seconds = (performance.now() - start) / 1000;
  await editing!.endDrag(true);
  store.set({ hover: null });
  return { pictures: pictures / seconds, moves: moves / seconds, shown: pictures };
}, milliseconds);

async function dragged(browser: Browser, file: string): Promise<Run> {
  const fixed = await calibration(browser);
  const page = await browser.newPage({ viewport: { width: 1280, height: 800 } });
  await page.waitForTimeout(1500); // a new window of Chromium runs scripts of its own at first
  await page.goto(pathToFileURL(file).href);
  await page.waitForSelector("html[data-ready=true]", { state: "attached", timeout: 120_000 });
  await page.waitForSelector(".viewport[data-drawn=still]");
  await page.waitForTimeout(1000);
  const before = await spent(browser);
  const { pictures, moves, shown } = await dragging(page, DRAGGED);
  const work = (1000 * (await spent(browser) - before)) / shown;
  await page.close();
  return { calibration: fixed, pictures, moves, work };
}

const nameOf = (ending: string) => join(tmpdir(), `vantorelix-drag-${process.pid}${ending}`);
writeFileSync(nameOf(".ma"), sceneText());
const programs = [process.env.VANTORELIX_PROGRAM, ...process.argv.slice(2)];
const files = programs.map((program, k) => {
  if (program) process.env.VANTORELIX_PROGRAM = program;
  run("view", nameOf(".ma"), "--live", "--samples-per-frame", "1", "--out", nameOf(`-${k}.html`), "--no-open");
  return nameOf(`-${k}.html`);
});
const browser = await launch();
const runs: Run[][] = files.map(() => []);
for (let i = 0; i < RUNS; ++i) for (const [k, file] of files.entries()) runs[k].push(await dragged(browser, file));
await browser.close();
runs.forEach((all, k) => {
  const of = (name: keyof Run) => median(all.map((each) => each[name]));
  const holds = Math.min(of("pictures"), of("moves")) >= BAR;
  console.log(`${programs[k] ?? "the program"}: a key dragged in ${OBJECTS} x ${FRAMES}: ${of("pictures").toFixed(1)} pictures and ` +
    `${of("moves").toFixed(1)} moves a second, bar ${BAR}: ${holds ? "holds" : "DOES NOT HOLD"}; ${of("work").toFixed(0)} ms of processor ` +
    `time a picture; calibration page ${of("calibration").toFixed(0)} ms`);
});
