// Live pages: while a key is dragged only a part of the picture is drawn again. It has to look as if all of it were.

import { writeFileSync } from "node:fs";
import type { Page } from "playwright-core";
import { expect, test } from "vitest";
import type { ViewState } from "../../src/model/state";
import { useBrowser, withoutWebGl } from "../support/browser";
import { temporaryFolder } from "../support/files";
import { describeLive, openLive } from "../support/live";
import { settle } from "../support/picture";

const browser = useBrowser();
const file = temporaryFolder();

const OBJECTS = 6;
const TIMES = [1, 13, 25, 37, 49];

/** Paths that wind around each other in depth; the fourth object hangs on the first. */
function braid(): string {
  const lines = ["//Maya ASCII 2022 scene", 'requires maya "2022";', "currentUnit -l centimeter -a degree -t film;"];
  for (let t = 0; t < OBJECTS; ++t) {
    lines.push(`createNode transform -n "strand${t}"${t === 3 ? ' -p "strand0"' : ""};`);
    const curve = (axis: string, value: (k: number) => number) => {
      lines.push(`createNode animCurveTL -n "strand${t}_${axis}";`,
        `  setAttr -s ${TIMES.length} ".ktv[0:${TIMES.length - 1}]" ${TIMES.map((time, k) => `${time} ${value(k).toFixed(3)}`).join(" ")};`,
        `connectAttr "strand${t}_${axis}.o" "strand${t}.t${axis}";`);
    };
    curve("x", (k) => 8 * k);
    curve("y", (k) => 5 * Math.sin(1.7 * k + t));
    curve("z", (k) => 5 * Math.cos(1.7 * k + 2 * t));
  }
  lines.push('createNode script -n "sceneConfigurationScriptNode";',
    `  setAttr ".b" -type "string" "playbackOptions -min 1 -max 49 -ast 1 -aet 49 ";`, '  setAttr ".st" 6;');
  return lines.join("\n") + "\n";
}

interface Compared {
  /** Pixels that the drag changed, and those that differ from a picture in which all is drawn anew. */
  changed: number;
  wrong: number;
}

/** Drags a key of a trail by a way, a step at a time, and compares the picture after each. */
const compare = (page: Page, trail: number, way: readonly number[]): Promise<Compared[]> => page.evaluate(async ([index, by]) => {
  const app = window.vantorelixViewer;
  const editing = app.editing!;
  const viewport = document.querySelector<HTMLElement>(".viewport")!;
  const [below, overlay] = [viewport.querySelector("canvas")!, viewport.querySelector<HTMLCanvasElement>(".overlay")!];
  const next = () => new Promise((resolve) => requestAnimationFrame(resolve));
  let colors: Uint8Array | null = null; // others when the engine has answered the drag before
  const still = async () => {
    while (viewport.dataset.drawn !== "still" || app.motion.trails[index].colors === colors) await next();
  };
  const sheet = () => new OffscreenCanvas(below.width, below.height).getContext("2d")!;
  const pixelsOf = (context: OffscreenCanvasRenderingContext2D) => new Uint32Array(context.getImageData(0, 0, below.width, below.height).data.buffer);
  /** With all of it drawn anew. */
  const whole = async () => {
    const made = app.picture();
    const [context, image] = [sheet(), await createImageBitmap(await made)];
    context.drawImage(image, 0, 0);
    return context;
  };
  app.store.set({ pictureTitle: false, pictureFrame: false, pictureLegend: false });
  const key = Math.floor(app.motion.trails[index].keyTimes.length / 2);
  const place = [...app.motion.trails[index].keyPoints.subarray(3 * key, 3 * key + 3)];
  const found: Compared[] = [];
  await editing.beginDrag({ what: "place", trail: index, frame: app.motion.trails[index].keyTimes[key] });
  for (const step of [0.3, 1, 0.6]) {
    let [shown, before, over] = [sheet(), sheet(), sheet()];
    let tries = 0;
    do {
      await still();
      before = await whole();
      (over = sheet()).drawImage(overlay, 0, 0);
      ({ colors } = app.motion.trails[index]);
      const way = step + tries++ / 4; // elsewhere than before
      await editing.drag(place.map((from, k) => from + way * by[k]));
      shown = sheet();
      shown.drawImage(before.canvas, 0, 0);
      // Until the engine's results come, a fifth of a second later, it is drawn in one part of a picture.
      await next();
    } while (viewport.dataset.drawn !== "still");
    const ratio = below.width / below.clientWidth;
    const patch = viewport.querySelector<HTMLCanvasElement>(".patch");
    if (viewport.querySelector(".without-webgl")) shown.drawImage(below, 0, 0);
    else if (patch) shown.drawImage(patch, patch.offsetLeft * ratio, patch.offsetTop * ratio);
    const [a, b, c] = [pixelsOf(before), pixelsOf(await whole()), pixelsOf(shown)];
    // What stands over the trails is drawn again every time.
    over.drawImage(overlay, 0, 0);
    const hidden = new Uint8Array(over.getImageData(0, 0, below.width, below.height).data.buffer);
    let [changed, wrong] = [0, 0];
    for (let i = 0; i < b.length; ++i) {
      if (hidden[4 * i + 3] > 0) continue;
      changed += Number(a[i] !== b[i]);
      wrong += Number(c[i] !== b[i]);
    }
    found.push({ changed, wrong });
  }
  await editing.endDrag(false);
  return found;
}, [trail, way] as const);

async function expectSame(
  scene: string, name: string,
  { object = "strand0", selected = [], ...state }: Partial<Omit<ViewState, "selected">> & { object?: string; selected?: number[] },
  before?: () => void,
): Promise<void> {
  const page = await openLive(browser, file(`${name}.html`), scene, { before });
  await page.evaluate(() => void (performance.now = () => 0)); // on a slow machine, too, nothing takes so long that less is drawn
  await page.evaluate(([wanted, selected]) =>
    window.vantorelixViewer.store.set({ ...wanted, showLabels: false, selected: new Set(selected) }), [state, selected] as const);
  await settle(page);
  const trail = await page.evaluate((name) => window.vantorelixViewer.motion.trails.findIndex((each) => each.name === name), object);
  for (const found of await compare(page, trail, [2, 3, -6])) {
    expect(found.changed).toBeGreaterThan(50);
    expect(found.wrong).toBe(0);
  }
}

describeLive("a picture of which a drag draws a part again", () => {
  const scene = file("braid.ma");
  writeFileSync(scene, braid());

  test("is that in which everything is drawn anew, in depth, with dots, keys and casings", () => expectSame(scene, "plain", {}));

  test("so with a trail that is selected beside others", () => expectSame(scene, "selected", { selected: [0] }));

  test("so with another that is selected", () => expectSame(scene, "other", { selected: [4] }));

  test("so with trails that are drawn over everything", () => expectSame(scene, "ghosts", { ghost: true }));

  test("so in a window of time", () =>
    expectSame(scene, "window", { window: true, windowBefore: 14, windowAfter: 10, frame: 23 }));

  test("so relative to another object", () => expectSame(scene, "relative", { relativeTo: 2 }));

  test("so without WebGL", () => expectSame(scene, "flat", {}, withoutWebGl));

  test("so in a window of time without WebGL", () =>
    expectSame(scene, "flat-window", { window: true, windowBefore: 14, windowAfter: 10, frame: 23 }, withoutWebGl));

  test("so with a bone to an object that stays", () => expectSame(scene, "figure", { frame: 25, onion: "frames", object: "strand3" }));
});
