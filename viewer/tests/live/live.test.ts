// Pages that hold the engine: scenes that are dropped on them, and keys that are dragged.

import { readFileSync, readdirSync } from "node:fs";
import { basename } from "node:path";
import type { Page } from "playwright-core";
import { describe, expect, test } from "vitest";
import type { Vec3 } from "../../src/source/trail";
import { useBrowser } from "../support/browser";
import { temporaryFolder } from "../support/files";
import {
  describeLive, drop, exact, filesOf, keysOf, nativeBits, nativeObstacle, nativeRefusal, openEmpty, openLive, others, shownBits, shows,
} from "../support/live";
import { aim, CHANNELS, dragBy, keysAsEdits, PATIENT, placeOf, step } from "../support/handles";
import { project, type Pose } from "../support/picture";
import { example, run } from "../support/program";
import { press } from "../support/read";

const browser = useBrowser();
const file = temporaryFolder();
const examples = readdirSync(example(".")).filter((name) => /\.(bvh|ma|fbx|gltf)$/.test(name)).map((name) => example(name));
const text = (name: string, content: string) => ({ name, bytes: new TextEncoder().encode(content) });

const alertOf = (page: Page) => page.locator(".opening-failure .opening-text").textContent();

describeLive("a page that waits for a scene shows, to the last bit, the trails that the program makes of it:", () => {
  for (const scene of examples)
    test(basename(scene), async () => {
      const page = await openEmpty(browser, file("empty.html"));
      await drop(page, filesOf(scene));
      await shows(page, basename(scene));
      run("trails", scene, "--out", file("x.json"));
      const { trails } = JSON.parse(readFileSync(file("x.json"), "utf8")) as
        { trails: { source: string; points: Vec3[]; key_points: Vec3[]; key_times: number[] }[] };
      const wanted = trails.map(({ source, points, key_points: keyPoints, key_times: keyTimes }) =>
        [source, { points: points.flat().join(), keyPoints: keyPoints.flat().join(), keyTimes: keyTimes.join() }]);
      expect(others(await shownBits(page), Object.fromEntries(wanted))).toEqual([]);
      expect(trails.length).toBeGreaterThan(0);
    });
});

describe("keys that are dragged", () => {
  describeLive("a key that is dragged", () => {
    for (const name of ["bounce.ma", "crane.gltf"])
      test(`moves the trails of ${name} as the native engine does after the same edit, and undo brings the first bits back`, async () => {
        const page = await openLive(browser, file("live.html"), example(name));
        const first = await shownBits(page);
        const sources = Object.keys(first);
        const { source, at } = (await aim(page))!;
        await dragBy(page, at, 37, -23);
        await step(page, "undoes");
        const keys = await keysAsEdits(page, source, CHANNELS);
        const after = await shownBits(page);
        expect(others(after, first)).toContain(source);
        expect(others(after, nativeBits(example(name), keys, sources))).toEqual([]);
        expect(others(first, nativeBits(example(name), [], sources))).toEqual([]);
        await press(page, "Control+z");
        await step(page, "redoes");
        expect(others(await shownBits(page), first)).toEqual([]);
        await press(page, "Control+Shift+z");
        await step(page, "undoes");
        expect(others(await shownBits(page), after)).toEqual([]);
      });
  });

  describeLive("while a key is dragged", () => {
    test("it stays under the pointer, along an axis with its key held, and Escape puts it back", async () => {
      const page = await openLive(browser, file("axis.html"), example("bounce.ma"));
      const found = (await aim(page))!;
      const first = await placeOf(page, found);
      const box = (await page.locator(".viewport").boundingBox())!;
      const camera = await page.evaluate(() => window.vantorelixViewer.store.state.camera as Pose);
      const seen = async () => project(camera, await placeOf(page, found) as unknown as Vec3, box.width, box.height);
      await page.mouse.move(found.at.x, found.at.y);
      await page.mouse.down();
      await page.mouse.move(found.at.x + 40, found.at.y + 25, { steps: 3 });
      const away = async () => {
        const { x, y } = await seen();
        return Math.hypot(box.x + x - found.at.x - 40, box.y + y - found.at.y - 25);
      };
      await expect.poll(away, PATIENT).toBeLessThan(0.5);
      await page.keyboard.down("y");
      const across = async () => {
        const [x, , z] = await placeOf(page, found);
        return Math.hypot(x - first[0], z - first[2]);
      };
      await expect.poll(across, PATIENT).toBeLessThan(1e-12);
      expect((await placeOf(page, found))[1]).not.toBe(first[1]);
      await page.keyboard.up("y");
      await press(page, "Escape");
      await expect.poll(() => placeOf(page, found), PATIENT).toEqual(first);
      await page.mouse.up();
      expect(await page.evaluate(() => window.vantorelixViewer.editing!.undoes)).toBe(null);
    });

    test("the engine's reason is said where a key that it would need changes what repeats, and nothing is edited", async () => {
      const page = await openLive(browser, file("repeats.html"), example("prop.ma"));
      const { at } = (await aim(page))!;
      await dragBy(page, at, 37, -23);
      await expect.poll(() => page.locator(".message").textContent(), PATIENT).toContain("would change what the curve repeats there");
      await exact(page);
      expect(await page.evaluate(() => window.vantorelixViewer.editing!.undoes)).toBe(null);
    });

    test("the engine's reason is said where its object only turns", async () => {
      const page = await openLive(browser, file("turns.html"), example("arm.ma"));
      const { source, frame, said } = await page.evaluate(async () => {
        const { editing, motion } = window.vantorelixViewer;
        const index = motion.trails.findIndex(({ name }) => name === "forearm");
        const { source, keyTimes } = motion.trails[index];
        const said = await editing!.beginDrag({ what: "place", trail: index, frame: keyTimes[1] }).then(() => "", (refusal: Error) => refusal.message);
        return { source, frame: keyTimes[1], said };
      });
      expect(said).toBe(nativeObstacle(example("arm.ma"), source, frame));
      expect(said).toContain("forearm");
    });
  });

  describeLive("a key that is pulled by one move of the pointer", () => {
    test("goes there, however soon it is let go", async () => {
      const page = await openLive(browser, file("flick.html"), example("bounce.ma"));
      const found = (await aim(page))!;
      const first = await placeOf(page, found);
      await page.locator(".viewport .overlay").evaluate((canvas, { x, y }) => {
        const send = (type: string, dx: number) => canvas.dispatchEvent(new PointerEvent(type, {
          clientX: x + dx, clientY: y, button: 0, buttons: type === "pointerup" ? 0 : 1, pointerId: 1, bubbles: true,
        }));
        HTMLElement.prototype.setPointerCapture = () => {}; // there is no real pointer to capture
        send("pointerdown", 0);
        send("pointermove", 50);
        send("pointerup", 50);
      }, found.at);
      await step(page, "undoes");
      expect((await placeOf(page, found))[0]).not.toBe(first[0]);
    });
  });
});

describeLive("keys at the current frame", () => {
  test("are inserted without a change of the motion, moved in time, and removed, as natively, one step each", async () => {
    const scene = example("bounce.ma");
    const page = await openLive(browser, file("keys.html"), scene, { hash: "frame=24" });
    const first = await shownBits(page);
    const sources = Object.keys(first);
    const ball = sources.indexOf("|ball");
    await page.evaluate((trail) => window.vantorelixViewer.store.set({ selected: new Set([trail]) }), ball);
    const follow = async (name: string) => {
      await expect.poll(() => page.evaluate(() => window.vantorelixViewer.editing!.undoes), PATIENT).toBe(name);
      await exact(page);
      return shownBits(page);
    };
    await press(page, "Shift+I");
    const inserted = await follow("insert key");
    expect(inserted["|ball"].keyTimes.split(",")).toContain("24");
    const edits: (string | number)[][] = [["insertKeys", "|ball", "", 24]];
    expect(others(inserted, nativeBits(scene, edits, sources))).toEqual([]);
    await press(page, "Shift+}");
    const moved = await follow("move key in time");
    edits.push(["moveKeys", "|ball", "", 24, 25]);
    expect(others(moved, nativeBits(scene, edits, sources))).toEqual([]);
    await expect.poll(() => page.evaluate(() => window.vantorelixViewer.store.state.frame)).toBe(25);
    const channels = ["translate", "rotate", "scale"].flatMap((kind) => ["X", "Y", "Z"].map((axis) => kind + axis));
    for (const channel of channels)
      if ((await keysOf(page, "|ball", channel)).some(([frame]) => frame === 25)) edits.push(["remove", "|ball", channel, 25]);
    await press(page, "Delete");
    const removed = await follow("remove key");
    expect(edits.length).toBeGreaterThan(2);
    expect(others(removed, nativeBits(scene, edits, sources))).toEqual([]);
    expect(removed["|ball"].keyTimes).toBe(first["|ball"].keyTimes);
    for (const name of ["move key in time", "insert key"]) {
      await press(page, "Control+z");
      await follow(name);
    }
    await press(page, "Control+z");
    await expect.poll(() => page.evaluate(() => window.vantorelixViewer.editing!.undoes)).toBe(null);
    await exact(page);
    expect(others(await shownBits(page), first)).toEqual([]);
  });
});

describeLive("a file that cannot be read", () => {
  test("is refused in the words of the native engine, and what was shown stays", async () => {
    const page = await openEmpty(browser, file("empty.html"));
    const [whole] = filesOf(example("walk.bvh"));
    await drop(page, [whole]);
    await shows(page, "walk.bvh");
    const before = await shownBits(page);
    for (const damaged of [{ ...whole, bytes: whole.bytes.subarray(0, whole.bytes.length >> 1) }, text("notes.txt", "shopping list")]) {
      await drop(page, [damaged]);
      await expect.poll(() => alertOf(page), PATIENT).toBe(nativeRefusal([damaged]));
      expect(nativeRefusal([damaged])).not.toBe("");
      expect(others(await shownBits(page), before)).toEqual([]);
    }
    await drop(page, filesOf(example("bounce.ma")));
    await shows(page, "bounce.ma");
    expect(await page.locator(".opening-failure").isVisible()).toBe(false);
  });

  test("is one of several scenes, of which the page asks for one", async () => {
    const page = await openEmpty(browser, file("empty.html"));
    await drop(page, [...filesOf(example("walk.bvh")), text("other.bvh", "")]);
    await expect.poll(() => alertOf(page), PATIENT).toContain("2 are scenes: drop one scene");
  });
});

describeLive("a scene that is dropped again with its objects in another order", () => {
  test("keeps what was selected and hidden, by the objects' paths", async () => {
    const moved = (name: string) => `createNode transform -n "${name}";\ncreateNode animCurveTL -n "${name}_x";\n` +
      `  setAttr -s 3 ".ktv[0:2]" 1 0 10 5 20 ${name.length};\nconnectAttr "${name}_x.o" "${name}.tx";\n`;
    const scene = (...names: string[]) =>
      text("three.ma", `//Maya ASCII 2022 scene\nrequires maya "2022";\n${names.map(moved).join("")}`);
    const chosen = (page: Page) => page.evaluate(() => {
      const { motion, store } = window.vantorelixViewer;
      const named = (set: ReadonlySet<number>) => [...set].map((trail) => motion.trails[trail].source);
      return { order: motion.trails.map(({ source }) => source), selected: named(store.state.selected), hidden: named(store.state.hidden) };
    });
    const page = await openEmpty(browser, file("empty.html"));
    await drop(page, [scene("first", "second", "third")]);
    await shows(page, "three.ma");
    await page.evaluate(() => window.vantorelixViewer.store.set({ selected: new Set([1]), hidden: new Set([0]), frame: 10 }));
    await drop(page, [scene("third", "second", "other", "first")]);
    await expect.poll(async () => (await chosen(page)).order, PATIENT).toEqual(["|third", "|second", "|other", "|first"]);
    expect(await chosen(page)).toMatchObject({ selected: ["|second"], hidden: ["|first"] });
  });
});

describeLive("the names of a scene", () => {
  test("stay text, whatever is in them", async () => {
    const name = "<img/src=x/onerror=document.title=1>";
    const scene = `HIERARCHY\nROOT ${name}\n{\nOFFSET 0 0 0\nCHANNELS 3 Xposition Yposition Zposition\n}\n` +
      "MOTION\nFrames: 3\nFrame Time: 0.04\n0 0 0\n1 2 3\n4 5 6\n";
    const page = await openEmpty(browser, file("empty.html"));
    await drop(page, [text("<b>.bvh", scene)]);
    await shows(page, "<b>.bvh");
    await expect.poll(() => page.locator(".object .name").first().textContent()).toBe(name);
    await drop(page, [text("<i>.bvh", scene.slice(0, -8))]);
    await expect.poll(() => alertOf(page), PATIENT).toContain("<i>.bvh");
    expect(await page.locator("img, b, .opening-failure i").count()).toBe(0);
    expect(await page.title()).not.toBe("1");
  });
});

const policyOf = (page: string) => /http-equiv="Content-Security-Policy" content="([^"]*)"/.exec(page)![1];

describeLive("the policy", () => {
  test("of a sent page is the built page's own, and a live page's lets it compile and start the engine, and nothing else", () => {
    run("trails", example("bounce.ma"), "--out", file("sent.html"));
    run("page", "--out", file("live.html"), "--no-open");
    const built = readFileSync(process.env.VANTORELIX_PAGE ?? "dist/index.html", "utf8");
    const [before, after] = built.split("<!--trails-->");
    const sent = readFileSync(file("sent.html"), "utf8"), live = readFileSync(file("live.html"), "utf8");
    expect(sent.startsWith(before) && sent.endsWith(after)).toBe(true);
    expect(sent).not.toContain('id="engine-');
    const script = /script-src '[^']*'/.exec(policyOf(built))![0];
    expect(policyOf(live)).toBe(policyOf(built).replace(script, `${script} 'wasm-unsafe-eval'`) + "; worker-src blob:");
  });
});
