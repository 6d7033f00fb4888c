// From places in the viewport's space to pixels.

import { Matrix4, type Camera } from "three";

export interface Spot {
  x: number;
  y: number;
}

export class Projection {
  private readonly m: readonly number[];

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
}

/** Whether the numbers of the drawing, which have 32 bits, hold this and what is computed from it. */
export const isDrawable = (length: number): boolean => Math.abs(length) < 1e18;
