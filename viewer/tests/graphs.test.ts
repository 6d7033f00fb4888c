import { describe, expect, test } from "vitest";
import { graphOf, type GraphName } from "../src/model/graphs";
import { command } from "../src/model/commands";
import { summary } from "../src/panels/graph";
import { measureTitle } from "../src/panels/measures_dialog";
import type { Vec3 } from "../src/source/trail";
import { makeApp } from "./support/app";
import { points } from "./support/scenes";
import type { SceneInput, TrailInput } from "./support/trails";

const FPS = 24;

const scene = (trail: Omit<TrailInput, "name">, more: Partial<SceneInput> = {}) =>
  makeApp({ fps: FPS, range: [1, 48], trails: [{ name: "a", ...trail }], ...more });

const values = (app: ReturnType<typeof makeApp>, name: GraphName, trail = 0) => [...graphOf(app, name).values(trail)];

/** A turn a second around y, of so many samples a frame. */
const circle = (radius: number, samplesPerFrame = 1): Vec3[] =>
  points(48 * samplesPerFrame, (i) => {
    const angle = (2 * Math.PI * i) / (FPS * samplesPerFrame);
    return [radius * Math.cos(angle), 3, radius * Math.sin(angle)];
  });

const OMEGA = 2 * Math.PI;

describe("the graph of a circle", () => {
  test.each([1, 4])("is level at what the formulas say, with %d samples a frame", (samplesPerFrame) => {
    const app = scene({ points: circle(5, samplesPerFrame), frameStep: 1 / samplesPerFrame });
    const known = (name: GraphName) => values(app, name).slice(3, -3);
    for (const [name, wanted] of [["acceleration", 5 * OMEGA ** 2], ["jerk", 5 * OMEGA ** 3], ["curvature", 1 / 5]] as const)
      for (const value of known(name)) expect(Math.abs(value / wanted - 1), name).toBeLessThan(2e-3);
    expect(graphOf(app, "speed").at(0, 10)).toBeCloseTo(5 * OMEGA, 0);
  });

  test("has no derivative within three samples of an end, and of what is not finite", () => {
    const gap = circle(5).map((p, i): Vec3 => (i === 20 ? [NaN, NaN, NaN] : p));
    for (const name of ["acceleration", "jerk", "curvature"] as const) {
      const found = values(scene({ points: gap }), name).map(Number.isFinite);
      expect(found.flatMap((known, i) => (known ? [] : [i])), name).toEqual([0, 1, 2, 17, 18, 19, 20, 21, 22, 23, 45, 46, 47]);
    }
  });
});

test("what stands has no curvature", () => {
  const app = scene({ points: points(40, (i) => (i < 20 ? [0, 0, 0] : circle(5)[i])) });
  expect(values(app, "curvature").slice(3, 17)).toEqual(new Array(14).fill(NaN));
  expect(values(app, "curvature")[30]).toBeCloseTo(0.2, 3);
});

describe("the graph of pops", () => {
  test("is highest at the sample that is off, and says how far in times of what is usual", () => {
    const wave = points(40, (i) => [i, 0.3 * Math.sin(i * 2.1), 0]);
    const app = scene({ points: wave.map(([x, y, z], i): Vec3 => [x, i === 25 ? y + 4 : y, z]) });
    const found = values(app, "pops");
    expect(found.indexOf(Math.max(...found.filter(Number.isFinite)))).toBe(25);
    expect(found[25]).toBeGreaterThan(5);
    const usual = found.filter(Number.isFinite).sort((a, b) => a - b);
    expect((usual[17] + usual[18]) / 2).toBeCloseTo(1, 9); // of 36
  });

  test("is of no object that does not move", () => {
    expect(values(scene({ points: points(20, () => [1, 2, 3]) }), "pops").some(Number.isFinite)).toBe(false);
  });
});

describe("the graph of sliding", () => {
  /** Down for ten frames, and carried along by half a unit a frame, then up. */
  const foot = (up: "y" | "z") =>
    points(20, (i) => (up === "y" ? [0.5 * i, i < 10 ? 1 : 4, 7] : [0.5 * i, 7, i < 10 ? 1 : 4]));

  test.each(["y", "z"] as const)("is the speed along the floor while an object touches it, with %s up", (upAxis) => {
    const app = scene({ points: foot(upAxis), measures: [1, 10] }, { upAxis });
    const found = values(app, "sliding");
    for (let i = 0; i < 9; ++i) expect(found[i]).toBeCloseTo(0.5 * FPS, 6);
    expect(found.slice(9)).toEqual(new Array(10).fill(NaN));
  });

  test("is of no object that never comes down", () => {
    const app = scene({ points: foot("y") });
    expect(values(app, "sliding").some(Number.isFinite)).toBe(false);
    app.store.set({ graph: "sliding" });
    expect(summary(app, [0])).toBe("Sliding graph. a has no sliding.");
  });
});

test("graphs follow a relative view, but for sliding", () => {
  const moved = circle(5).map(([x, y, z], i): Vec3 => [x + i * i, y, z]);
  const app = makeApp({ fps: FPS, range: [1, 48], trails: [
    { name: "a", points: moved, measures: [3, 10] }, { name: "b", points: points(48, (i) => [i * i, 0, 0]) },
  ] });
  const before = values(app, "sliding");
  app.store.set({ relativeTo: 1 });
  for (const value of values(app, "acceleration").slice(3, -3)) expect(value / (5 * OMEGA ** 2)).toBeCloseTo(1, 3);
  expect(values(app, "sliding")).toEqual(before);
});

test("words name the unit of the graph, and the frames of its samples", () => {
  const app = scene({ points: points(9, (i) => [i < 4 ? 0 : i - 4, 0, 0]), startFrame: 10 });
  app.store.set({ graph: "acceleration" });
  expect(summary(app, [0])).toMatch(/^Acceleration graph\. a: most [\d.]+ cm per second squared at frame 14, least [\d.]+ cm per second squared at frame 1[35]\.$/);
  app.store.set({ graph: "curvature" });
  expect(graphOf(app, "curvature").unit).toBe("per cm");
});

test("a key goes through the graphs and back to the first", () => {
  const app = scene({ points: circle(1) });
  const seen = Array.from({ length: 7 }, () => {
    command("graph").run(app);
    return app.store.state.graph;
  });
  expect(seen).toEqual(["speed", "acceleration", "jerk", "curvature", "pops", "sliding", "spacing"]);
  expect(app.said.at(-1)).toBe("Graph of spacing");
});

test("measures have titles for people", () => {
  expect(["top_speed", "sparc", "ldlj", "length"].map(measureTitle)).toEqual(["Top speed", "SPARC", "LDLJ", "Length"]);
});
