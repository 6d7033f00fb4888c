// The page's colours are the engine's: every function beside the engine's own, in doubles.

import { execFileSync } from "node:child_process";
import { resolve } from "node:path";
import { describe, expect, test } from "vitest";
import {
  beatsColor, flowColor, OBJECT_COLORS, RAMP, rampColor, rampPosition, SAFE_RAMP, standardColor, trailColors,
} from "../src/model/colors";
import type { Trail } from "../src/source/trail";

interface Case {
  mode: 0 | 2 | 3;
  n: number;
  start: number;
  step: number;
  keys: number[];
  current: number;
}

interface Answer {
  ramp: number[][];
  cases: number[][][];
}

function engine(ramp: number[], cases: Case[]): Answer {
  const program = resolve(process.env.VANTORELIX_ENGINE_COLORS ?? "../build/dev/bin/engine_colors");
  return JSON.parse(execFileSync(program, { input: JSON.stringify({ ramp, cases }), encoding: "utf8", maxBuffer: 1 << 26 }));
}

const base: Case = { mode: 0, n: 12, start: 1, step: 1, keys: [], current: 6 };
const ours = (c: Case) =>
  c.mode === 0 ? standardColor
    : c.mode === 2 ? flowColor(c.start, c.step, c.current)
      : beatsColor(c.start, c.step, c.keys);

describe("the colours are the engine's", () => {
  test("along the ramp", () => {
    const ts = [-1, 2, 0.25, 0.6, 0.925, ...Array.from({ length: 401 }, (_, i) => i / 400)];
    expect(ts.map((t) => [...rampColor(t)])).toEqual(engine(ts, []).ramp);
  });

  const cases: Record<string, Case> = {
    "standard": base,
    "standard, none": { ...base, n: 0 },
    "flow in the middle": { ...base, mode: 2 },
    "flow between two samples": { ...base, mode: 2, current: 6.5, step: 0.25, start: 5 },
    "flow before the first": { ...base, mode: 2, current: -3 },
    "flow after the last": { ...base, mode: 2, current: 100 },
    "flow with no step": { ...base, mode: 2, step: 0 },
    "beats without keys": { ...base, mode: 3 },
    "beats": { ...base, mode: 3, keys: [3, 7, 9] },
    "beats between samples": { ...base, mode: 3, keys: [2.2, 2.4, 3.9], step: 0.25 },
    "beats, keys not in order": { ...base, mode: 3, keys: [10, 4, 7, 4] },
    "beats, keys before the start": { ...base, mode: 3, keys: [-5, -1, 3] },
    "beats at a third of a frame": { ...base, mode: 3, n: 40, keys: [2, 5, 8], step: 1 / 3 },
  };
  test.each(Object.entries(cases))("%s", (_, each) => {
    const [wanted] = engine([], [each]).cases;
    const colorOf = ours(each);
    expect(Array.from({ length: each.n }, (__, i) => [...colorOf(i)])).toEqual(wanted);
  });
});

describe("the safe palette", () => {
  test("finds every colour's place on the engine's ramp", () => {
    for (let i = 0; i <= 1000; ++i) {
      const [r, g, b] = rampColor(i / 1000);
      expect(rampPosition(r, g, b)).toBeCloseTo(i / 1000, 9);
    }
  });

  test("gets lighter from slow to fast, whatever the eye", () => {
    const light = Array.from({ length: 101 }, (_, i) => {
      const [r, g, b] = rampColor(i / 100, SAFE_RAMP);
      return 0.2126 * r + 0.7152 * g + 0.0722 * b;
    });
    light.slice(1).forEach((value, i) => expect(value).toBeGreaterThan(light[i]));
  });

  test("is not the engine's in any mode but keeps what the modes tell", () => {
    const trail = {
      count: 3, startFrame: 1, frameStep: 1, keyTimes: Float64Array.of(2), colors: Uint8Array.of(0, 0, 255, 0, 255, 0, 255, 0, 0),
    } as Trail;
    for (const mode of [1, 2, 3] as const) {
      const safe = trailColors(trail, mode, 2, "safe");
      expect([...safe]).not.toEqual([...trailColors(trail, mode, 2, "engine")]);
      expect([...safe.subarray(0, 3)]).not.toEqual([...safe.subarray(6, 9)]);
    }
  });
});

test("the ramp begins and ends where the engine's does, and objects differ in colour", () => {
  expect([RAMP[0][0], RAMP[RAMP.length - 1][0]]).toEqual([0, 1]);
  expect(new Set(OBJECT_COLORS).size).toBe(OBJECT_COLORS.length);
});
