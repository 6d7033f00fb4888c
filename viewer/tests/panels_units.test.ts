import { describe, expect, test } from "vitest";
import { markColor, objectColor } from "../src/model/colors";
import { frameText, lengthText, unitName, niceStep } from "../src/model/format";
import { hierarchyOf } from "../src/model/hierarchy";
import { distinctNames } from "../src/model/names";
import { outline } from "../src/model/outline";
import { following, panned, zoomed } from "../src/model/time_span";
import { frameScale, LEFT, RIGHT, ticks } from "../src/panels/frame_scale";
import { summary } from "../src/panels/graph";
import { curveOf, extremes } from "../src/panels/graph_curves";
import { matcher } from "../src/model/search";
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

  test("of many stars ends soon where nothing matches", { timeout: 5000 }, () => {
    expect(finds(`${"*a".repeat(24)}*b`, "a".repeat(60))).toBe(false);
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
    const curve = curveOf({ values: Float64Array.of(3, 7), startFrame: 2, frameStep: 1 }, scale, LEFT + RIGHT + 100);
    const at = (frame: number) => curve.high[Math.floor(scale.x(frame))];
    expect(at(1.9)).toBeNaN();
    expect([at(2.05), at(2.95), at(3.05), at(3.95)]).toEqual([3, 3, 7, 7]);
    expect(at(4.1)).toBeNaN();
  });

  test("keeps the least and the most of what shares a pixel", () => {
    const spacing = Float64Array.from({ length: 1000 }, (_, i) => (i === 555 ? 100 : i === 556 ? 0 : 5));
    const curve = curveOf({ values: spacing, startFrame: 0, frameStep: 0.01 }, scale, LEFT + RIGHT + 100);
    const column = Math.floor(scale.x(5.55));
    expect([curve.low[column], curve.high[column]]).toEqual([0, 100]);
    expect([curve.low[column - 1], curve.high[column - 1]]).toEqual([5, 5]);
  });

  test("leaves gaps where nothing is finite", () => {
    const curve = curveOf({ values: Float64Array.of(1, NaN, 2), startFrame: 0, frameStep: 1 }, scale, LEFT + RIGHT + 100);
    expect(curve.high[Math.floor(scale.x(1.5))]).toBeNaN();
    expect(curve.high[Math.floor(scale.x(2.5))]).toBe(2);
    const mixed = curveOf({ values: Float64Array.of(4, NaN, 2, NaN), startFrame: 5, frameStep: 0.02 }, scale, LEFT + RIGHT + 100);
    expect([mixed.low, mixed.high].map((of) => of[Math.floor(scale.x(5))])).toEqual([2, 4]); // all four in one column
  });

  test("knows its least and most", () => {
    expect(extremes(Float64Array.of(NaN, 4, 1, 9, 1))).toEqual({ least: 2, most: 3 });
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

describe("names", () => {
  const names = (...sources: string[]) => distinctNames(sources.map((source) => ({ name: source.split("|").pop()!, source }) as Trail));

  test("are told apart by as much of the path as that needs", () => {
    expect(names("|a|x", "|b|y")).toEqual(["x", "y"]);
    expect(names("|a|x", "|b|x", "|b|y")).toEqual(["a|x", "b|x", "y"]);
    expect(names("|l|arm|x", "|r|arm|x", "|r|leg|x")).toEqual(["l|arm|x", "r|arm|x", "leg|x"]);
    expect(names("|x", "|g|x")).toEqual(["x", "g|x"]);
  });
});

describe("the outline", () => {
  const trails = (...parents: (string | null)[]) => parents.map((parent, i) => ({ source: `${i}`, parent }) as Trail);
  const rows = (list: Trail[], fits: (i: number) => boolean, folded: number[]) =>
    outline(hierarchyOf(list), fits, (i) => folded.includes(i)).map(({ trail, depth, fits, open, place, siblings }) =>
      [trail, depth, fits, open, `${place}/${siblings}`]);

  test("puts what hangs from an object under it, though it comes earlier in the scene", () => {
    expect(rows(trails("2", null, null, "2"), () => true, [])).toEqual([
      [1, 0, true, undefined, "1/2"], [2, 0, true, true, "2/2"], [0, 1, true, undefined, "1/2"], [3, 1, true, undefined, "2/2"]]);
  });

  test("leaves out what does not fit, but for what leads to what fits", () => {
    expect(rows(trails(null, "0", "1", "0"), (i) => i === 2, [])).toEqual([
      [0, 0, false, true, "1/1"], [1, 1, false, true, "1/1"], [2, 2, true, undefined, "1/1"]]);
    expect(rows(trails(null, "0", "1", "0"), (i) => i === 2, [1])).toEqual([[0, 0, false, true, "1/1"], [1, 1, false, false, "1/1"]]);
  });
});

describe("the colours that mark objects", () => {
  test("differ among eight that are selected, and are their own where they can be", () => {
    const selected = new Set([0, 8, 1, 16, 2, 3, 4, 5]);
    const colors = [...selected].map((trail) => markColor(trail, selected));
    expect(new Set(colors).size).toBe(8);
    expect(markColor(0, selected)).toBe(objectColor(0));
    expect(markColor(9, selected)).toBe(objectColor(1)); // not selected
    const few = new Set([4, 12]);
    expect([markColor(4, few), markColor(12, few)]).toEqual([objectColor(4), objectColor(5)]);
  });
});

describe("the part of the time that is seen", () => {
  const whole = [1, 101] as const;

  test("is zoomed around a frame, which keeps its place", () => {
    const [first, last] = zoomed(whole, whole, 26, 0.5)!;
    expect([first, last]).toEqual([13.5, 63.5]);
    expect((26 - first) / (last - first)).toBe(0.25);
    expect(zoomed([13.5, 63.5], whole, 26, 4)).toBeNull(); // everything
    expect(zoomed([10, 13], whole, 11, 0.1)).toEqual([11 - 2 / 3, 13 - 2 / 3]); // never under two frames
  });

  test("stays within the whole", () => {
    expect(panned([20, 40], whole, 500)).toEqual([81, 101]);
    expect(panned([20, 40], whole, -500)).toEqual([1, 21]);
  });

  test("turns on to a frame that leaves it", () => {
    expect(following([20, 40], whole, 30)).toEqual([20, 40]);
    expect(following([20, 40], whole, 41)).toEqual([40, 60]);
    expect(following([50, 70], whole, 49)).toEqual([30, 50]);
    expect(following([50, 70], whole, 5)).toEqual([4, 24]); // from far away, as where playing begins again
  });
});

test("numbers of any size can be read", () => {
  expect([1e300, 1e-30, 1e12, 88.99992, -1.23456e20, 0, 12345678].map(lengthText)).toEqual(["1e300", "1e-30", "1e12", "89", "-1.235e20", "0", "1.235e7"]);
  expect([1e300, 1e-30, 1e12, 88.99992, -0.0001].map(frameText)).toEqual(["1e300", "0", "1000000000000", "89", "0"]);
});

test("numbers have the digits that count", () => {
  expect([1, 1.5, 1.23456].map(frameText)).toEqual(["1", "1.5", "1.235"]);
  expect([1234567, 0.000123456, NaN].map(lengthText)).toEqual(["1235000", "0.0001235", "none"]);
  expect(["cm", "unknown"].map(unitName)).toEqual(["cm", "units"]);
});
