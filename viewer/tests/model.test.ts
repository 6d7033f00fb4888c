import { describe, expect, test } from "vitest";
import { COMMANDS, command, keyLabel, keyName, shownKeyTimes } from "../src/model/commands";
import { readHash, writeHash } from "../src/model/hash";
import { nearestSample, worldPosition } from "../src/model/motion";
import { dueFrame } from "../src/model/player";
import { Store, toggled, type ViewState } from "../src/model/state";
import type { Vec3 } from "../src/source/trail";
import { makeApp } from "./support/app";

const along = (count: number, at: (i: number) => Vec3): Vec3[] => Array.from({ length: count }, (_, i) => at(i));
const line = (count: number, speed = 1) => along(count, (i) => [speed * i, 0, 0]);

/** Equal but for the rounding of the positions in the file. */
const near = (found: ArrayLike<number>, wanted: readonly number[]) => {
  expect(found.length).toBe(wanted.length);
  wanted.forEach((value, i) => expect(found[i]).toBeCloseTo(value, 6));
};

describe("motion", () => {
  test("is linear between samples, and held before the first and after the last", () => {
    const [trail] = makeApp({ trails: [{ name: "a", points: [[0, 0, 0], [2, 4, 6]], startFrame: 10, frameStep: 2 }] }).motion.trails;
    near(worldPosition(trail, 10.5), [0.5, 1, 1.5]);
    near(worldPosition(trail, 3), [0, 0, 0]);
    near(worldPosition(trail, 99), [2, 4, 6]);
  });

  test("finds the nearest sample, never one that is not there", () => {
    const [trail] = makeApp({ trails: [{ name: "a", points: line(5), startFrame: 10, frameStep: 0.5 }] }).motion.trails;
    expect([9, 10.2, 10.3, 12, 50].map((frame) => nearestSample(trail, frame))).toEqual([0, 0, 1, 4, 4]);
  });

  test("measures the distance a frame, whatever lies between two samples", () => {
    const { motion } = makeApp({ trails: [{ name: "a", points: [[0, 0, 0], [3, 4, 0], [3, 4, 2]], frameStep: 0.5 }] });
    near(motion.spacing(0), [10, 4]);
    expect(motion.speed(0, 1)).toBeCloseTo(7, 6);
    expect(motion.speed(0, 0)).toBeCloseTo(10, 6);
    expect(motion.speed(0, 2)).toBeCloseTo(4, 6);
  });

  test("has no spacing beside a sample that is not finite, and the speed of the other side there", () => {
    const { motion } = makeApp({ trails: [{ name: "a", points: [[0, 0, 0], [1, 0, 0], [NaN, 0, 0], [5, 0, 0]] }] });
    expect([...motion.spacing(0)].map(Number.isNaN)).toEqual([false, true, true]);
    expect(motion.speed(0, 1)).toBeCloseTo(1, 6);
    expect(motion.speed(0, 2)).toBeNaN();
  });

  test("relative to another trail takes that one's position at the same frame away", () => {
    const { motion } = makeApp({
      trails: [
        { name: "slow", points: line(5), startFrame: 1, frameStep: 2 },
        { name: "fast", points: line(5, 3), startFrame: 2, keyTimes: [4] },
      ],
    });
    motion.relativeTo(0);
    near(motion.shownPoints(0), new Array(15).fill(0));
    near(motion.shownPoints(1).filter((_, i) => i % 3 === 0), [-0.5, 2, 4.5, 7, 9.5]);
    near(motion.shownKeyPoints(1), [4.5, 0, 0]);
    near(motion.shownPosition(1, 4.5), [5.75, 0, 0]);
    near(motion.spacing(1), [2.5, 2.5, 2.5, 2.5]);
    motion.relativeTo(null);
    near(motion.spacing(1), [3, 3, 3, 3]);
  });
});

describe("stepping", () => {
  const scene = { range: [1, 10] as [number, number], trails: [
    { name: "a", points: line(10), keyTimes: [1, 4, 8] },
    { name: "b", points: line(10), keyTimes: [2, 4, 9] },
  ] };
  const at = (frame: number, id: string) => {
    const app = makeApp(scene);
    app.store.set({ frame, selected: new Set([0]) });
    command(id).run(app);
    return app.store.state.frame;
  };

  test("goes by whole frames, from between two to the next one's other side", () => {
    expect(at(3, "next-frame")).toBe(4);
    expect(at(3.5, "next-frame")).toBe(4);
    expect(at(3.5, "previous-frame")).toBe(3);
    expect(at(3, "previous-frame")).toBe(2);
  });

  test("stays within what is played", () => {
    expect(at(10, "next-frame")).toBe(10);
    expect(at(1, "previous-frame")).toBe(1);
    const app = makeApp(scene);
    app.store.set({ playFirst: 3, playLast: 7, frame: 5 });
    command("first-frame").run(app);
    expect(app.store.state.frame).toBe(3);
    command("last-frame").run(app);
    expect(app.store.state.frame).toBe(7);
  });

  test("goes by the keys of what is selected, also from between them", () => {
    expect(at(1, "next-key")).toBe(4);
    expect(at(5, "next-key")).toBe(8);
    expect(at(8, "previous-key")).toBe(4);
    expect(at(7.5, "previous-key")).toBe(4);
  });

  test("says when there is no further key, and stays", () => {
    const app = makeApp(scene);
    command("previous-key").run(app);
    expect(app.store.state.frame).toBe(1);
    expect(app.said).toEqual(["No earlier key"]);
  });

  test("goes by the keys of all that is visible when nothing is selected", () => {
    const app = makeApp(scene);
    app.store.set({ selected: new Set([0]) });
    expect(shownKeyTimes(app)).toEqual([1, 4, 8]);
    app.store.set({ selected: new Set() });
    expect(shownKeyTimes(app)).toEqual([1, 2, 4, 8, 9]);
    app.store.set({ hidden: new Set([0]) });
    expect(shownKeyTimes(app)).toEqual([2, 4, 9]);
    app.store.set({ hidden: new Set(), solo: new Set([0]) });
    expect(shownKeyTimes(app)).toEqual([1, 4, 8]);
  });

  test("ends playing", () => {
    const app = makeApp(scene);
    app.store.set({ playing: true });
    command("next-frame").run(app);
    expect(app.store.state.playing).toBe(false);
  });
});

describe("commands", () => {
  test("have an id and keys of their own", () => {
    const keys = COMMANDS.flatMap((each) => each.keys);
    expect(new Set(keys).size).toBe(keys.length);
    expect(new Set(COMMANDS.map((each) => each.id)).size).toBe(COMMANDS.length);
    expect(keys).not.toContain("Shift+?"); // the help's
  });

  test("know a key by what it writes, and digits with Shift by the digit", () => {
    const name = (key: string, code: string, shiftKey = false) => keyName({ key, code, shiftKey } as KeyboardEvent);
    expect(name("!", "Digit1", true)).toBe("Shift+1");
    expect(name("H", "KeyH", true)).toBe("Shift+H");
    expect(name("h", "KeyH")).toBe("h");
    expect(name("ArrowLeft", "ArrowLeft", true)).toBe("Shift+ArrowLeft");
    expect([" ", "f", "Shift+ArrowRight"].map(keyLabel)).toEqual(["Space", "F", "Shift+→"]);
  });

  test("to save a picture says so when that fails", async () => {
    const app = makeApp({ trails: [{ name: "a", points: line(3) }] });
    command("png").run({ ...app, picture: () => Promise.reject(new Error("no memory: close other pages")) });
    await Promise.resolve();
    await Promise.resolve();
    expect(app.said).toEqual(["no memory: close other pages"]);
    expect(app.saved.size).toBe(0);
  });

  test("that need a selection say so without one, and change nothing", () => {
    for (const id of ["hide", "solo", "relative", "csv"]) {
      const app = makeApp({ trails: [{ name: "a", points: line(3) }] });
      app.store.set({ selected: new Set() });
      const before = app.store.state;
      command(id).run(app);
      expect(app.store.state).toBe(before);
      expect(app.said).toEqual(["Nothing is selected: select an object first"]);
      expect(app.saved.size).toBe(0);
    }
  });

  test("show bones, onion skins and a window in time by keys, and say so", () => {
    const app = makeApp({ trails: [{ name: "a", points: line(3) }] });
    const pressed = (key: string, setting: "showBones" | "onion" | "window") => {
      COMMANDS.find(({ keys }) => keys.includes(key))!.run(app);
      return app.store.state[setting];
    };
    expect(["Shift+B", "Shift+B"].map((key) => pressed(key, "showBones"))).toEqual([false, true]);
    expect(["Shift+O", "Shift+O", "Shift+O"].map((key) => pressed(key, "onion"))).toEqual(["frames", "keys", "off"]);
    expect(["Shift+W", "Shift+W"].map((key) => pressed(key, "window"))).toEqual([true, false]);
    expect(app.said).toEqual([
      "No bones", "Bones", "Onion skins at frames", "Onion skins at keys", "No onion skins",
      "Only the frames around the current one", "The whole range",
    ]);
  });

  test("save the selection as a table, named after the scene", async () => {
    const app = makeApp({ scene: "shots/a b.usda", trails: [{ name: 'x,"y"', points: [[0, 0, 0], [1, 2, 2]] }] });
    command("csv").run(app);
    const lines = (await app.saved.get("a_b.usda.csv")!.text()).split("\r\n");
    expect(lines[0]).toBe("source,sample,frame,x,y,z,spacing");
    expect(lines[1]).toBe('"|x,""y""",0,1,0,0,0,3');
    expect(lines.length).toBe(4); // two samples, and nothing after the last line
  });
});

describe("playing", () => {
  test("shows the frame that is due", () => {
    expect(dueFrame(1, 0, 24, 1, 48)).toBe(1);
    expect(dueFrame(1, 0.5, 24, 1, 48)).toBe(13);
    expect(dueFrame(10, 1 / 24, 24, 1, 48)).toBe(11);
  });

  test("begins again after the last frame", () => {
    expect(dueFrame(1, 47 / 24, 24, 1, 48)).toBe(48);
    expect(dueFrame(1, 48 / 24, 24, 1, 48)).toBe(1);
    expect(dueFrame(40, 100, 24, 40, 40)).toBe(40);
  });
});

describe("the hash", () => {
  const app = makeApp({ range: [1, 48], trails: ["a", "b", "c", "d", "e"].map((name) => ({ name, points: line(4) })) });
  const initial = app.store.state;
  const round = (patch: Partial<ViewState>) => {
    const text = writeHash({ ...initial, ...patch }, initial);
    return { text, state: { ...initial, ...readHash(`#${text}`, initial, 5) } };
  };

  test("is empty for what the page begins with", () => expect(writeHash(initial, initial)).toBe(""));

  test("brings everything back that it keeps", () => {
    const patch: Partial<ViewState> = {
      frame: 12.5, playFirst: 3, playLast: 40, selected: new Set([1, 2, 4]), hidden: new Set([0]), solo: new Set([3]),
      relativeTo: 2, colorBy: "object", mode: 3, lineWidth: 4.5, pointSize: 1, showLine: false, showDots: true, ghost: true,
      showKeys: false, showLabels: false, showStatics: false, palette: "safe", theme: "dark",
      camera: { view: "top", target: [1, -2.5, 3e9], distance: 0.125, azimuth: -30, elevation: 90 },
    };
    expect(round(patch).state).toEqual({ ...initial, ...patch });
  });

  test("tells an empty selection from the one at the beginning", () => {
    expect(round({ selected: new Set() }).state.selected.size).toBe(0);
  });

  test("writes neighbours as runs", () => {
    expect(round({ selected: new Set([4, 0, 1, 2]) }).text).toBe("select=0-2.4");
  });

  test("leaves out what makes no sense", () => {
    for (const text of [
      "frame=x", "frame=", "mode=7", "mode=-1", "camera=persp,1,2", "camera=persp,0,0,0,-1,0,0", "camera=up,0,0,0,1,0,0", "width=thin",
      "select=1-", "select=a", "palette=<script>", "theme=pink", "line=2", "relative=99", "__proto__=1", "from=30&to=20",
    ])
      expect(readHash(`#${text}`, initial, 5), text).toEqual({});
  });

  test("leaves out trails that are not there, and brings frames into the range", () => {
    expect(readHash("#select=1.77&hide=3-9&frame=1000", initial, 5)).toEqual({
      selected: new Set([1]), hidden: new Set([3, 4]), frame: 48,
    });
  });

  test("of a stranger names no trail that is not there, however many it lists", () => {
    expect(readHash("#select=0-9999999&hide=4-9999999.4-9999999", initial, 5)).toEqual({
      selected: new Set([0, 1, 2, 3, 4]), hidden: new Set([4]),
    });
  });
});

describe("the store", () => {
  test("tells once, with the names of what differs, and not at all without a difference", () => {
    const { store } = makeApp({ trails: [{ name: "a", points: line(2) }] });
    const calls: string[][] = [];
    const end = store.subscribe((_, changed) => calls.push([...changed]));
    store.set({ frame: 2, search: "x", playing: false });
    store.set({ frame: 2 });
    end();
    store.set({ frame: 3 });
    expect(calls).toEqual([["frame", "search"]]);
  });

  test("calls back only for the keys that were asked for", () => {
    const store: Store = makeApp({ trails: [] }).store;
    let calls = 0;
    store.subscribe(() => ++calls, ["frame"]);
    store.set({ search: "x" });
    store.set({ frame: 5 });
    expect(calls).toBe(1);
  });

  test("makes a set with one item more or less, and leaves the old one", () => {
    const set = new Set([1, 2]);
    expect([...toggled(set, 2)]).toEqual([1]);
    expect([...toggled(set, 3)]).toEqual([1, 2, 3]);
    expect([...set]).toEqual([1, 2]);
  });
});
