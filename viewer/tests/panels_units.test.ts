import { describe, expect, test } from "vitest";
import { frameText, lengthText, unitName } from "../src/model/format";
import { frameScale, LEFT, niceStep, RIGHT, ticks } from "../src/panels/frame_scale";
import { summary } from "../src/panels/graph";
import { curveOf, extremes } from "../src/panels/graph_curves";
import { matcher } from "../src/panels/search";
import { isCrowded, keyPlaces } from "../src/panels/timeline_drawing";
import type { Trail } from "../src/source/trail";
import { makeApp } from "./support/app";
import { arc, figures } from "./support/scenes";

describe("a search", () => {
  const finds = (search: string, name: string, source = `|${name}`) => matcher(search)({ name, source } as Trail);

  test("finds parts of names and paths, whatever their case", () => {
    expect(finds("ND_l", "hand_L")).toBe(true);
    expect(finds("arms|", "hand_L", "|rig|arms|hand_L")).toBe(true);
    expect(finds("hand_R", "hand_L")).toBe(false);
    expect(finds("  ", "hand_L")).toBe(true);
  });

  test("with a star wants the whole name or path", () => {
    expect(finds("hand*", "hand_L")).toBe(true);
    expect(finds("and*", "hand_L")).toBe(false);
    expect(finds("*_L", "hand_L")).toBe(true);
    expect(finds("*_L", "hand_L_end")).toBe(false);
    expect(finds("|rig*hand*", "hand_L", "|rig|arms|hand_L")).toBe(true);
  });

  test("takes all other characters as they are", () => {
    expect(finds("foot.l", "FootXL")).toBe(false);
    expect(finds("a.c*", "abc")).toBe(false);
    expect(finds("(*)", "(x)")).toBe(true);
    expect(finds("[", "a[0]")).toBe(true);
    expect(finds("a*a", "a")).toBe(false);
  });

  test("of many stars takes no time", () => {
    const begin = performance.now();
    finds(`${"*a".repeat(12)}*b`, "a".repeat(60));
    expect(performance.now() - begin).toBeLessThan(2000);
  });
});

describe("the scale of frames", () => {
  test("has the first frame on the left, the last on the right, and finds its way back", () => {
    const scale = frameScale(1, 25, 1000);
    expect(scale.x(1)).toBe(LEFT);
    expect(scale.x(25)).toBeCloseTo(1000 - RIGHT, 9);
    expect(scale.frame(scale.x(7.25))).toBeCloseTo(7.25, 9);
    expect(scale.pixelsPerFrame).toBeCloseTo((1000 - LEFT - RIGHT) / 24, 9);
  });

  test("puts a range of one frame into the middle", () => {
    const scale = frameScale(5, 5, 1000);
    expect(scale.x(5)).toBeCloseTo((LEFT + 1000 - RIGHT) / 2, 9);
  });

  test("steps by 1, 2 and 5", () => {
    expect([0.03, 0.11, 1, 1.2, 3, 5.1, 20, 21].map(niceStep).map((s) => Number(s.toPrecision(6)))).toEqual([
      0.05, 0.2, 1, 2, 5, 10, 20, 50,
    ]);
    expect(ticks(1, 21, 5)).toEqual([5, 10, 15, 20]);
    expect(ticks(-10, 10, 10)).toEqual([-10, 0, 10]);
    expect(ticks(0.2, 0.4, 1)).toEqual([]);
  });
});

describe("the graph's curve", () => {
  const scale = frameScale(0, 10, LEFT + RIGHT + 100); // ten pixels a frame

  test("draws each stretch from its sample to the next", () => {
    const curve = curveOf({ spacing: Float64Array.of(3, 7), startFrame: 2, frameStep: 1 }, scale, LEFT + RIGHT + 100);
    const at = (frame: number) => curve.high[Math.floor(scale.x(frame))];
    expect(at(1.9)).toBeNaN();
    expect([at(2.05), at(2.95), at(3.05), at(3.95)]).toEqual([3, 3, 7, 7]);
    expect(at(4.1)).toBeNaN();
  });

  test("keeps the least and the most of what shares a pixel", () => {
    const spacing = Float64Array.from({ length: 1000 }, (_, i) => (i === 555 ? 100 : i === 556 ? 0 : 5));
    const curve = curveOf({ spacing, startFrame: 0, frameStep: 0.01 }, scale, LEFT + RIGHT + 100);
    const column = Math.floor(scale.x(5.55));
    expect([curve.low[column], curve.high[column]]).toEqual([0, 100]);
    expect([curve.low[column - 1], curve.high[column - 1]]).toEqual([5, 5]);
  });

  test("leaves gaps where nothing is finite", () => {
    const curve = curveOf({ spacing: Float64Array.of(1, NaN, 2), startFrame: 0, frameStep: 1 }, scale, LEFT + RIGHT + 100);
    expect(curve.high[Math.floor(scale.x(1.5))]).toBeNaN();
    expect(curve.high[Math.floor(scale.x(2.5))]).toBe(2);
    const mixed = curveOf({ spacing: Float64Array.of(4, NaN, 2, NaN), startFrame: 5, frameStep: 0.02 }, scale, LEFT + RIGHT + 100);
    expect([mixed.low, mixed.high].map((of) => of[Math.floor(scale.x(5))])).toEqual([2, 4]); // all four in one column
  });

  test("knows its fastest and slowest stretch", () => {
    expect(extremes(Float64Array.of(NaN, 4, 1, 9, 1))).toEqual({ slowest: 2, fastest: 3 });
    expect(extremes(Float64Array.of(NaN))).toBeNull();
    expect(extremes(new Float64Array())).toBeNull();
  });
});

describe("the graph in words", () => {
  test("names object, value, unit and frame of the fastest and the slowest stretch", () => {
    const app = makeApp({ unit: "unknown", trails: [{ name: "ball", startFrame: 10, points: [[0, 0, 0], [1, 0, 0], [4, 0, 0], [6, 0, 0]] }] });
    expect(summary(app, [0])).toBe(
      "Spacing graph. ball: fastest 3 units per frame from frame 11, slowest 1 units per frame from frame 10.",
    );
  });

  test("says when there is nothing, and does not go on for ever", () => {
    const app = makeApp({ trails: Array.from({ length: 9 }, (_, i) => arc(`o${i}`)) });
    expect(summary(app, [])).toContain("nothing is selected");
    expect(summary(app, [0, 1, 2, 3, 4, 5, 6, 7, 8])).toContain("And 3 more.");
    const alone = makeApp({ trails: [{ name: "still", points: [[0, 0, 0]] }] });
    expect(summary(alone, [0])).toContain("still has no spacing");
  });
});

describe("key marks", () => {
  test("stand once a pixel at most, and only within the range", () => {
    const app = makeApp({ ...figures(), trails: [arc("a", { keyTimes: [-5, 1, 1.001, 12, 30], keyPoints: new Array(5).fill([0, 0, 0]) })] });
    const scale = frameScale(1, 24, 500);
    expect(keyPlaces(app, scale).map((x) => Math.round(scale.frame(x)))).toEqual([1, 12]);
  });

  test("are crowded when they are closer than they are wide", () => {
    expect(isCrowded([0, 10, 20], 11)).toBe(true);
    expect(isCrowded([0, 12, 24], 11)).toBe(false);
    expect(isCrowded([5], 11)).toBe(false);
  });
});

test("numbers have the digits that count", () => {
  expect([1, 1.5, 1.23456].map(frameText)).toEqual(["1", "1.5", "1.235"]);
  expect([1234567, 0.000123456, NaN].map(lengthText)).toEqual(["1235000", "0.0001235", "none"]);
  expect(["cm", "unknown"].map(unitName)).toEqual(["cm", "units"]);
});
