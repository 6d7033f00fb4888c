// A camera of the scene as the drawing has it: its film lies in the middle of the viewport, with what is around it.

import { Camera, Matrix4 } from "three";
import type { Gate } from "../../model/camera/film";
import type { Vec3 } from "../../source/trail";
import type { Area } from "./projection";

/** The part of the viewport that the film takes, across or up. */
const FILLED = 0.88;

/** In the viewport's space: its axes, the last one towards the reader, and where it is. */
export interface Standing {
  readonly x: Vec3;
  readonly y: Vec3;
  readonly z: Vec3;
  readonly at: Vec3;
}

/** How much of the viewport the film takes across and up; `aspect` is the viewport's width by its height. */
function parts({ aspect: film }: Gate, aspect: number): [across: number, up: number] {
  return aspect > film ? [(FILLED * film) / aspect, FILLED] : [FILLED, (FILLED * aspect) / film];
}

/** The film in a viewport of this size, CSS pixels. */
export function filmArea(gate: Gate, width: number, height: number): Area {
  const [across, up] = parts(gate, width / height);
  return {
    left: (width * (1 - across)) / 2, right: (width * (1 + across)) / 2, top: (height * (1 - up)) / 2, bottom: (height * (1 + up)) / 2,
  };
}

export class FilmCamera extends Camera {
  constructor() {
    super();
    this.matrixAutoUpdate = false;
  }

  /** `reach` is how far it sees. */
  show({ x, y, z, at }: Standing, gate: Gate, aspect: number, reach: number): void {
    this.matrix.set(x[0], y[0], z[0], at[0], x[1], y[1], z[1], at[1], x[2], y[2], z[2], at[2], 0, 0, 0, 1);
    this.projectionMatrix.copy(projection(gate, parts(gate, aspect), reach));
    this.projectionMatrixInverse.copy(this.projectionMatrix).invert();
    this.updateMatrixWorld(true);
  }
}

function projection({ scale, shift, parallel }: Gate, [across, up]: [number, number], far: number): Matrix4 {
  const near = far * 1e-4;
  const [a, b] = [across * scale[0], up * scale[1]];
  const [right, above] = [across * shift[0], up * shift[1]];
  if (parallel) return new Matrix4().set(a, 0, 0, right, 0, b, 0, above, 0, 0, -1 / far, 0, 0, 0, 0, 1);
  return new Matrix4().set(
    a, 0, -right, 0, 0, b, -above, 0, 0, 0, -(far + near) / (far - near), (-2 * far * near) / (far - near), 0, 0, -1, 0);
}
