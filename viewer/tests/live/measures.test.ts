// Live pages: the measures of objects, which the engine works out beside the page.

import { readFileSync, writeFileSync } from "node:fs";
import type { Page } from "playwright-core";
import { describe, expect, test } from "vitest";
import { measureTitle } from "../../src/panels/measures_dialog";
import { useBrowser } from "../support/browser";
import { temporaryFolder } from "../support/files";
import { CHANNELS, PATIENT } from "../support/handles";
import { describeLive, EVERYTHING, nativeWritten, openLive, pull, puttingKeys } from "../support/live";
import { example, run } from "../support/program";
import { still } from "../support/saved";

const browser = useBrowser();
const file = temporaryFolder();

const dialog = (page: Page) => page.getByRole("dialog", { name: "Measures" });
const openDialog = (page: Page) => page.getByRole("button", { name: "Measures" }).click();
const rowsOf = (page: Page) => dialog(page).locator("tbody").getByRole("row").allTextContents();

interface Told {
  units: Record<string, string>;
  trails: { source: string; measures: Record<string, unknown> }[];
}

/** What the program tells of an object, as rows: title, value with its frame if it has one, unit. */
function rowsTold(scene: string, object: string): string[] {
  run("trails", scene, ...EVERYTHING, "--out", file("told.json"));
  const { units, trails } = JSON.parse(readFileSync(file("told.json"), "utf8")) as Told;
  const { measures } = trails.find(({ source }) => source === object)!;
  return Object.keys(measures).filter((name) => !Array.isArray(measures[name]) && !name.endsWith("_frame")).map((name) => {
    const [value, frame] = [measures[name], measures[`${name}_frame`]] as (number | null | undefined)[];
    const words = value == null ? "–" : `${Number(value.toPrecision(4))}${frame == null ? "" : ` frame ${frame}`}`;
    return measureTitle(name) + words + (units[name] === "1" ? "" : units[name]);
  });
}

describe("measures of a live page", () => {
  describeLive("the measures of a scene in which a key was dragged", () => {
    test("are those that the program tells of the scene with these curves, in a dialog that is open meanwhile", async () => {
      const scene = example("bounce.ma");
      const page = await openLive(browser, file("bounce.html"), scene, { hash: "select=1" });
      await openDialog(page);
      const first = rowsTold(scene, "|ball");
      expect(first.length).toBeGreaterThan(15);
      await expect.poll(() => rowsOf(page), PATIENT).toEqual(first);
      await pull(page, "|ball", 38, [3, 9, -2]);
      writeFileSync(file("edited.ma"), still(scene) + nativeWritten(scene, await puttingKeys(page, "|ball", CHANNELS), "ma").text.toString());
      const edited = rowsTold(file("edited.ma"), "|ball");
      expect(edited).not.toEqual(first);
      await expect.poll(() => rowsOf(page), PATIENT).toEqual(edited);
    });
  });

  describeLive("the graph of sliding, which needs the measure of the floor,", () => {
    test("is drawn when that is known, as on a page that only shows trails", async () => {
      const hash = "select=18&graph=sliding";
      const words = (page: Page) => page.locator(".plot").first().getAttribute("aria-label");
      run("trails", example("walk.bvh"), ...EVERYTHING, "--out", file("shown.html"));
      const shown = await words(await browser.openFile(file("shown.html"), { hash }));
      expect(shown).toContain("fastest");
      const page = await openLive(browser, file("live.html"), example("walk.bvh"), { hash });
      await expect.poll(() => words(page), PATIENT).toBe(shown);
    });
  });
});
