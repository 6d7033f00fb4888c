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

/** A rig that stands still, with a camera that only turns and hips that walk; and a light beside it. */
export const tree = (): SceneInput => {
  const at = (source: string, more: Partial<TrailInput> = {}): TrailInput => {
    const above = source.slice(0, source.lastIndexOf("|"));
    return arc(source.slice(above.length + 1), { source, parent: above || undefined, ...more });
  };
  const still = { points: points(24, () => [1, 2, 3]), keyTimes: [] };
  return {
    scene: "tree.usda", fps: 24, range: [1, 24], current: 1, unit: "cm",
    trails: [
      at("|rig", still), at("|rig|cam", still), at("|rig|cam|aim", { ...still, keyTimes: [1, 24] }), at("|rig|hips"),
      at("|rig|hips|spine"), at("|rig|hips|spine|head"), at("|rig|hips|leg"), at("|light", still),
    ],
  };
};
