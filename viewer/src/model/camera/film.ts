// What a camera has on its film, frame by frame. Positions on the film are -1 to 1 across it and up, in a camera's own
// space: x to the right, y up, and it looks along -z.

import type { Lens, Vec3 } from "../../source/trail";
import { between, type Rigid } from "./rigid";

/** The pictures that lengths in pixels are of are so many across. */
export const PICTURE_WIDTH = 1920;

/** From one frame to the next, with the same step between all. */
export class Track<T> {
  constructor(private readonly first: number, private readonly step: number, private readonly values: readonly T[],
              private readonly mix: (a: T, b: T, part: number) => T) {}

  /** At a frame: as it was asked for, in between mixed, held before the first and after the last. */
  at(frame: number): T {
    const place = Math.max(0, Math.min(this.values.length - 1, (frame - this.first) / this.step));
    const before = Math.floor(place + 1e-9);
    const part = Math.max(0, place - before);
    return part < 1e-9 ? this.values[before] : this.mix(this.values[before], this.values[before + 1], part);
  }
}

export const rigidTrack = (first: number, step: number, values: readonly Rigid[]): Track<Rigid> => new Track(first, step, values, between);

export const lensTrack = (first: number, step: number, values: readonly Lens[]): Track<Lens> => new Track(first, step, values, lensBetween);

function lensBetween(a: Lens, b: Lens, part: number): Lens {
  const mixed = (from: number, to: number) => from + (to - from) * part;
  return {
    apertureX: mixed(a.apertureX, b.apertureX), apertureY: mixed(a.apertureY, b.apertureY),
    offsetX: mixed(a.offsetX, b.offsetX), offsetY: mixed(a.offsetY, b.offsetY),
    focalLength: mixed(a.focalLength, b.focalLength), width: a.width === null || b.width === null ? a.width : mixed(a.width, b.width),
  };
}

/** A camera of the scene, and what it sees. */
export interface Film {
  readonly name: string;
  readonly camera: Track<Rigid>;
  readonly lens: Track<Lens>;
}

/** What turns a direction into a position on the film: position = scale * direction + shift. */
export interface Gate {
  readonly scale: readonly [across: number, up: number];
  readonly shift: readonly [across: number, up: number];
  /** Width by height. */
  readonly aspect: number;
  /** Whether a direction is a place itself, and not a place by its depth. */
  readonly parallel: boolean;
}

export function gateOf({ apertureX, apertureY, offsetX, offsetY, focalLength, width }: Lens): Gate {
  const aspect = apertureX / apertureY;
  if (width !== null) return { scale: [2 / width, (2 / width) * aspect], shift: [0, 0], aspect, parallel: true };
  return {
    scale: [(2 * focalLength) / apertureX, (2 * focalLength) / apertureY],
    shift: [(-2 * offsetX) / apertureX, (-2 * offsetY) / apertureY], aspect, parallel: false,
  };
}

/** Where a place of the camera's own space is on the film; not a number behind the camera. */
export function onFilm({ scale, shift, parallel }: Gate, [x, y, z]: Vec3): [across: number, up: number] {
  const depth = parallel ? 1 : z < 0 ? -z : NaN;
  return [(scale[0] * x) / depth + shift[0], (scale[1] * y) / depth + shift[1]];
}

/** The place at the same depth that is there on the film through another gate. */
export function throughGate(gate: Gate, other: Gate, place: Vec3): Vec3 {
  const depth = gate.parallel ? 1 : -place[2];
  const moved = (k: 0 | 1) => (gate.scale[k] * place[k] + (gate.shift[k] - other.shift[k]) * depth) / other.scale[k];
  return [moved(0), moved(1), place[2]];
}
