// Curves, their keys, and what can be done to them.

export type Infinity = "constant" | "linear" | "cycle" | "cycle_offset" | "oscillate";

/** The curve of one channel. */
export interface Curve {
  attribute: string;
  curve: string;
  kind: "linear" | "angular" | "unitless" | "time";
  weighted: boolean;
  pre: Infinity;
  post: Infinity;
  /** How many. */
  keys: number;
}

/** The sorts of tangents, by the numbers that scene files have for them. */
export const Tangent = {
  global: 0, fixed: 1, linear: 2, flat: 3, step: 5, slow: 6, fast: 7, spline: 9, clamped: 10, plateau: 16, stepNext: 17,
  automatic: 18, automaticMix: 19, automaticEase: 20, automaticCustom: 21,
} as const;
export type Tangent = (typeof Tangent)[keyof typeof Tangent];

export interface Key {
  frame: number;
  /** In radians on angles. */
  value: number;
  in: Tangent;
  out: Tangent;
  /** Of fixed tangents: seconds, and the value's unit. With weighted tangents the lengths count; without, only y / x. */
  inX: number;
  inY: number;
  outX: number;
  outY: number;
}

/** A key's tangents as its curve has them, of whatever sort: seconds, and the value's unit, all forward in time. */
export interface KeyTangents {
  inX: number;
  inY: number;
  outX: number;
  outY: number;
}

/** What keeps an object's own keys from putting it elsewhere. */
export type Obstacle =
  | "no_key" | "rotations_only" | "locked" | "not_a_curve" | "recorded" | "flat_parent" | "not_finite" | "repeats" | "depends"
  | "at_key" | "still" | "beyond_keys" | "steps" | "weights_differ";

/** Whether they can; both null where nothing is in the way. The text is a sentence for people. */
export interface Placing {
  obstacle: Obstacle | null;
  text: string | null;
}

/** Whether an object can slide on its path, and between which keys: either an obstacle, or frames. */
export interface Sliding extends Placing {
  first: number | null;
  last: number | null;
}
