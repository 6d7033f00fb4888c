// From places in the viewport's space to pixels, and from pixels to what lies behind them.

import { Matrix4, type Camera } from "three";
import type { Vec3 } from "../../source/trail";

export interface Spot {
  x: number;
  y: number;
}

/** A part of the picture, CSS pixels. */
export interface Area {
  readonly left: number;
  readonly top: number;
  readonly right: number;
  readonly bottom: number;
}

/** What lies behind an area: five planes, a b c d each, with a x + b y + c z + d >= 0 inside. */
export type Region = Float64Array;

export class Projection {
  /** Of clip space, column by column. */
  readonly m: readonly number[];

  constructor(camera: Camera, readonly width: number, readonly height: number) {
    this.m = new Matrix4().multiplyMatrices(camera.projectionMatrix, camera.matrixWorldInverse).elements;
  }

  /** CSS pixels from the upper left; null behind the camera. */
  spot(x: number, y: number, z: number): Spot | null {
    const { m } = this;
    const w = m[3] * x + m[7] * y + m[11] * z + m[15];
    if (!(w > 0)) return null;
    return {
      x: (((m[0] * x + m[4] * y + m[8] * z + m[12]) / w + 1) / 2) * this.width,
      y: ((1 - (m[1] * x + m[5] * y + m[9] * z + m[13]) / w) / 2) * this.height,
    };
  }

  /** How far a place moves in the picture for each unit in a direction, CSS pixels. */
  pixels([x, y, z]: Vec3, [dx, dy, dz]: Vec3): Spot {
    const { m } = this;
    const at = (k: number) => m[k] * x + m[4 + k] * y + m[8 + k] * z + m[12 + k];
    const by = (k: number) => m[k] * dx + m[4 + k] * dy + m[8 + k] * dz;
    const w = at(3);
    const turn = (k: number) => (by(k) * w - at(k) * by(3)) / (w * w);
    return { x: (turn(0) / 2) * this.width, y: (-turn(1) / 2) * this.height };
  }

  /** The four sides of the area, seen from the eye, and where the picture begins in depth. */
  region({ left, top, right, bottom }: Area): Region {
    const across = (x: number) => (2 * x) / this.width - 1;
    const up = (y: number) => 1 - (2 * y) / this.height;
    const region = new Float64Array(20);
    for (let k = 0; k < 4; ++k) {
      const [x, y, z, w] = this.m.slice(4 * k, 4 * k + 4);
      region[k] = x - across(left) * w;
      region[4 + k] = across(right) * w - x;
      region[8 + k] = y - up(bottom) * w;
      region[12 + k] = up(top) * w - y;
      region[16 + k] = z + w;
    }
    return region;
  }
}

/** Whether the numbers of the drawing, which have 32 bits, hold this and what is computed from it. */
export const isDrawable = (length: number): boolean => Math.abs(length) < 1e18;
