// Camera poses. The viewport's space has y up; what a scene with z up holds is turned into it.

import type { Vec3 } from "../source/trail";
import { isVisible, type CameraPose, type ViewName, type ViewState } from "./state";
import type { Motion } from "./motion";

/** Degrees that the smaller side of the viewport sees. */
export const FIELD_OF_VIEW = 35;

/** The point in the viewport's space, where y is up. */
export const yUp = (p: Vec3, upAxis: "y" | "z"): Vec3 => (upAxis === "z" ? [p[0], p[2], -p[1]] : p);

export const DEGREE = Math.PI / 180;

/** Degrees around and above. */
export type Direction = Pick<CameraPose, "azimuth" | "elevation">;

export const ANGLES: Record<Exclude<ViewName, "persp">, Direction> = {
  front: { azimuth: 0, elevation: 0 },
  side: { azimuth: 90, elevation: 0 },
  top: { azimuth: 0, elevation: 90 },
};

/** The picture's right, up and towards the reader, for a direction of looking. */
export function directions(azimuth: number, elevation: number): [Vec3, Vec3, Vec3] {
  const [a, e] = [azimuth * DEGREE, elevation * DEGREE];
  return [
    [Math.cos(a), 0, -Math.sin(a)],
    [-Math.sin(a) * Math.sin(e), Math.cos(e), -Math.cos(a) * Math.sin(e)],
    [Math.sin(a) * Math.cos(e), Math.sin(e), Math.cos(a) * Math.cos(e)],
  ];
}

/** The tangents of half of what the viewport sees, across and up. */
export function halfView(aspect: number): [number, number] {
  const half = Math.tan((FIELD_OF_VIEW / 2) * DEGREE); // of the smaller side
  return [half * Math.max(aspect, 1), half / Math.min(aspect, 1)];
}

/** The target of a pose, moved in its picture's plane. */
export function movedTarget({ target, azimuth, elevation }: CameraPose, right: number, up: number): Vec3 {
  const [r, u] = directions(azimuth, elevation);
  return target.map((t, k) => t + right * r[k] + up * u[k]) as unknown as Vec3;
}

export function visibleTrails(motion: Motion, state: ViewState): number[] {
  return motion.trails.map((_, i) => i).filter((i) => isVisible(state, i));
}
