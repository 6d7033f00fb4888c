// Live pages: the boxes of what stands still.

import { readFileSync, writeFileSync } from "node:fs";
import type { Page } from "playwright-core";
import { expect, test } from "vitest";
import { useBrowser } from "../support/browser";
import { temporaryFolder } from "../support/files";
import { describeLive, drop, EVERYTHING, openEmpty, openLive, shows } from "../support/live";
import { Picture, poseHash, project, type Pose } from "../support/picture";
import { run } from "../support/program";
import type { Vec3 } from "../../src/source/trail";

const browser = useBrowser();
const file = temporaryFolder();

/** A ball that travels over a slab, which is turned and whose size is that of its four corners. */
const SCENE = `//Maya ASCII 2022 scene
requires maya "2022";
createNode transform -n "slab";
	setAttr ".t" -type "double3" 4 -3 0 ;
	setAttr ".r" -type "double3" 0 30 0 ;
createNode mesh -n "slabShape" -p "slab";
	setAttr -s 4 ".vt[0:3]"  -6 0 -2 6 0 -2 6 0.5 2 -6 0 2;
createNode transform -n "ball";
createNode animCurveTL -n "bx";
	setAttr -s 3 ".ktv[0:2]" 1 0 12 5 24 9;
connectAttr "bx.o" "ball.tx";
`;

const boxesOf = (page: Page) => page.evaluate(() => window.vantorelixViewer.scene.statics);

const POSE: Pose = { view: "front", target: [4, -2, 0], distance: 30, azimuth: 0, elevation: 0 };
const BARE = `keys=0&labels=0&line=0&dots=0&theme=light&bones=0&${poseHash(POSE)}`;

/** Whether something else than without boxes is drawn near the slab's left and right end. */
async function isDrawn(page: Page): Promise<boolean> {
  const withBoxes = await Picture.ofViewport(page);
  await page.evaluate(() => window.vantorelixViewer.store.set({ showStatics: false }));
  const without = await Picture.ofViewport(page);
  const ends = [-5, 5].map((x): Vec3 => [4 + x * Math.cos(Math.PI / 6), -2.75, -x * Math.sin(Math.PI / 6)]);
  return ends.every((end) => {
    const { x, y } = project(POSE, end, without.width, without.height);
    return Array.from({ length: 17 }, (_, i) => i - 8).some((by) => withBoxes.at({ x, y: y + by }).join() !== without.at({ x, y: y + by }).join());
  });
}

describeLive("what stands still", () => {
  test("has the boxes of a page that only shows the trails, also of a scene that is dropped", async () => {
    writeFileSync(file("slab.ma"), SCENE);
    run("trails", file("slab.ma"), ...EVERYTHING, "--out", file("shown.html"));
    const wanted = await boxesOf(await browser.openFile(file("shown.html")));
    expect(wanted.map(({ name, low, high }) => [name, ...low, ...high])).toEqual([["|slab", -6, 0, -2, 6, 0.5, 2]]);
    const page = await openLive(browser, file("live.html"), file("slab.ma"), { hash: BARE });
    expect(await boxesOf(page)).toEqual(wanted);
    expect(await isDrawn(page)).toBe(true);
    const empty = await openEmpty(browser, file("empty.html"));
    await drop(empty, [{ name: "slab.ma", bytes: readFileSync(file("slab.ma")) }]);
    await shows(empty, "slab.ma");
    expect(await boxesOf(empty)).toEqual(wanted);
  });
});
