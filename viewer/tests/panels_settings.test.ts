import type { Page } from "playwright-core";
import { describe, expect, test } from "vitest";
import { useBrowser } from "./support/browser";
import { expectState, press } from "./support/read";
import { figures } from "./support/scenes";

const browser = useBrowser();

const choose = (page: Page, group: string, option: string) =>
  page.getByRole("group", { name: group, exact: true }).getByRole("radio", { name: option, exact: true }).check();

const legend = (page: Page) => page.locator(".legend");

describe("the settings", () => {
  test("colour by mode or object, in one mode or each trail's own", async () => {
    const page = await browser.open(figures());
    await choose(page, "Colour by", "Object");
    await expectState(page, "colorBy", "object");
    await choose(page, "Colour by", "Mode");
    await expectState(page, "colorBy", "mode");
    const mode = page.getByRole("combobox", { name: "Mode" });
    expect(await mode.locator("option").allTextContents()).toEqual(["As in the scene", "Standard", "Spacing", "Flow", "Beats"]);
    await mode.selectOption("Flow");
    await expectState(page, "mode", 2);
    await mode.selectOption("As in the scene");
    await expectState(page, "mode", null);
    await page.locator(".viewport").focus();
    await press(page, "Shift+Digit4"); // from the keyboard, too
    expect(await mode.inputValue()).toBe("4");
  });

  test("have each size of its own, or the scene's again", async () => {
    const page = await browser.open(figures());
    for (const [name, key, own] of [["Line width", "lineWidth", "various px"], ["Dot size", "pointSize", "4 px"]] as const) {
      const slider = page.getByRole("slider", { name, exact: true });
      const shown = page.locator(".setting", { has: slider }).locator("output");
      expect(await shown.textContent()).toBe(own);
      await slider.fill("7.5");
      await expectState(page, key, 7.5);
      expect(await shown.textContent()).toBe("7.5 px");
      await slider.press("ArrowRight");
      await expectState(page, key, 8);
      await page.getByRole("button", { name: `${name} as in the scene` }).click();
      await expectState(page, key, null);
      expect(await shown.textContent()).toBe(own);
      expect(await slider.getAttribute("aria-valuetext")).toBe(`${own}, as in the scene`);
    }
  });

  test("turn lines, dots and ghost on, off or leave them as in the scene", async () => {
    const page = await browser.open(figures());
    for (const [name, key] of [["Lines", "showLine"], ["Dots", "showDots"], ["Ghost", "ghost"]] as const)
      for (const [option, value] of [["On", true], ["Off", false], ["Scene", null]] as const) {
        await choose(page, name, option);
        await expectState(page, key, value);
      }
  });

  test("show keys, labels and boxes, or not", async () => {
    const page = await browser.open(figures());
    for (const [name, key] of [["Keys", "showKeys"], ["Frame numbers and names", "showLabels"], ["Boxes of what does not move", "showStatics"]] as const) {
      const box = page.getByRole("checkbox", { name });
      expect(await box.isChecked()).toBe(true);
      await box.uncheck();
      await expectState(page, key, false);
      await box.check();
      await expectState(page, key, true);
    }
  });

  test("show bones, a window in time and onion skins", async () => {
    const scene = figures();
    const page = await browser.open({ ...scene, trails: scene.trails.map((trail, i) => (i > 0 ? { ...trail, parent: scene.trails[0].source } : trail)) });
    for (const [name, key, at] of [["Bones", "showBones", true], ["Only around the current frame", "window", false]] as const) {
      await expectState(page, key, at);
      await page.getByRole("checkbox", { name }).click();
      await expectState(page, key, !at);
    }
    for (const kind of ["Frames", "Keys", "Off"]) {
      await choose(page, "Onion skins", kind);
      await expectState(page, "onion", kind.toLowerCase());
    }
    for (const [name, key, of] of [["Before", "windowBefore", "frames"], ["After", "windowAfter", "frames"], ["Every", "onionEvery", "frames"],
      ["Skins before", "onionBefore", "skins"], ["Skins after", "onionAfter", "skins"]] as const) {
      const slider = page.getByRole("slider", { name, exact: true });
      await slider.fill("7");
      await slider.press("ArrowRight");
      await expectState(page, key, 8);
      expect(await slider.getAttribute("aria-valuetext")).toBe(`8 ${of}`);
    }
    await page.getByRole("button", { name: "Reset settings" }).click();
    for (const [key, value] of [["showBones", true], ["window", false], ["windowBefore", 12], ["onionEvery", 4]] as const)
      await expectState(page, key, value);
  });

  test("are worked by keyboard alone", async () => {
    const page = await browser.open(figures());
    await page.getByRole("radio", { name: "Mode" }).focus();
    await press(page, "ArrowRight");
    await expectState(page, "colorBy", "object");
    await press(page, "Tab", "Tab", "ArrowRight");
    await expectState(page, "palette", "safe");
    await expectState(page, "frame", 1);
    await page.getByRole("checkbox", { name: "Keys" }).focus();
    await press(page, " ");
    await expectState(page, "showKeys", false);
    await expectState(page, "playing", false);
  });

  test("are reset together, and leave what one looks at", async () => {
    const page = await browser.open(figures(), { hash: "mode=3&width=5&ghost=1&palette=safe&keys=0&color=object&select=2&frame=9&hide=1&theme=dark&search=a&moving=0&fold=1&time=3,9&list=0&letters=0" });
    await page.getByRole("button", { name: "Reset settings" }).click();
    for (const [key, value] of [["mode", null], ["lineWidth", null], ["ghost", null], ["palette", "engine"], ["showKeys", true], ["colorBy", "mode"],
      ["selected", [2]], ["frame", 9], ["hidden", [1]], ["theme", "dark"],
      ["letterKeys", true], ["search", "a"], ["movingOnly", false], ["folded", [1]], ["timeSpan", [3, 9]], ["showList", false]] as const)
      await expectState(page, key, value);
  });
});

describe("the legend", () => {
  test("explains the modes of the scene's trails, or the chosen one", async () => {
    const page = await browser.open(figures());
    expect(await legend(page).getByRole("heading").allTextContents()).toEqual(["Standard", "Spacing"]);
    await page.getByRole("combobox", { name: "Mode" }).selectOption("Beats");
    expect(await legend(page).getByRole("heading").allTextContents()).toEqual(["Beats"]);
    await choose(page, "Colour by", "Object");
    expect(await legend(page).textContent()).toBe("Each object has its own colour, as in the list.");
  });

  test("has the colours that the trails have, in both palettes", async () => {
    const page = await browser.open(figures(), { hash: "mode=2" });
    const colours = () => page.locator(".legend .legend-swatch").evaluateAll((all) => all.map((e) => getComputedStyle(e).backgroundColor));
    expect(await colours()).toEqual(["rgb(255, 191, 0)", "rgb(0, 166, 166)"]);
    await page.getByRole("combobox", { name: "Mode" }).selectOption("Beats");
    expect(await colours()).toEqual(["rgb(38, 217, 64)", "rgb(255, 255, 255)"]);
    await choose(page, "Palette", "Colour-blind safe");
    expect(await colours()).not.toContain("rgb(38, 217, 64)");
  });

  test("runs from slow to fast with the typical speed in its place", async () => {
    const page = await browser.open(figures(), { hash: "mode=1" });
    const ramp = page.locator(".legend .ramp");
    const stops = (await ramp.evaluate((e) => getComputedStyle(e).backgroundImage)).match(/rgb\([^)]*\)/g)!;
    expect([stops[0], stops[stops.length - 1]]).toEqual(["rgb(0, 0, 255)", "rgb(255, 0, 0)"]);
    const [bar, typical] = [(await ramp.boundingBox())!, (await page.locator(".typical").boundingBox())!];
    expect((typical.x + typical.width / 2 - bar.x) / bar.width).toBeCloseTo(0.4, 2);
  });

  test("says that spacing colours do not follow a relative view", async () => {
    const page = await browser.open(figures(), { hash: "mode=1" });
    const note = legend(page).getByText("Spacing colours show the motion in the world.");
    expect(await note.count()).toBe(0);
    await press(page, "r");
    expect(await note.isVisible()).toBe(true);
    await page.getByRole("combobox", { name: "Mode" }).selectOption("Flow");
    expect(await note.count()).toBe(0);
  });

  test("says that the safe palette is not the engine's", async () => {
    const page = await browser.open(figures());
    const note = legend(page).getByText("These are not the engine's own colours.");
    expect(await note.count()).toBe(0);
    await choose(page, "Palette", "Colour-blind safe");
    expect(await note.isVisible()).toBe(true);
  });
});
