// The kinds of tangents, by words for people.

import { Tangent, type Key } from "../animation";

/** Stepped ones are of the side that leaves a key. */
export const TANGENT_KINDS =
  ["auto", "spline", "clamped", "plateau", "linear", "flat", "slow", "fast", "fixed", "stepped", "stepped next"] as const;
export type TangentKind = (typeof TANGENT_KINDS)[number];

/** What the engine has for each. */
export const SORTS: Readonly<Record<TangentKind, Tangent>> = {
  auto: Tangent.automatic, spline: Tangent.spline, clamped: Tangent.clamped, plateau: Tangent.plateau, linear: Tangent.linear,
  flat: Tangent.flat, slow: Tangent.slow, fast: Tangent.fast, fixed: Tangent.fixed, stepped: Tangent.step, "stepped next": Tangent.stepNext,
};

const KINDS = new Map(Object.entries(SORTS).map(([kind, sort]) => [sort, kind as TangentKind]));

/** What else the engine has is refined from the automatic kind. */
const kindOfSide = (sort: Tangent): TangentKind => KINDS.get(sort) ?? "auto";

/** Whether it holds a value until the next key. */
export const steps = (kind: TangentKind) => kind === "stepped" || kind === "stepped next";

/** Null where the two sides of a key are of two kinds. */
export function kindOf({ in: sortIn, out: sortOut }: Pick<Key, "in" | "out">): TangentKind | null {
  const [into, from] = [kindOfSide(sortIn), kindOfSide(sortOut)];
  return steps(from) || into === from ? from : null;
}
