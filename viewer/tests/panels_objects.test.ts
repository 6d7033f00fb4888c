import type { Page } from "playwright-core";
import { describe, expect, test } from "vitest";
import { useBrowser } from "./support/browser";
import { expectState, inkOf, press, stateOf } from "./support/read";
import { settle } from "./support/picture";
import { arc, figures, points, tree } from "./support/scenes";

const browser = useBrowser();

const row = (page: Page, name: string) => page.getByRole("row").filter({ has: page.getByText(name, { exact: true }) });
const cell = (page: Page, name: string) => row(page, name).locator(".name-cell");
const listed = (page: Page) => page.locator(".object:visible .name").allTextContents();

describe("the list of objects", () => {
  test("has a row for each, with path, warning and number", async () => {
    const page = await browser.open(figures(), { hash: "select=0" });
    expect(await listed(page)).toEqual(["hand_L", "hand_R", "Foot.L", "head"]);
    expect(await cell(page, "hand_L").getAttribute("title")).toBe("|rig|arms|hand_L");
    const mark = row(page, "hand_R").getByRole("img", { name: "Warning: an expression was not evaluated" });
    expect(await mark.count()).toBe(1);
    expect(await page.locator(".warning").count()).toBe(1);
    expect(await page.locator(".count").textContent()).toBe("4 of 4 shown, 1 selected");
  });

  test("is searched by name and path", async () => {
    const page = await browser.open(figures(), { hash: "select=0" });
    const search = page.getByRole("searchbox", { name: "Search objects" });
    await search.fill("HAND");
    expect(await listed(page)).toEqual(["hand_L", "hand_R"]);
    expect(await page.locator(".count").textContent()).toBe("2 found, 4 of 4 shown, 1 selected");
    await search.fill("|rig|*.l");
    expect(await listed(page)).toEqual(["Foot.L"]);
    await search.fill("nothing");
    expect(await page.getByText("No name matches the search.").isVisible()).toBe(true);
    await search.press("Escape");
    expect((await listed(page)).length).toBe(4);
    expect(await page.getByText("No name matches the search.").isVisible()).toBe(false);
  });

  test("selects by click, with Ctrl one more or less, with Shift all between that are listed", async () => {
    const page = await browser.open(figures(), { hash: "select=0" });
    await cell(page, "hand_R").click();
    await expectState(page, "selected", [1]);
    expect(await row(page, "hand_R").getAttribute("aria-selected")).toBe("true");
    expect(await row(page, "hand_L").getAttribute("aria-selected")).toBe("false");
    await cell(page, "head").click({ modifiers: ["Control"] });
    await expectState(page, "selected", [1, 3]);
    await cell(page, "head").click({ modifiers: ["Control"] });
    await expectState(page, "selected", [1]);
    await cell(page, "hand_L").click();
    await page.getByRole("searchbox").fill("l");
    await cell(page, "Foot.L").click({ modifiers: ["Shift"] });
    await expectState(page, "selected", [0, 2]);
  });

  test("hides and shows an object, and has it alone", async () => {
    const page = await browser.open(figures(), { hash: "select=0" });
    const eye = page.getByRole("button", { name: "Show hand_R" });
    await eye.click();
    await expectState(page, "hidden", [1]);
    expect(await eye.getAttribute("aria-pressed")).toBe("false");
    expect(await page.locator(".count").textContent()).toBe("3 of 4 shown, 1 selected");
    await page.getByRole("button", { name: "Solo head" }).click();
    await expectState(page, "solo", [3]);
    expect(await page.locator(".object[data-off]").count()).toBe(3);
    expect(await stateOf(page, "selected")).toEqual([0]); // a button selects nothing
    await page.getByRole("button", { name: "Show all", exact: true }).click();
    await expectState(page, "hidden", []);
    await expectState(page, "solo", []);
    expect(await page.locator(".object[data-off]").count()).toBe(0);
  });

  test("has buttons for the selection", async () => {
    const page = await browser.open(figures());
    const click = (name: string) => page.getByRole("group", { name: "Selection" }).getByRole("button", { name, exact: true }).click();
    await page.getByRole("searchbox").fill("hand");
    await click("All");
    await expectState(page, "selected", [0, 1]);
    await click("Solo");
    await expectState(page, "solo", [0, 1]);
    await click("Solo");
    await expectState(page, "solo", []);
    await click("None");
    await expectState(page, "selected", []);
    await click("Solo");
    expect(await page.locator(".message").textContent()).toBe("Nothing is selected: select an object first");
  });

  test("says what positions are relative to, and leads back", async () => {
    const page = await browser.open(figures(), { hash: "select=3" });
    const line = page.locator(".reference");
    expect(await line.isVisible()).toBe(false);
    await page.getByRole("button", { name: "Relative", exact: true }).click();
    await expectState(page, "relativeTo", 3);
    expect(await line.locator(".reference-name").textContent()).toBe("relative to head");
    await page.getByRole("button", { name: "World" }).click();
    await expectState(page, "relativeTo", null);
    expect(await line.isVisible()).toBe(false);
  });

  test("shows the colour of the object, or of its mode", async () => {
    const page = await browser.open(figures(), { hash: "select=" });
    const background = (name: string) => row(page, name).locator(".swatch").evaluate((e) => getComputedStyle(e).background);
    expect(await background("hand_L")).toContain("rgb(0, 0, 255)"); // slow, in mode Spacing
    expect(await background("head")).toContain("rgb(38, 191, 166)"); // Standard
    await page.keyboard.press("c");
    expect(await background("hand_L")).toContain("rgb(230, 159, 0)");
    expect(await background("head")).toContain("rgb(204, 121, 167)");
  });

  test("marks several selected objects with the colours that their curves have in the graph", async () => {
    const page = await browser.open({ trails: Array.from({ length: 12 }, (_, i) =>
      arc(`o${i}`, { points: points(24, (k) => [k * (1 + 0.2 * i), 4 * i + Math.sin(k), 0]) })) }, { hash: "select=0.8.3" });
    const color = (selector: string) => page.locator(selector).evaluateAll((all) => all.map((e) => getComputedStyle(e).backgroundColor));
    const inGraph = await color(".graph-names .legend-swatch");
    expect(new Set(inGraph).size).toBe(3); // though the first and the ninth object have one colour of their own
    const inList = await color('.object[aria-selected="true"] .swatch');
    expect([inList[0], inList[2], inList[1]]).toEqual(inGraph);
    await expect.poll(async () => Object.keys(await inkOf(page, ".curves"))).toEqual(
      expect.arrayContaining(inGraph.map((text) => text.match(/\d+/g)!.join(","))));
    await settle(page);
    expect(Object.keys(await inkOf(page, "canvas.overlay"))).toEqual( // the rings around where they are now
      expect.arrayContaining(inGraph.map((text) => text.match(/\d+/g)!.join(","))));
    await cell(page, "o8").click(); // alone, it has the colours of its mode
    expect(await page.locator(".legend-swatch.small").count()).toBe(0);
    expect(await row(page, "o8").locator(".swatch").evaluate((e) => getComputedStyle(e).backgroundImage)).toContain("gradient");
  });

  test("marks the object whose sample is pointed at", async () => {
    const page = await browser.open(figures());
    await page.evaluate(() => window.vantorelixViewer.store.set({ hover: { trail: 2, sample: 3 } }));
    expect(await row(page, "Foot.L").getAttribute("data-hovered")).toBe("");
    expect(await page.locator("[data-hovered]").count()).toBe(1);
  });
});

describe("the list as a hierarchy", () => {
  const shape = (page: Page) => page.locator(".object").evaluateAll((all) =>
    all.map((e) => `${"  ".repeat(Number(e.getAttribute("aria-level")) - 1)}${e.querySelector(".name")!.textContent}`));
  const twisty = (page: Page, name: string) => row(page, name).locator(".twisty");
  const MOVING = ["rig", "  hips", "    spine", "      head", "    leg"];
  const ALL = ["rig", "  cam", "    aim", "  hips", "    spine", "      head", "    leg", "light"];

  test("lists what moves and what it hangs from, and says how much it leaves out", async () => {
    const page = await browser.open(tree());
    expect(await shape(page)).toEqual(MOVING);
    expect(await page.locator(".left-out").textContent()).toBe("4 left out");
    expect(await row(page, "rig").getAttribute("data-path")).toBe("");
    await page.getByRole("checkbox", { name: "Moving only" }).uncheck();
    expect(await shape(page)).toEqual(ALL.filter((name) => name !== "    aim")); // what is still is folded
    expect(await page.locator(".left-out").textContent()).toBe("4 do not move");
    await page.getByRole("button", { name: "Open all" }).click();
    expect(await shape(page)).toEqual(ALL);
  });

  test("folds by pointer and by keyboard, one or all", async () => {
    const page = await browser.open(tree(), { hash: "select=" });
    await twisty(page, "hips").click();
    expect(await shape(page)).toEqual(["rig", "  hips"]);
    expect(await row(page, "hips").getAttribute("aria-expanded")).toBe("false");
    await expectState(page, "selected", []);
    await cell(page, "hips").focus();
    await press(page, "Tab", "Shift+Tab", "ArrowRight"); // the click on the triangle does not keep the keys
    expect(await shape(page)).toEqual(MOVING);
    await cell(page, "head").focus();
    await press(page, "ArrowLeft", "ArrowLeft"); // to the spine, which folds
    expect(await shape(page)).toEqual(["rig", "  hips", "    spine", "    leg"]);
    expect(await page.evaluate(() => document.activeElement!.querySelector(".name")!.textContent)).toBe("spine");
    await page.getByRole("button", { name: "Fold all" }).click();
    expect(await shape(page)).toEqual(["rig"]);
    await twisty(page, "rig").click();
    expect(await shape(page)).toEqual(["rig", "  hips"]); // the rest stays folded
    await page.getByRole("button", { name: "Open all" }).click();
    expect(await shape(page)).toEqual(MOVING);
  });

  test("a search opens what it finds, with what that hangs from, and leaves the rest folded for later", async () => {
    const page = await browser.open(tree(), { hash: "fold=0-7" });
    expect(await shape(page)).toEqual(["rig"]);
    await page.getByRole("searchbox").fill("head");
    expect(await shape(page)).toEqual(["rig", "  hips", "    spine", "      head"]);
    expect(await page.locator(".object:not([data-path]) .name").allTextContents()).toEqual(["head"]);
    await page.getByRole("button", { name: "All", exact: true }).click();
    await expectState(page, "selected", [5]);
    await page.getByRole("searchbox").fill("");
    await page.getByRole("button", { name: "None" }).click();
    await page.getByRole("searchbox").fill("aim");
    expect(await page.locator(".none").first().textContent()).toBe(
      "Of what moves, no name matches the search. One object that does not move would: turn off “Moving only”.");
    await page.getByRole("searchbox").fill("");
    expect((await shape(page)).length).toBeLessThan(8);
  });

  test("shows what is selected elsewhere, though it was folded", async () => {
    const page = await browser.open(tree(), { hash: "select=&fold=0.3.4" });
    await page.evaluate(() => window.vantorelixViewer.store.set({ selected: new Set([5]) }));
    expect(await shape(page)).toEqual(MOVING);
  });

  test("says what does not move, and what may only turn", async () => {
    const page = await browser.open(tree(), { hash: "moving=0&fold=" });
    expect(await cell(page, "light").getAttribute("title")).toBe("|light\ndoes not move");
    expect(await cell(page, "aim").getAttribute("title")).toBe("|rig|cam|aim\nhas keys but does not travel: it may only turn");
    expect(await cell(page, "hips").getAttribute("title")).toBe("|rig|hips");
    expect(await row(page, "aim").getByRole("img", { name: "has keys but does not travel: it may only turn" }).isVisible()).toBe(true);
    expect(await page.locator(".still:visible").allTextContents()).toEqual(["still", "still", "turns?", "still"]);
  });

  test("keeps deep names readable", async () => {
    const chain = Array.from({ length: 21 }, (_, i) => arc(`joint_${i}`, { parent: i > 0 ? `|joint_${i - 1}` : undefined }));
    const page = await browser.open({ trails: chain });
    const widths = await page.locator(".object .name").evaluateAll((all) => all.map((e) => [e.scrollWidth, e.clientWidth]));
    expect(widths.length).toBe(21);
    for (const [wanted, given] of widths) expect(given).toBeGreaterThanOrEqual(wanted);
    const x = await page.locator(".object .name").evaluateAll((all) => all.map((e) => e.getBoundingClientRect().x));
    for (let i = 1; i < x.length; ++i) expect(x[i] - x[i - 1]).toBeGreaterThan(2);
  });

  test("is the same when a link is opened", async () => {
    const page = await browser.open(tree());
    await page.getByRole("checkbox", { name: "Moving only" }).uncheck();
    await twisty(page, "hips").click();
    const left = await shape(page);
    await expect.poll(() => page.evaluate(() => location.hash)).toContain("moving=0&fold=1.3");
    await page.reload();
    await page.waitForSelector("html[data-ready=true]", { state: "attached" });
    expect(await shape(page)).toEqual(left);
    await page.getByRole("searchbox").fill("e");
    await expect.poll(() => page.evaluate(() => location.hash)).toContain("search=e");
  });
});

test("objects of the same name have buttons of different names", async () => {
  const page = await browser.open({ trails: ["|a|hand", "|b|hand"].map((source) => arc("hand", { source })) });
  expect(await page.locator(".toggle").evaluateAll((all) => all.map((e) => e.getAttribute("aria-label")))).toEqual(
    ["Show a|hand", "Solo a|hand", "Show b|hand", "Solo b|hand"]);
});

describe("the list by keyboard", () => {
  const focused = (page: Page) => page.evaluate(() => document.activeElement!.getAttribute("aria-label") ?? document.activeElement!.textContent);

  test("is one stop of the tab key, within which the arrows go", async () => {
    const page = await browser.open(figures());
    expect(await page.locator('.objects [tabindex="0"]').count()).toBe(1);
    await cell(page, "hand_L").focus();
    await press(page, "ArrowDown", "ArrowDown");
    expect(await focused(page)).toBe("Foot.L");
    await press(page, "End", "ArrowUp", "ArrowUp");
    expect(await focused(page)).toBe("hand_R");
    await press(page, "ArrowRight");
    expect(await focused(page)).toBe("Show hand_R");
    await press(page, "ArrowRight", "ArrowRight", "ArrowUp");
    expect(await focused(page)).toBe("Solo hand_L");
    expect(await page.locator('.objects [tabindex="0"]').count()).toBe(1);
    await expectState(page, "frame", 1); // the arrows were the list's
  });

  test("selects with Space, Enter, Shift and Ctrl+A", async () => {
    const page = await browser.open(figures());
    await cell(page, "hand_L").focus();
    await press(page, "ArrowDown", "Enter");
    await expectState(page, "selected", [1]);
    await press(page, "ArrowDown", "ArrowDown", " ");
    await expectState(page, "selected", [1, 3]);
    await press(page, "Home", "Enter", "Shift+ArrowDown", "Shift+ArrowDown");
    await expectState(page, "selected", [0, 1, 2]);
    await press(page, "Control+a");
    await expectState(page, "selected", [0, 1, 2, 3]);
    await expectState(page, "playing", false);
  });

  test("presses the buttons of a row", async () => {
    const page = await browser.open(figures());
    await cell(page, "hand_L").focus();
    await press(page, "ArrowDown", "ArrowRight", "Enter");
    await expectState(page, "hidden", [1]);
    await press(page, "ArrowRight", " ");
    await expectState(page, "solo", [1]);
    await expectState(page, "playing", false);
  });

  test("stays in what the search leaves", async () => {
    const page = await browser.open(figures());
    await page.getByRole("searchbox").fill("hand");
    await cell(page, "hand_L").focus();
    await press(page, "ArrowDown", "ArrowDown", "ArrowDown");
    expect(await focused(page)).toBe("hand_R");
    await page.getByRole("searchbox").fill("head");
    expect(await page.locator('.objects [tabindex="0"]').textContent()).toBe("head");
  });
});

describe("a list of any objects", () => {
  test("names are text, whatever they look like", async () => {
    const names = ["<script>document.title='owned'</script>", "<img src=x onerror=\"document.title='owned'\">", "</script><h1>x</h1>", "a\u2028b & \"c\" 'd'"];
    const page = await browser.open({
      scene: "<img src=x onerror=alert(1)>.ma", trails: names.map((name) => arc(name, { warnings: [`<b>${name}</b>`], source: `|${name}` })),
    });
    await press(page, "Control+a", "r");
    expect(await page.locator(".object .name").allTextContents()).toEqual(names);
    expect(await page.title()).toBe("<img src=x onerror=alert(1)>.ma: motion trails");
    expect(await page.locator("h1").allTextContents()).toEqual(["<img src=x onerror=alert(1)>.ma"]);
    expect(await page.locator("#app img, #app script, #app b").count()).toBe(0);
    expect(await page.locator(".reference-name").textContent()).toBe(`relative to ${names[0]}`);
  });

  test("an object that is selected elsewhere comes into sight, and is where a selection with Shift begins", async () => {
    const page = await browser.open({ trails: Array.from({ length: 60 }, (_, i) => arc(`object_${i}`)) });
    const select = (trail: number) => page.evaluate((index) => window.vantorelixViewer.store.set({ selected: new Set([index]) }), trail);
    const inSight = (name: string) =>
      cell(page, name).evaluate((e) => {
        const [box, list] = [e.getBoundingClientRect(), e.closest(".objects")!.getBoundingClientRect()];
        return box.top >= list.top - 1 && box.bottom <= list.bottom + 1;
      });
    expect(await inSight("object_50")).toBe(false);
    await select(50);
    expect(await inSight("object_50")).toBe(true);
    await cell(page, "object_52").click({ modifiers: ["Shift"] });
    await expectState(page, "selected", [50, 51, 52]);
    await select(2);
    expect(await inSight("object_2")).toBe(true);
  });

  test("of a thousand objects those are selected that a search lists", async () => {
    const page = await browser.open({ trails: Array.from({ length: 1000 }, (_, i) => arc(`object_${i}`)) });
    await page.evaluate(() => {
      window.vantorelixViewer.store.set({ search: "_99" });
      document.querySelector<HTMLElement>(".actions button")!.click();
    });
    expect(await stateOf(page, "selected")).toEqual([99, 990, 991, 992, 993, 994, 995, 996, 997, 998, 999]);
  });
});
