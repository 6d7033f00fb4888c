// Scenes seen through their cameras. Where things are on the film is worked out here from the native engine's matrices and
// from the numbers of the scene below.

import { writeFileSync } from "node:fs";
import type { Page } from "playwright-core";
import { expect, test } from "vitest";
import { objectColor } from "../../src/model/colors";
import type { Vec3 } from "../../src/source/trail";
import { useBrowser } from "../support/browser";
import { temporaryFolder } from "../support/files";
import { describeLive, nativeMatrices, openLive, pull, shownBits } from "../support/live";
import { along, distanceTo, Picture, type Point } from "../support/picture";
import { Z_UP } from "../support/z_up";

const browser = useBrowser();
const file = temporaryFolder();

const curve = (name: string, to: string, keys: string, type = "animCurveTL") =>
  `createNode ${type} -n "${name}";\n\tsetAttr ".tan" 2;\n\tsetAttr -s 3 ".ktv[0:2]" ${keys} ;\nconnectAttr "${name}.o" "${to}";\n`;

/** A camera that travels, turns and zooms, its film shifted; a ball, and a moon that hangs on it, which turns. */
const SCENE = `//Maya ASCII 2020 scene
requires maya "2020";
currentUnit -l centimeter -a degree -t film;
createNode transform -n "ball";
createNode transform -n "moon" -p "ball";
	setAttr ".t" -type "double3" 5 1 0 ;
createNode transform -n "shot";
	setAttr ".t" -type "double3" 0 2 40 ;
createNode camera -n "shotShape" -p "shot";
	setAttr ".cap" -type "double2" 1.5 1 ;
	setAttr ".hfo" 0.1;
createNode script -n "sceneConfigurationScriptNode";
	setAttr ".b" -type "string" "playbackOptions -min 1 -max 25 -ast 1 -aet 25 ";
	setAttr ".st" 6;
${curve("bx", "ball.tx", "1 -8 13 0 25 8")}${curve("by", "ball.ty", "1 0 13 6 25 0")}${curve("br", "ball.ry", "1 0 13 40 25 170", "animCurveTA")}
${curve("mx", "moon.tx", "1 5 13 5 25 5")}
${curve("sx", "shot.tx", "1 -4 13 0 25 6")}${curve("sr", "shot.ry", "1 -5 13 0 25 8", "animCurveTA")}
${curve("fl", "shotShape.fl", "1 35 13 35 25 50", "animCurveTU")}`;

const [APERTURE, SHIFT, ASPECT] = [1.5 * 25.4, 0.1 * 25.4, 1.5];
const focalLength = (frame: number) => (frame < 13 ? 35 : 35 + (15 * (frame - 13)) / 12);
const FRAMES = Array.from({ length: 49 }, (_, i) => 1 + i / 2);

const dot = (a: readonly number[], b: readonly number[]) => a[0] * b[0] + a[1] * b[1] + a[2] * b[2];

/** A place as an object with this matrix, which has no size of its own, sees it. */
const seenBy = (m: number[], p: Vec3): Vec3 => {
  const d = p.map((c, k) => c - m[12 + k]);
  return [dot(d, m.slice(0, 3)), dot(d, m.slice(4, 7)), dot(d, m.slice(8, 11))];
};

/** Where that is on the film: -1 to 1 to the right, and up by the same measure as across. */
function onFilm([x, y, z]: Vec3, frame: number): Point {
  const scale = (2 * focalLength(frame)) / APERTURE / -z;
  return { x: x * scale - (2 * SHIFT) / APERTURE, y: y * scale };
}

const place = (p: Point, width: number, height: number): Point => {
  const half = (0.88 * (width / height > ASPECT ? height * ASPECT : width)) / 2;
  return { x: width / 2 + half * p.x, y: height / 2 - half * p.y };
};

const triples = (numbers: readonly number[]): Vec3[] =>
  Array.from({ length: numbers.length / 3 }, (_, i) => numbers.slice(3 * i, 3 * i + 3) as unknown as Vec3);

async function worldOf(page: Page, source: string): Promise<Vec3[]> {
  return triples((await shownBits(page))[source].points.split(",").map(Number));
}

/** As positions are shown, of an object by its name. */
async function shownOf(page: Page, name: string): Promise<Vec3[]> {
  return triples(await page.evaluate((wanted) => {
    const { motion } = window.vantorelixViewer;
    return [...motion.shownPoints(motion.trails.findIndex((trail) => trail.name === wanted))];
  }, name));
}

const indexOf = (page: Page, name: string) =>
  page.evaluate((wanted) => window.vantorelixViewer.motion.trails.findIndex((trail) => trail.name === wanted), name);

/** What an object is drawn in where each has its own colour. */
async function colorOf(page: Page, name: string): Promise<Vec3> {
  const text = objectColor(await indexOf(page, name));
  return [1, 3, 5].map((k) => parseInt(text.slice(k, k + 2), 16)) as unknown as Vec3;
}

const loaded = (page: Page) => expect.poll(() => page.evaluate(() => window.vantorelixViewer.store.state.seen !== null)).toBe(true);

const off = (a: readonly Vec3[], b: readonly Vec3[]) => Math.max(...a.map((p, i) => Math.hypot(...p.map((c, k) => c - b[i][k]))));

async function open(hash = ""): Promise<Page> {
  writeFileSync(file("shot.ma"), SCENE);
  return openLive(browser, file("shot.html"), file("shot.ma"), { hash });
}

const BARE = "keys=0&labels=0&dots=0&theme=light&bones=0&color=object&width=2";

/** The share of a line in the picture beside which there is the colour of the selected object. */
async function shareDrawn(page: Page, line: (width: number, height: number) => Point[], color: Vec3): Promise<number> {
  const picture = await Picture.ofViewport(page);
  const ink = picture.pixelsOf(color, 40);
  const points = along(line(picture.width, picture.height));
  expect(points.length).toBeGreaterThan(100);
  return points.filter((p) => distanceTo(ink, p) <= 2).length / points.length;
}

describeLive("a scene that is seen through its camera", () => {
  test("has each arc where it lies on the film, frame by frame, however the camera moves and zooms", async () => {
    const page = await open(`${BARE}&through=0&space=screen`);
    await page.evaluate(() => {
      const { motion, store } = window.vantorelixViewer;
      store.set({ solo: new Set([motion.trails.findIndex(({ name }) => name === "ball")]) });
    });
    await loaded(page);
    const cameras = nativeMatrices(file("shot.ma"), "|shot", FRAMES);
    const ball = await worldOf(page, "|ball");
    const film = ball.map((p, i) => onFilm(seenBy(cameras[i], p), FRAMES[i]));
    expect(await shareDrawn(page, (width, height) => film.map((p) => place(p, width, height)), await colorOf(page, "ball"))).toBeGreaterThan(0.97);
  });

  test("has a graph of spacing in pixels of a picture 1920 across", async () => {
    const page = await open("through=0&graph=screen&frame=8");
    const ball = await indexOf(page, "ball");
    await page.evaluate((index) => window.vantorelixViewer.store.set({ selected: new Set([index]) }), ball);
    const cameras = nativeMatrices(file("shot.ma"), "|shot", FRAMES);
    const pixels = (await worldOf(page, "|ball")).map((p, i) => onFilm(seenBy(cameras[i], p), FRAMES[i])).map(({ x, y }) => ({ x: 960 * x, y: 960 * y }));
    const at = FRAMES.indexOf(8);
    const step = (i: number) => Math.hypot(pixels[i + 1].x - pixels[i].x, pixels[i + 1].y - pixels[i].y) / 0.5;
    const wanted = (step(at - 1) + step(at)) / 2;
    expect(wanted).toBeGreaterThan(5);
    await expect.poll(() => page.getByRole("region", { name: "On screen graph" }).locator(".graph-value").textContent())
      .toBe(`Frame 8: ${Number(wanted.toPrecision(4))} pixels per frame, of 1920 across`);
  });

  test("is chosen from a list, in the world too, and any other view leaves the camera", async () => {
    const page = await open(`${BARE}&frame=20`);
    await page.getByLabel("Camera").selectOption("shot");
    await loaded(page);
    await expect.poll(() => page.evaluate(() => location.hash)).toContain("through=0");
    await page.evaluate(() => {
      const { motion, store } = window.vantorelixViewer;
      store.set({ selected: new Set([motion.trails.findIndex(({ name }) => name === "ball")]) });
    });
    const [camera] = nativeMatrices(file("shot.ma"), "|shot", [20]);
    const film = (await worldOf(page, "|ball")).map((p) => onFilm(seenBy(camera, p), 20));
    expect(await shareDrawn(page, (width, height) => film.map((p) => place(p, width, height)), await colorOf(page, "ball"))).toBeGreaterThan(0.97);
    await page.keyboard.press("2");
    await expect.poll(() => page.evaluate(() => window.vantorelixViewer.store.state.through)).toBe(null);
  });
});

describeLive("positions", () => {
  test("relative to an object as it turns are those in its own axes, and the camera's in its own", async () => {
    const page = await open();
    const ball = await indexOf(page, "ball");
    await page.evaluate((index) => window.vantorelixViewer.store.set({ relativeTo: index, space: "turning" }), ball);
    await loaded(page);
    const moon = await shownOf(page, "moon");
    expect(off(moon, moon.map(() => [5, 1, 0]))).toBeLessThan(1e-9);
    expect(await page.locator(".reference").textContent()).toContain("relative to ball, as it turns");
    await page.evaluate(() => window.vantorelixViewer.store.set({ relativeTo: null, space: "camera" }));
    await expect.poll(() => page.evaluate(() => window.vantorelixViewer.store.state.seen?.choice)).toBe("camera camera 0");
    const cameras = nativeMatrices(file("shot.ma"), "|shot", FRAMES);
    const wanted = (await worldOf(page, "|ball")).map((p, i) => seenBy(cameras[i], p));
    expect(off(await shownOf(page, "ball"), wanted)).toBeLessThan(1e-9);
  });

  test("relative to the camera follow when the camera is edited", async () => {
    const page = await open("space=camera");
    await loaded(page);
    const before = await shownOf(page, "ball");
    await pull(page, "|shot", 13, [9, 2, 40]);
    await expect.poll(async () => off(await shownOf(page, "ball"), before), { timeout: 10_000 }).toBeGreaterThan(1);
  });
});

/** As a camera sees it that looks along the x axis of its object. */
function seenAlongX(m: number[], p: Vec3): Vec3 {
  const [ahead, up, right] = seenBy(m, p);
  return [right, up, -ahead];
}

const onWholeFilm = ([x, y, z]: Vec3): Point => ({ x: (x * 2 * 35) / APERTURE / -z, y: (y * 2 * 35) / APERTURE / -z });

describeLive("a scene above z that is seen through its camera", () => {
  const openZ = async (hash: string) => {
    writeFileSync(file("z.fbx"), Z_UP);
    const page = await openLive(browser, file("z.html"), file("z.fbx"), { hash });
    expect(await page.evaluate(() => window.vantorelixViewer.scene.upAxis)).toBe("z");
    await page.evaluate(() => {
      const { motion, store } = window.vantorelixViewer;
      store.set({ solo: new Set([motion.trails.findIndex(({ name }) => name === "ball")]) });
    });
    await loaded(page);
    return page;
  };
  const drawn = async (page: Page, film: readonly Point[]) =>
    shareDrawn(page, (width, height) => film.map((p) => place(p, width, height)), await colorOf(page, "ball"));

  test("has its trails as they lie on the film at the current frame", async () => {
    const page = await openZ(`${BARE}&through=0&frame=20`);
    const [camera] = nativeMatrices(file("z.fbx"), "|shot", [20]);
    const film = (await worldOf(page, "|ball")).map((p) => onWholeFilm(seenAlongX(camera, p)));
    expect(Math.max(...film.map(({ x }) => x)) - Math.min(...film.map(({ x }) => x))).toBeGreaterThan(0.5);
    expect(await drawn(page, film)).toBeGreaterThan(0.97);
  });

  test("has each arc where it lies on the screen, and positions of the camera's own with z up", async () => {
    const page = await openZ(`${BARE}&through=0&space=screen`);
    const cameras = nativeMatrices(file("z.fbx"), "|shot", FRAMES);
    const seen = (await worldOf(page, "|ball")).map((p, i) => seenAlongX(cameras[i], p));
    expect(await drawn(page, seen.map(onWholeFilm))).toBeGreaterThan(0.97);
    await page.evaluate(() => window.vantorelixViewer.store.set({ space: "camera" }));
    await expect.poll(() => page.evaluate(() => window.vantorelixViewer.store.state.seen?.choice)).toBe("camera camera 0");
    expect(off(await shownOf(page, "ball"), seen.map(([x, y, z]): Vec3 => [x, -z, y]))).toBeLessThan(1e-9);
  });
});
