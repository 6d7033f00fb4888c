// Animation that was edited in a page, saved: read back by the native engine.

import { readFileSync, writeFileSync } from "node:fs";
import type { Page } from "playwright-core";
import { expect, test } from "vitest";
import { useBrowser } from "../support/browser";
import { temporaryFolder } from "../support/files";
import { describeLive, drop, nativeBits, nativeWritten, openEmpty, openLive, others, pull, puttingKeys, shownBits, shows } from "../support/live";
import { example } from "../support/program";
import { savedBy, type SavedFile } from "../support/saved";

const browser = useBrowser();
const file = temporaryFolder();

const CHANNELS = ["translateX", "translateY", "translateZ"];

const dialog = (page: Page) => page.getByRole("dialog", { name: "Save the animation" });

/** Opens the dialog, chooses a form, and waits until the page knows what that holds. */
async function choose(page: Page, form: string): Promise<string> {
  await page.getByRole("button", { name: "Save as…" }).click();
  await dialog(page).getByRole("radio", { name: form, exact: true }).check();
  const told = dialog(page).getByRole("status");
  await expect.poll(() => told.textContent()).not.toBe("…");
  return (await told.textContent())!;
}

async function saveAs(page: Page, form: string): Promise<SavedFile> {
  await choose(page, form);
  return savedBy(page, () => dialog(page).getByRole("button", { name: "Save", exact: true }).click());
}

/** The scene without its animation curves. */
function still(scene: string): string {
  return readFileSync(scene, "utf8").replace(/^createNode animCurve(?:.|\n)*?(?=^(?!\t))/gm, "").replace(/^connectAttr "[^"]*\.o" .*\n/gm, "");
}

describeLive("a scene in which a key was dragged", () => {
  test("is saved as the curves that the native engine writes, which give the scene that had none the same trails", async () => {
    const scene = example("bounce.ma");
    const page = await openLive(browser, file("bounce.html"), scene);
    const before = await shownBits(page);
    await pull(page, "|ball", 38, [3, 9, -2]);
    const shown = await shownBits(page);
    expect(others(shown, before)).toEqual(["|ball"]);
    const { name, content } = await saveAs(page, "Maya ASCII");
    expect(name).toBe("bounce.curves.ma");
    const written = nativeWritten(scene, await puttingKeys(page, "|ball", CHANNELS), "ma");
    expect(content.equals(written.text)).toBe(true);
    expect(still(scene)).not.toContain("animCurve");
    writeFileSync(file("again.ma"), still(scene) + content.toString());
    expect(others(shown, nativeBits(file("again.ma"), [], Object.keys(shown)))).toEqual([]);
  });

  test("is saved as the script that the native engine writes", async () => {
    const page = await openLive(browser, file("script.html"), example("bounce.ma"));
    await pull(page, "|ball", 38, [3, 9, -2]);
    const { name, content } = await saveAs(page, "Script for Maya");
    expect(name).toBe("bounce.curves.py");
    expect(content.equals(nativeWritten(example("bounce.ma"), await puttingKeys(page, "|ball", CHANNELS), "py").text)).toBe(true);
  });
});

/** A scene that has what no curve holds. */
const DRIVEN = `createNode transform -n "ball";
createNode expression -n "bob";
createNode animCurveTL -n "ball_translateX";
	setAttr -s 2 ".ktv[0:1]"  1 0 10 5;
connectAttr "ball_translateX.o" "ball.tx";
connectAttr "bob.out[0]" "ball.ty";
`;

describeLive("before a scene is saved", () => {
  test("the engine's own sentences say what cannot be written, and nothing is saved where that is refused", async () => {
    writeFileSync(file("driven.ma"), DRIVEN);
    const page = await openEmpty(browser, file("empty.html"));
    await drop(page, [{ name: "driven.ma", bytes: readFileSync(file("driven.ma")) }]);
    await shows(page, "driven.ma");
    const told = await choose(page, "Maya ASCII");
    const { lost } = nativeWritten(file("driven.ma"), [], "ma");
    expect(lost.join()).toContain("driven by the expression bob");
    for (const sentence of lost) expect(told).toContain(sentence);
    await dialog(page).getByRole("button", { name: "Cancel" }).click();
    await drop(page, [{ name: "bounce.ma", bytes: readFileSync(example("bounce.ma")) }]);
    await shows(page, "bounce.ma");
    expect(await choose(page, "Maya ASCII")).toBe("Everything can be written.");
    expect(await page.locator("dialog[open]").count()).toBe(1);
  });
});
