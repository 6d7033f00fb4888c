// A key that is dragged through the world: which values of its translate channels put its object where it is wanted, and
// where that takes the trails around it.
//
// A place is its translate channels times some matrix, plus something: parents, pivots and scale of that frame are in
// both, and do not change while the key moves. So the matrix is found by trying each channel once.

import { EngineError } from "../errors";
import type { Scene } from "../scene";
import type { Trails } from "../trails";
import { finitePlaces } from "./numbers";
import { solve, type Columns, type Vec3 } from "./solve";
import type { Dragged, MovedPart } from "./protocol";

/** Milliseconds that provisional trails may take for each move: the others wait for the engine. */
const BUDGET = 25;
/** Keys on each side whose tangents, and so curves, may follow a key. */
const REACH = 2;

const CHANNELS = ["translateX", "translateY", "translateZ"];

interface Channel {
  readonly attribute: string;
  /** Its value when the drag began. */
  readonly value: number;
}

interface Followed {
  readonly index: number;
  readonly source: string;
  readonly first: number;
  readonly frames: Float64Array;
}

export class Drag {
  private readonly channels: readonly Channel[];
  private readonly followed: readonly Followed[];
  private columns: Columns | null = null;
  private begin: Vec3 = [0, 0, 0];
  private edited = false;

  constructor(private readonly scene: Scene, trails: Trails, private readonly object: string, private readonly frame: number) {
    const keyed = scene.curves(object).filter(({ attribute }) => CHANNELS.includes(attribute))
      .map(({ attribute }) => ({ attribute, frames: scene.keys(object, attribute).map((key) => key.frame) }))
      .filter(({ frames }) => frames.includes(frame));
    if (keyed.length === 0) throw this.reason();
    this.channels = keyed.map(({ attribute }) => ({ attribute, value: scene.channelValues(object, attribute, [frame])[0] }));
    const around = (by: number, none: number) => keyed.map(({ frames }) => frames[frames.indexOf(frame) + by] ?? none);
    const [from, to] = [Math.min(...around(-REACH, -Infinity)), Math.max(...around(REACH, Infinity))];
    this.followed = followed(trails, object, from, to);
    scene.openStep("move key");
  }

  /** Moves the key to a place, as far as its channels reach. */
  moveTo(wanted: Vec3): Dragged {
    const columns = (this.columns ??= this.tried());
    let values = this.channels.map(({ value }) => value);
    let from = this.begin;
    // What rounding leaves after the first time goes with the second.
    for (let turn = 0; turn < 2; ++turn) {
      const by = solve(columns, [wanted[0] - from[0], wanted[1] - from[1], wanted[2] - from[2]]);
      values = values.map((value, k) => value + by[k]);
      this.channels.forEach(({ attribute }, k) => this.scene.setKey(this.object, attribute, this.frame, values[k]));
      from = this.place();
    }
    return { position: from, parts: this.parts() };
  }

  /** Not `kept`: the key goes back. */
  end(kept: boolean): void {
    this.scene.closeStep();
    if (!kept && this.edited) this.scene.undo();
  }

  private reason(): EngineError {
    const turns = this.scene.curves(this.object).some(({ attribute }) => attribute.startsWith("rotate"));
    const why = turns ? "its keys turn it, and what moves it through space is above it" : "nothing of it is keyed there";
    return new EngineError(`${this.object} has no key of its position at frame ${this.frame}: ${why}`, "failed", 0);
  }

  private place(): Vec3 {
    const matrix = this.scene.worldMatrices(this.object, [this.frame]);
    return [matrix[12], matrix[13], matrix[14]];
  }

  /** How far one unit of each channel goes. */
  private tried(): Columns {
    this.begin = this.place();
    this.edited = true;
    const columns = this.channels.map(({ attribute, value }): Vec3 => {
      this.scene.setKey(this.object, attribute, this.frame, value + 1);
      const [x, y, z] = this.place();
      this.scene.setKey(this.object, attribute, this.frame, value);
      return [x - this.begin[0], y - this.begin[1], z - this.begin[2]];
    });
    if (columns.every((column) => Math.hypot(...column) < 1e-12))
      throw new EngineError(`${this.object} does not follow the keys of its position: something else holds it`, "failed", 0);
    return columns;
  }

  private parts(): MovedPart[] {
    const end = performance.now() + BUDGET;
    const parts: MovedPart[] = [];
    for (const { index, source, first, frames } of this.followed) {
      if (parts.length > 0 && performance.now() > end) break;
      const matrices = this.scene.worldMatrices(source, frames);
      const points = new Float64Array(3 * frames.length);
      for (let i = 0; i < frames.length; ++i) points.set(matrices.subarray(16 * i + 12, 16 * i + 15), 3 * i);
      parts.push({ index, first, points: finitePlaces(points) });
    }
    return parts;
  }
}

/** The object's own trail first, then those of what hangs on it: what of them lies between two frames. */
function followed(trails: Trails, object: string, from: number, to: number): Followed[] {
  const found: Followed[] = [];
  for (let index = 0; index < trails.length; ++index) {
    const { source, start_frame: start, frame_step: step } = trails.fields(index);
    if (source !== object && !source.startsWith(`${object}|`)) continue;
    const count = trails.arrays(index).points.length / 3;
    const first = Math.max(0, Math.ceil((from - start) / step));
    const last = Math.min(count - 1, Math.floor((to - start) / step));
    if (last < first) continue;
    const frames = Float64Array.from({ length: last - first + 1 }, (_, i) => start + (first + i) * step);
    if (source === object) found.unshift({ index, source, first, frames });
    else found.push({ index, source, first, frames });
  }
  return found;
}
