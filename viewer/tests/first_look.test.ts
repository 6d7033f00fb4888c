// What a page shows before anybody has chosen anything.

import { describe, expect, test } from "vitest";
import { firstSelection } from "../src/model/first_look";
import { framing } from "../src/model/framing";
import { hierarchyOf } from "../src/model/hierarchy";
import type { ViewName } from "../src/model/state";
import type { Vec3 } from "../src/source/trail";
import { makeApp } from "./support/app";
import { project } from "./support/picture";
import type { TrailInput } from "./support/trails";

const path = (at: (t: number) => Vec3): Vec3[] => Array.from({ length: 24 }, (_, i) => at(i / 23));
const swing = (x: number, y: number, far: number): Vec3[] => path((t) => [x + far * Math.sin(6 * t), y, far * Math.cos(6 * t)]);

/** A body that walks: two hands of two fingers each, a head, two feet, a still prop and a light far away. */
const body = (): TrailInput[] => {
  const part = (name: string, parent: string | null, x: number, y: number, far: number): TrailInput => ({
    name, source: `|${name}`, points: swing(x, y, far), ...(parent ? { parent: `|${parent}` } : {}),
  });
  return [
    part("hips", null, 0, 90, 1), part("chest", "hips", 0, 140, 2), part("head", "chest", 0, 170, 3),
    part("handL", "chest", 70, 130, 20), part("thumbL", "handL", 76, 130, 21), part("indexL", "handL", 80, 130, 22),
    part("handR", "chest", -70, 130, 15), part("thumbR", "handR", -76, 130, 16),
    part("footL", "hips", 15, 5, 30), part("footR", "hips", -15, 5, 31),
    part("prop", null, 300, 0, 0), { name: "light", points: path(() => [1e7, 1e7, 0]) },
  ];
};

const chosen = (trails: TrailInput[]) => {
  const { motion, store } = makeApp({ trails, range: [1, 24] });
  return [...store.state.selected].map((index) => motion.trails[index].name);
};

describe("the first selection", () => {
  test("is the ends that travel most, of each limb one", () => {
    expect(chosen(body())).toEqual(["head", "indexL", "thumbR", "footL", "footR"]);
  });

  test("is at most five, and leaves out what does not move", () => {
    const row = Array.from({ length: 9 }, (_, i) => ({ name: `ball${i}`, points: swing(i, 0, i) }));
    expect(chosen(row)).toEqual(["ball4", "ball5", "ball6", "ball7", "ball8"]);
  });

  test("is the first object where nothing moves", () => {
    expect(chosen([{ name: "a", points: swing(1, 2, 0) }, { name: "b", points: swing(3, 2, 0) }])).toEqual(["a"]);
    expect(chosen([])).toEqual([]);
  });

  test("counts a tremble as still, and a small motion beside a light far away as motion", () => {
    const { motion } = makeApp({ trails: [...body(), { name: "tremble", points: swing(0, 0, 1e-4) }] });
    const still = motion.trails.filter((_, i) => !motion.moving[i]).map(({ name }) => name);
    expect(still).toEqual(["prop", "light", "tremble"]);
  });

  test("finds the same in a relative view, where the other object stands still", () => {
    const { motion } = makeApp({ trails: body(), range: [1, 24] });
    motion.relativeTo(9);
    expect(motion.moving[9]).toBe(false);
    expect([...firstSelection(motion, 1, 24)]).not.toContain(9);
  });
});

describe("the hierarchy", () => {
  test("takes a parent that is not there, or that closes a circle, for none", () => {
    const { motion } = makeApp({ trails: [
      { name: "a", parent: "|c", points: swing(0, 0, 1) }, { name: "b", parent: "|a", points: swing(0, 0, 1) },
      { name: "c", parent: "|b", points: swing(0, 0, 1) }, { name: "d", parent: "|gone", points: swing(0, 0, 1) },
    ] });
    expect(hierarchyOf(motion.trails)).toEqual({ parents: [null, 0, 1, null], children: [[1], [2], [], []] });
  });
});

describe("framing", () => {
  const views: ViewName[] = ["persp", "front", "side", "top"];
  const scenes: Record<string, TrailInput[]> = {
    "a body": body(), "a line": [{ name: "a", points: path((t) => [100 * t, 3 * t, 40 * t]) }],
    "a helix far away": [{ name: "a", points: path((t) => [1e6 + 5 * Math.sin(20 * t), 1e6 + t, 5 * Math.cos(20 * t)]) }],
    "something tiny": [{ name: "a", points: path((t) => [1e-6 * t, 1e-6 * t * t, -1e-6 * t]) }],
  };
  const cases = Object.keys(scenes).flatMap((name) => views.flatMap((view) => [0.5, 1, 2.5].map((aspect) => [name, view, aspect] as const)));

  test.each(cases)("of %s in the %s view at %d fills the picture and leaves nothing out", (name, view, aspect) => {
    const { motion } = makeApp({ trails: scenes[name] });
    const trails = motion.thatMove(motion.trails.map((_, index) => index));
    const pose = framing(motion, trails, "y", view, aspect, { azimuth: 33, elevation: 21 });
    const [width, height] = [600 * aspect, 600];
    const spots = trails.flatMap((index) => {
      const points = motion.shownPoints(index);
      return Array.from({ length: points.length / 3 }, (_, i) =>
        project(pose, [points[3 * i], points[3 * i + 1], points[3 * i + 2]], width, height));
    });
    const side = (of: "x" | "y") => spots.map((spot) => spot[of]);
    const [across, up] = [(Math.max(...side("x")) - Math.min(...side("x"))) / width, (Math.max(...side("y")) - Math.min(...side("y"))) / height];
    expect(Math.max(across, up)).toBeGreaterThan(0.7);
    expect(Math.min(...side("x"), ...side("y"))).toBeGreaterThan(0);
    expect(Math.max(...side("x")) / width).toBeLessThan(1);
    expect(Math.max(...side("y")) / height).toBeLessThan(1);
  });

  test("of something without extent still shows it in the middle", () => {
    const { motion } = makeApp({ trails: [{ name: "a", points: path(() => [5, 6, 7]) }] });
    const pose = framing(motion, [0], "y", "persp", 1.5, { azimuth: 0, elevation: 0 });
    expect(pose.target).toEqual([5, 6, 7]);
    expect(pose.distance).toBeGreaterThan(0);
    const trembling = makeApp({ trails: [{ name: "a", points: path((t) => [5 + 1e-15 * t, 6, 7]) }] });
    expect(framing(trembling.motion, [0], "y", "persp", 1.5, { azimuth: 0, elevation: 0 }).distance).toBe(pose.distance);
  });
});
