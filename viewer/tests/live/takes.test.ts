// Live pages: files with several takes, of which one is shown.

import { readFileSync } from "node:fs";
import type { Page } from "playwright-core";
import { describe, expect, test } from "vitest";
import type { Vec3 } from "../../src/source/trail";
import { useBrowser } from "../support/browser";
import { temporaryFolder } from "../support/files";
import { PATIENT, select } from "../support/handles";
import { describeLive, drop, exact, filesOf, openEmpty, openLive, others, shownBits, shows, type Bits } from "../support/live";
import { example, run } from "../support/program";

const browser = useBrowser();
const file = temporaryFolder();

const list = (page: Page) => page.getByLabel("Take", { exact: true });
const shownTake = (page: Page) => list(page).evaluate((element) => (element as HTMLSelectElement).selectedOptions[0].text);

/** What the program makes of a take. */
function told(scene: string, take: string): Bits {
  run("trails", scene, "--take", take, "--out", file("x.json"));
  const { trails } = JSON.parse(readFileSync(file("x.json"), "utf8")) as
    { trails: { source: string; points: Vec3[]; key_points: Vec3[]; key_times: number[] }[] };
  return Object.fromEntries(trails.map(({ source, points, key_points: keyPoints, key_times: keyTimes }) =>
    [source, { points: points.flat().join(), keyPoints: keyPoints.flat().join(), keyTimes: keyTimes.join() }]));
}

const scenes = { "robot.fbx": ["reach", "wave"], "crane.gltf": ["lift", "swing"] };

describe("takes", () => {
  describeLive("a dropped file with several takes", () => {
    for (const [name, [first, second]] of Object.entries(scenes))
      test(`shows the first, and each other one that is chosen, as the program makes it: ${name}`, async () => {
        const scene = example(name);
        const page = await openEmpty(browser, file("empty.html"));
        await drop(page, filesOf(scene));
        await shows(page, name);
        expect(await list(page).locator("option").allTextContents()).toEqual([first, second]);
        const [one, other] = [told(scene, first), told(scene, second)];
        expect(others(one, other).length).toBeGreaterThan(0);
        expect(others(await shownBits(page), one)).toEqual([]);
        const both = Object.keys(one).filter((source) => source in other);
        await select(page, Object.keys(one).indexOf(both[0]));
        await page.evaluate(() => window.vantorelixViewer.editing!.insertKeys([...window.vantorelixViewer.store.state.selected], 7.5));
        await exact(page);
        await list(page).selectOption(second);
        await expect.poll(() => page.locator(".message").textContent(), PATIENT).toBe(`The take ${second}; the edits of the other one are gone`);
        expect(others(await shownBits(page), other)).toEqual([]);
        expect(await page.evaluate(() => window.vantorelixViewer.editing!.undoes)).toBe(null);
        expect(await page.evaluate(() => {
          const { motion, store } = window.vantorelixViewer;
          return [...store.state.selected].map((trail) => motion.trails[trail].source);
        })).toEqual([both[0]]);
        await expect.poll(() => page.evaluate(() => location.hash)).toContain(`take=${second}`);
        await list(page).selectOption(first);
        await expect.poll(async () => others(await shownBits(page), one), PATIENT).toEqual([]);
        await expect.poll(() => page.evaluate(() => location.hash)).not.toContain("take=");
      });
  });

  describeLive("the address of a live page", () => {
    test("keeps the take that was chosen, and one that names none shows the scene as it came", async () => {
      const scene = example("robot.fbx");
      const page = await openLive(browser, file("live.html"), scene, { hash: "take=wave&frame=9" });
      expect(await shownTake(page)).toBe("wave");
      expect(await page.evaluate(() => window.vantorelixViewer.store.state.frame)).toBe(9);
      const other = await browser.openFile(file("live.html"), { hash: "take=dance&frame=9" });
      expect(await shownTake(other)).toBe("reach");
      expect(await other.evaluate(() => window.vantorelixViewer.store.state.frame)).toBe(9);
      await other.evaluate(() => (location.hash = "take=wave"));
      await expect.poll(() => shownTake(other), PATIENT).toBe("wave");
    });

    test("has no list of takes where there is one alone", async () => {
      const page = await openLive(browser, file("bounce.html"), example("bounce.ma"), { hash: "take=dance" });
      expect(await list(page).count()).toBe(0);
    });
  });
});
