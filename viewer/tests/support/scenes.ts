// Scenes that several tests open.

import type { Vec3 } from "../../src/source/trail";
import type { SceneInput, TrailInput } from "./trails";

/** So many points, each from its number. */
export const points = (count: number, at: (i: number) => Vec3): Vec3[] => Array.from({ length: count }, (_, i) => at(i));

/** Speeds up to the middle and slows down again: 24 frames, keys at 1, 12 and 24. */
export const arc = (name: string, more: Partial<TrailInput> = {}): TrailInput => ({
  name,
  points: points(24, (i) => [10 * Math.cos((Math.PI * i) / 23), 5 * Math.sin((Math.PI * i) / 23), 0]),
  keyTimes: [1, 12, 24],
  ...more,
});

/** Four objects, 24 frames. */
export const figures = (): SceneInput => ({
  scene: "shots/walk.usda", fps: 24, range: [1, 24], current: 1, unit: "cm",
  trails: [
    arc("hand_L", { source: "|rig|arms|hand_L" }),
    arc("hand_R", { source: "|rig|arms|hand_R", keyTimes: [1, 6, 24], warnings: ["an expression was not evaluated"] }),
    arc("Foot.L", { source: "|rig|legs|Foot.L", colorMode: 0, points: points(24, (i) => [i, 0, 1]), keyTimes: [1, 24] }),
    arc("head", { source: "|rig|head", colorMode: 0, lineWidth: 3, points: points(24, (i) => [0, i * i * 0.05, 2]) }),
  ],
});
