// What stands out, how it is named, and the figure, the window in time and the dots, as far as no browser is needed.

import { describe, expect, test } from "vitest";
import { dimming } from "../src/model/emphasis";
import { bonesOf, onionSkins } from "../src/model/figure";
import { KEPT, readHash, writeHash } from "../src/model/hash";
import { hierarchyOf } from "../src/model/hierarchy";
import { distinctNames } from "../src/model/names";
import type { Vec3 } from "../src/source/trail";
import { eachDot } from "../src/view/primitives/batch";
import { dotStep, framesBetweenDots } from "../src/view/dot_spacing";
import { holdsSamples } from "../src/view/held";
import { Room, shortened } from "../src/view/labels";
import type { Projection } from "../src/view/primitives/projection";
import { between, wholeTrail, windowStrength } from "../src/view/places";
import { makeApp } from "./support/app";
import { arc, figures, points } from "./support/scenes";
import type { TrailInput } from "./support/trails";

const line = (name: string, more: Partial<TrailInput> = {}): TrailInput => ({ name, points: points(24, (i) => [i, 0, 0]), ...more });
const appOf = (...trails: TrailInput[]) => makeApp({ trails, range: [1, 24] });

describe("dimming", () => {
  const dimmed = (selected: number[], hidden: number[] = []) => {
    const app = makeApp(figures());
    app.store.set({ selected: new Set(selected), hidden: new Set(hidden) });
    return [0, 1, 2, 3].filter(dimming(app.store.state));
  };
  test("is of what is not selected", () => expect(dimmed([1, 2])).toEqual([0, 3]));
  test("is of nothing where nothing or everything is selected", () => expect([dimmed([]), dimmed([0, 1, 2, 3])]).toEqual([[], []]));
  test("is of nothing where all that is selected is hidden", () => expect(dimmed([1], [1])).toEqual([]));
});

describe("names", () => {
  const named = (...sources: string[]) => distinctNames(sources.map((source) =>
    ({ ...makeApp({ trails: [line(source.split("|").pop()!)] }).motion.trails[0], source })));
  test("that are equal take as much of the path as tells them apart", () => {
    expect(named("|rig|L|arm|hand", "|rig|R|arm|hand", "|rig|head")).toEqual(["L|arm|hand", "R|arm|hand", "head"]);
    expect(named("|a|x|tip", "|a|y|tip", "|b|y|tip")).toEqual(["x|tip", "a|y|tip", "b|y|tip"]);
  });
  test("stay as they are where the path tells nothing", () => expect(named("|a|tip", "|a|tip")).toEqual(["tip", "tip"]));
});

describe("a label", () => {
  test("is shortened in its middle", () => {
    const widthOf = (text: string) => 10 * [...text].length;
    expect(shortened("LeftHandIndex", 130, widthOf)).toBe("LeftHandIndex");
    const short = shortened("LeftHandIndex", 90, widthOf);
    expect([short.length, short.startsWith("Left…"), short.endsWith("ndex")]).toEqual([9, true, true]);
  });
  test("stands inside the picture and over no other", () => {
    const room = new Room(200, 100);
    const found = Array.from({ length: 40 }, () => room.beside({ x: 190, y: 50 }, 60)).filter((spot) => spot !== null);
    expect(found.length).toBeGreaterThan(2);
    expect(found.length).toBeLessThan(40);
    for (const [i, { x, y }] of found.entries()) {
      expect(x >= 0 && x + 60 <= 200 && y >= 11 && y <= 97).toBe(true);
      for (const other of found.slice(i + 1)) expect(Math.abs(other.x - x) >= 60 || Math.abs(other.y - y) >= 14).toBe(true);
    }
    expect(room.beside({ x: 100, y: 50 }, 195)).toBe(null);
  });
});

describe("bones", () => {
  const rig = () => appOf(line("hips"), line("chest", { parent: "|hips" }), line("arm", { parent: "|chest" }),
    line("hand", { parent: "|arm" }), line("prop"));
  test("go from each object to the nearest one above it that is shown", () => {
    const app = rig();
    expect(bonesOf(hierarchyOf(app.motion.trails), app.store.state)).toEqual([[1, 0], [2, 1], [3, 2]]);
    app.store.set({ hidden: new Set([1, 2]) });
    expect(bonesOf(hierarchyOf(app.motion.trails), app.store.state)).toEqual([[3, 0]]);
    app.store.set({ hidden: new Set(), solo: new Set([3, 4]) });
    expect(bonesOf(hierarchyOf(app.motion.trails), app.store.state)).toEqual([]);
  });
});

describe("onion skins", () => {
  const frames = (patch: object) => {
    const app = appOf(arc("a"), arc("b", { keyTimes: [5, 9] }));
    app.store.set({ frame: 10, selected: new Set([0]), ...patch });
    return onionSkins(app);
  };
  test("are off at first", () => expect(frames({})).toEqual([]));
  test("come every few frames, within the range, the nearest last of each side", () => {
    const skins = frames({ onion: "frames", onionEvery: 4, onionBefore: 3, onionAfter: 2 });
    expect(skins.map(({ frame }) => frame)).toEqual([2, 6, 18, 14]);
    expect(skins.map(({ side }) => side)).toEqual([-1, -1, 1, 1]);
    expect(skins[1].strength).toBeGreaterThan(skins[0].strength);
    expect(skins[3].strength).toBeGreaterThan(skins[2].strength);
  });
  test("come at the keys of what is selected", () => {
    expect(frames({ onion: "keys", onionBefore: 1, onionAfter: 1 }).map(({ frame }) => frame)).toEqual([1, 12]);
    expect(frames({ onion: "keys", selected: new Set([1]) }).map(({ frame }) => frame)).toEqual([5, 9]);
    expect(frames({ onion: "keys", frame: 12, onionBefore: 1, onionAfter: 1 }).map(({ frame }) => frame)).toEqual([1, 24]);
  });
});

describe("dots", () => {
  const dotted = (more: Partial<TrailInput>, every: number) => {
    const app = appOf(line("a", more));
    const frames: number[] = [];
    const trail = wholeTrail(app, 0, [0, 0, 0]);
    eachDot(trail, every, (sample) => frames.push(trail.startFrame + sample * trail.frameStep));
    return frames;
  };
  test("lie on whole frames only", () => expect(dotted({ frameStep: 0.25 }, 1)).toEqual([1, 2, 3, 4, 5, 6]));
  test("of every few frames lie on those that the number divides", () => {
    expect(dotted({}, 5)).toEqual([5, 10, 15, 20]);
    expect(dotted({ frameStep: 0.25, startFrame: -2 }, 2)).toEqual([-2, 0, 2]);
  });
  test("come every 1, 2, 5, 10, 20 ... frames", () =>
    expect([0.2, 1, 1.1, 2.5, 5.1, 11, 21, 99].map(dotStep)).toEqual([1, 1, 2, 5, 10, 20, 50, 100]));
});

describe("the frames between dots", () => {
  /** A camera that shows a unit as 10 pixels. */
  const projection = { width: 1000, height: 500, spot: (x: number, y: number) => ({ x: 10 * x, y: 250 + 10 * y }) } as unknown as Projection;
  const between = (at: (i: number) => number, more: Partial<TrailInput> = {}) =>
    framesBetweenDots([wholeTrail(appOf({ name: "a", points: points(200, (i) => [at(i), 0, 0]), ...more }), 0, [0, 0, 0])], () => 4, projection);
  test("leave a pixel between dots", () => {
    expect(between((i) => i * 0.5)).toBe(1);
    expect(between((i) => i * 0.49)).toBe(2);
    expect(between((i) => i * 0.11)).toBe(5);
    expect(between((i) => i * 0.49, { frameStep: 0.25 })).toBe(1);
  });
  test("do not come from where an object holds, nor from what is a spot in the picture", () => {
    expect(between((i) => Math.max(0, i - 100) * 0.6)).toBe(1);
    expect(between((i) => i * 0.005)).toBe(1);
  });
});

describe("a window in time", () => {
  test("is the samples between two frames, and the keys", () => {
    const app = appOf(line("a", { frameStep: 0.5, keyTimes: [1, 4, 9], keyPoints: [[0, 0, 0], [6, 0, 0], [16, 0, 0]] }));
    const part = between(wholeTrail(app, 0, [0, 0, 0]), 3, 5);
    expect([part.first, part.startFrame, [...part.places].filter((_, i) => i % 3 === 0)]).toEqual([4, 3, [4, 5, 6, 7, 8]]);
    expect([[...part.keyTimes], [...part.keyPlaces].map(Math.round)]).toEqual([[4], [6, 0, 0]]);
  });
  test("is empty outside of the trail", () =>
    expect([-9, 40].map((from) => between(wholeTrail(appOf(line("a")), 0, [0, 0, 0]), from, from + 3).places.length)).toEqual([0, 0]));
  test("fades to both sides", () => {
    const { state } = makeApp(figures()).store;
    const at = (frame: number) => windowStrength({ ...state, frame: 10, windowBefore: 4, windowAfter: 9 }, frame);
    expect(at(10)).toBe(1);
    expect([at(9) > at(7), at(7) > at(6), at(6) > 0, at(12) > at(8), at(12) < 1]).toEqual([true, true, true, true, true]);
  });
});

describe("a box", () => {
  const held = (points: Vec3[]) =>
    // Turned by 45 degrees about y, twice as large, and moved along x.
    holdsSamples({ name: "|b", matrix: [1.4142, 0, -1.4142, 0, 0, 2, 0, 0, 1.4142, 0, 1.4142, 0, 10, 0, 0, 1], low: [-1, -1, -1], high: [1, 1, 1] },
      makeApp({ trails: [{ name: "a", points }] }).motion);
  test("holds a sample that is in it as it is turned", () => {
    expect(held([[0, 0, 0], [12.7, 0, 0]])).toBe(true);
    expect(held([[0, 0, 0], [11.9, 0, 1.9]])).toBe(false);
    expect(held([[8, 5, 0], [NaN, NaN, NaN]])).toBe(false);
  });
});

test("a link keeps bones, window and onion skins, and takes no nonsense", () => {
  const initial = makeApp(figures()).store.state;
  const patch = { showBones: false, window: true, windowBefore: 3, windowAfter: 0, onion: "keys", onionEvery: 7, onionBefore: 1, onionAfter: 9 } as const;
  expect(readHash(writeHash({ ...initial, ...patch }, initial), initial, 4)).toEqual(patch);
  expect(KEPT).toEqual(expect.arrayContaining(Object.keys(patch)));
  expect(readHash("windowBefore=-1&windowAfter=1.5&onionEvery=0&onion=some&onionBefore=9999", initial, 4)).toEqual({});
});
