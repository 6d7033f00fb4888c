// Camera poses. The viewport's space has y up; what a scene with z up holds is turned into it.

import type { Vec3 } from "../source/trail";
import { isVisible, type CameraPose, type ViewName, type ViewState } from "./state";
import { isFinitePoint, triple, type Motion } from "./motion";

/** Degrees that the smaller side of the viewport sees. */
export const FIELD_OF_VIEW = 35;

export interface Bounds {
  low: [number, number, number];
  high: [number, number, number];
}

/** Turned so that y is up. */
export const yUp = (p: Vec3, upAxis: "y" | "z"): Vec3 => (upAxis === "z" ? [p[0], p[2], -p[1]] : p);

/** The box around all finite samples of these trails as they are shown, y up; null when there is none. */
export function boundsOf(motion: Motion, trails: Iterable<number>, upAxis: "y" | "z"): Bounds | null {
  const box: Bounds = { low: [Infinity, Infinity, Infinity], high: [-Infinity, -Infinity, -Infinity] };
  for (const trail of trails) {
    const points = motion.shownPoints(trail);
    for (let i = 0; 3 * i < points.length; ++i) {
      const p = triple(points, i);
      if (!isFinitePoint(p)) continue;
      const turned = yUp(p, upAxis);
      for (let k = 0; k < 3; ++k) {
        box.low[k] = Math.min(box.low[k], turned[k]);
        box.high[k] = Math.max(box.high[k], turned[k]);
      }
    }
  }
  return box.low[0] <= box.high[0] ? box : null;
}

const ANGLES: Record<ViewName, { azimuth: number; elevation: number }> = {
  persp: { azimuth: 30, elevation: 18 },
  front: { azimuth: 0, elevation: 0 },
  side: { azimuth: 90, elevation: 0 },
  top: { azimuth: 0, elevation: 90 },
};

/** A pose that sees the whole box, from where `from` looks (its view's own direction, without one). */
export function framing(box: Bounds | null, view: ViewName, from?: CameraPose | null): CameraPose {
  const low = box?.low ?? [-1, -1, -1];
  const high = box?.high ?? [1, 1, 1];
  const target = low.map((l, k) => l + (high[k] - l) / 2) as unknown as Vec3;
  const diagonal = Math.hypot(high[0] - low[0], high[1] - low[1], high[2] - low[2]);
  const radius = diagonal > 0 ? diagonal / 2 : 1;
  const { azimuth, elevation } = view === "persp" && from?.view === "persp" ? from : ANGLES[view];
  return { view, target, distance: (1.05 * radius) / Math.sin((FIELD_OF_VIEW / 2) * (Math.PI / 180)), azimuth, elevation };
}

export function visibleTrails(motion: Motion, state: ViewState): number[] {
  return motion.trails.map((_, i) => i).filter((i) => isVisible(state, i));
}
