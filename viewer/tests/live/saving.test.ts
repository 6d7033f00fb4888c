// Animation that was edited in a page, saved: read back by the native engine.

import { readFileSync, writeFileSync } from "node:fs";
import type { Page } from "playwright-core";
import { describe, expect, test } from "vitest";
import { useBrowser } from "../support/browser";
import { temporaryFolder } from "../support/files";
import { aim, CHANNELS, dragBy, keysAsEdits, step } from "../support/handles";
import { describeLive, drop, nativeBits, nativeWritten, openEmpty, openLive, others, pull, puttingKeys, shownBits, shows } from "../support/live";
import { example } from "../support/program";
import { savedBy, still, type SavedFile } from "../support/saved";

const browser = useBrowser();
const file = temporaryFolder();

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

describe("the animation of an edited scene", () => {
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

  const numbersOf = (list: string) => list.split(",").map(Number);

  /** How far apart two lists of numbers are at the most; all of one object's. */
  const apart = (a: readonly number[], b: readonly number[]) => {
    expect(a.length).toBe(b.length);
    return a.reduce((most, value, i) => Math.max(most, Math.abs(value - b[i])), 0);
  };

  describeLive("a figure of which a key was moved", () => {
    test("is saved as the BVH that the native engine writes, in which it is where it was at every frame", async () => {
      const [scene, hips] = [example("walk.bvh"), "|Hips"];
      const page = await openLive(browser, file("walk.html"), scene);
      const before = await shownBits(page);
      await pull(page, hips, 12, [30, 80.25, -5]); // no pointer: the keys of a motion with one at every frame are not drawn
      const shown = await shownBits(page);
      expect(others(shown, before)).toContain(hips);
      const { name, content } = await saveAs(page, "BVH");
      expect(name).toBe("walk.bvh");
      expect(content.equals(nativeWritten(scene, await puttingKeys(page, hips, CHANNELS), "bvh").text)).toBe(true);
      writeFileSync(file("walked.bvh"), content);
      const read = nativeBits(file("walked.bvh"), [], Object.keys(shown));
      const atFrames = (points: string) => numbersOf(points).filter((_, i) => Math.floor(i / 3) % 2 === 0); // of two samples a frame
      for (const source of Object.keys(shown)) expect(atFrames(read[source].points), source).toEqual(atFrames(shown[source].points));
    });
  });

  describeLive("a glTF scene in which a key was dragged", () => {
    test("is saved as the file that the native engine writes, which gives the same trails to what 32 bits hold", async () => {
      const scene = example("crane.gltf");
      const page = await openLive(browser, file("crane.html"), scene);
      const before = await shownBits(page);
      const { source, at } = (await aim(page))!;
      await dragBy(page, at, 37, -23);
      await step(page, "undoes");
      const shown = await shownBits(page);
      expect(others(shown, before)).toContain(source);
      const { name, content } = await saveAs(page, "glTF");
      expect(name).toBe("crane.glb");
      expect(content.equals(nativeWritten(scene, await keysAsEdits(page, source, CHANNELS), "glb").text)).toBe(true);
      writeFileSync(file("craned.glb"), content);
      const read = nativeBits(file("craned.glb"), [], Object.keys(shown));
      for (const object of Object.keys(shown)) {
        const wanted = numbersOf(shown[object].points);
        expect(apart(numbersOf(read[object].points), wanted), object).toBeLessThanOrEqual(1e-6 * Math.max(...wanted.map(Math.abs)));
      }
    });
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
