import type { Page } from "playwright-core";
import { describe, expect, test } from "vitest";
import { COMMANDS } from "../src/model/commands";
import { chromiumTest, useBrowser } from "./support/browser";
import { expectState, press, stateOf } from "./support/read";
import { savedBy } from "./support/saved";
import { figures } from "./support/scenes";

const browser = useBrowser();

describe("the toolbar", () => {
  test("chooses the view, and shows which it is", async () => {
    const page = await browser.open(figures());
    const view = (name: string) => page.getByRole("group", { name: "View" }).getByRole("button", { name });
    for (const [name, id] of [["Front", "front"], ["Side", "side"], ["Top", "top"], ["Perspective", "persp"]] as const) {
      await view(name).click();
      expect(((await stateOf(page, "camera")) as { view: string }).view).toBe(id);
      expect(await view(name).getAttribute("aria-pressed")).toBe("true");
      expect(await page.locator('.joined [aria-pressed="true"]').count()).toBe(1);
    }
  });

  test("frames all, or what is selected", async () => {
    const page = await browser.open(figures(), { hash: "select=2" });
    const distance = async () => ((await stateOf(page, "camera")) as { distance: number }).distance;
    await page.getByRole("button", { name: "Frame all" }).click();
    const all = await distance();
    await page.getByRole("button", { name: "Solo Foot.L" }).click();
    await page.getByRole("button", { name: "Frame what is selected" }).click();
    expect(await distance()).not.toBe(all);
    await page.getByRole("button", { name: "Solo Foot.L" }).click();
    await page.getByRole("button", { name: "Frame all" }).click();
    expect(await distance()).toBeCloseTo(all, 6);
  });

  test("saves the selection as a table and the viewport as a picture", async () => {
    const page = await browser.open(figures(), { hash: "select=2-3" });
    const save = (name: string) => savedBy(page, () => page.getByRole("button", { name, exact: true }).click());
    const table = await save("CSV");
    expect(table.name).toBe("walk.usda.csv");
    const lines = table.content.toString().trim().split("\r\n");
    expect(lines.length).toBe(1 + 2 * 24);
    expect(lines[1]).toMatch(/^\|rig\|legs\|Foot\.L,0,1,0,0,1,1(\.0000\d*)?$|^\|rig\|legs\|Foot\.L,0,1,0,0,1,0\.99999\d*$/);
    const picture = await save("PNG");
    expect(picture.name).toBe("walk.usda.png");
    expect(picture.content.subarray(1, 4).toString()).toBe("PNG");
  });

  test("opens and closes the panels", async () => {
    const page = await browser.open(figures());
    for (const name of ["Objects", "Settings"]) {
      const toggle = page.getByRole("button", { name, exact: true });
      const panel = page.getByRole("region", { name, exact: true });
      expect(await panel.isVisible()).toBe(true);
      await toggle.click();
      expect(await toggle.getAttribute("aria-expanded")).toBe("false");
      expect(await panel.count()).toBe(0);
      await toggle.click();
      expect(await panel.isVisible()).toBe(true);
    }
  });
});

describe("which panels are open", () => {
  test("is kept in the address, as far as it was chosen", async () => {
    const page = await browser.open(figures());
    await page.getByRole("button", { name: "Settings", exact: true }).click();
    await expect.poll(() => page.evaluate(() => location.hash)).toContain("settings=0");
    await page.reload();
    await page.waitForSelector("html[data-ready=true]", { state: "attached" });
    expect([await page.locator("#objects").isVisible(), await page.locator("#settings").isVisible()]).toEqual([true, false]);
    await page.getByRole("button", { name: "Settings", exact: true }).click();
    await expect.poll(() => page.evaluate(() => location.hash)).not.toContain("settings"); // as the page has it anyway
    await page.setViewportSize({ width: 390, height: 844 });
    await expect.poll(() => page.locator(".panel:visible").count()).toBe(0); // so a phone begins with the viewport
  });
});

describe("the theme", () => {
  const background = (page: Page) => page.evaluate(() => getComputedStyle(document.body).backgroundColor);

  chromiumTest("follows the system until one is chosen", async () => {
    const page = await browser.open(figures(), { colorScheme: "dark" });
    const dark = await background(page);
    await page.emulateMedia({ colorScheme: "light" });
    await expect.poll(() => background(page)).not.toBe(dark);
    const light = await background(page);
    await page.getByRole("button", { name: "Theme: as the system" }).click();
    await expectState(page, "theme", "light");
    expect(await background(page)).toBe(light);
    await page.getByRole("button", { name: "Theme: light" }).click();
    expect(await background(page)).toBe(dark);
    await page.getByRole("button", { name: "Theme: dark" }).click();
    await expectState(page, "theme", "auto");
  });

  test("reaches what is drawn", async () => {
    const page = await browser.open(figures());
    const drawn = () => page.evaluate(() => document.querySelector<HTMLCanvasElement>(".timeline-layer")!.toDataURL());
    await page.waitForTimeout(200);
    const light = await drawn();
    await page.getByRole("button", { name: "Theme: as the system" }).click();
    await page.getByRole("button", { name: "Theme: light" }).click();
    await expect.poll(drawn).not.toBe(light);
  });
});

describe("the help", () => {
  test("opens by button and by key, closes by button and by Escape, and gives the focus back", async () => {
    const page = await browser.open(figures());
    const dialog = page.getByRole("dialog", { name: "Help" });
    await page.getByRole("button", { name: "Help" }).click();
    expect(await dialog.isVisible()).toBe(true);
    await press(page, "Escape");
    expect(await dialog.isVisible()).toBe(false);
    await page.locator(".viewport").focus();
    await press(page, "?");
    expect(await dialog.isVisible()).toBe(true);
    await press(page, " "); // on the button to close it
    expect(await dialog.isVisible()).toBe(false);
    await expectState(page, "playing", false);
    expect(await page.evaluate(() => document.activeElement!.id)).toBe("viewport");
  });

  test("has every key of every command of a page without edits", async () => {
    const page = await browser.open(figures());
    await press(page, "?");
    const titles = await page.getByRole("dialog").locator("section").first().locator("td").allTextContents();
    const there = COMMANDS.filter(({ edits }) => !edits);
    expect(titles).toEqual([...there.filter(({ keys }) => keys.length > 0).map(({ title }) => title), "This help"]);
    const caps = await page.getByRole("dialog").locator("kbd").count();
    expect(caps).toBe(there.flatMap(({ keys }) => keys).length + 1);
  });

  test("is not opened by a question mark that is typed", async () => {
    const page = await browser.open(figures());
    await page.getByRole("searchbox").focus();
    await press(page, "?");
    expect(await page.getByRole("dialog").count()).toBe(0);
    await expectState(page, "search", "?");
  });
});

describe("the page", () => {
  test("comes back as it was left when it is loaded again", async () => {
    const page = await browser.open(figures());
    await page.locator(".object .name-cell").nth(2).click();
    await page.getByRole("button", { name: "Show hand_R" }).click();
    await page.getByRole("combobox", { name: "Mode" }).selectOption("Flow");
    await page.getByRole("slider", { name: "Line width" }).fill("5");
    await page.getByRole("radio", { name: "Colour-blind safe" }).check();
    await page.getByRole("button", { name: "Top", exact: true }).click();
    await page.getByRole("button", { name: "Next key" }).click();
    await page.getByRole("button", { name: "Theme: as the system" }).click();
    const keys = ["selected", "hidden", "mode", "lineWidth", "palette", "frame", "theme", "camera"] as const;
    const state = () => Promise.all(keys.map((key) => stateOf(page, key)));
    const left = await state();
    expect(left.slice(0, 7)).toEqual([[2], [1], 2, 5, "safe", 24, "light"]);
    await expect.poll(() => page.evaluate(() => location.hash)).toContain("theme=light");
    await page.reload();
    await page.waitForSelector("html[data-ready=true]", { state: "attached" });
    const found = await state();
    expect(found.slice(0, 7)).toEqual(left.slice(0, 7));
    expect((found[7] as { view: string }).view).toBe("top");
    expect(await page.getByRole("combobox", { name: "Mode" }).inputValue()).toBe("3");
    expect(await page.locator(".object[data-off] .name").allTextContents()).toEqual(["hand_R"]);
  });

  test("follows a hash that is typed", async () => {
    const page = await browser.open(figures(), { hash: "frame=5" });
    await expectState(page, "frame", 5);
    await page.evaluate(() => (location.hash = "frame=7&select=3"));
    await expectState(page, "frame", 7);
    await expectState(page, "selected", [3]);
  });

  test("without a single trail stands, and says what there is", async () => {
    const page = await browser.open({ trails: [] });
    expect(await page.locator(".count").textContent()).toBe("0 of 0 shown, 0 selected");
    await press(page, "f", "a", "ArrowRight", "]", "c", "Shift+C", "r");
    expect(await page.locator(".message").textContent()).toBe("Nothing is selected: select an object first");
  });

  test("shows a message for a while", async () => {
    const page = await browser.open(figures());
    await page.clock.install();
    await press(page, "[");
    expect(await page.getByRole("status").filter({ hasText: "No earlier key" }).isVisible()).toBe(true);
    await page.clock.runFor(5000);
    expect(await page.locator(".message").textContent()).toBe("");
  });
});
