// Positions, spacing and speed of the trails, in the world or relative to one of them. Nothing is sampled again: where
// two trails have their samples at different frames, the other's position between two samples is linear.

import type { Trail, Vec3 } from "../source/trail";
import type { Space } from "./camera/space";
import { moving, reachOf, type Reach } from "./reach";

export const sampleFrame = (trail: Pick<Trail, "startFrame" | "frameStep">, sample: number): number =>
  trail.startFrame + sample * trail.frameStep;

/** The sample nearest to a frame. */
export function nearestSample(trail: Trail, frame: number): number {
  const sample = Math.round((frame - trail.startFrame) / trail.frameStep);
  return Math.max(0, Math.min(trail.count - 1, sample));
}

export const triple = (values: Float64Array, i: number): Vec3 => [values[3 * i], values[3 * i + 1], values[3 * i + 2]];

export const isFinitePoint = (p: Vec3): boolean => Number.isFinite(p[0]) && Number.isFinite(p[1]) && Number.isFinite(p[2]);

/** The world position at a frame, linear between samples, held before the first and after the last. */
export function worldPosition(trail: Trail, frame: number): Vec3 {
  const place = Math.max(0, Math.min(trail.count - 1, (frame - trail.startFrame) / trail.frameStep));
  const before = Math.floor(place);
  const part = place - before;
  const a = triple(trail.points, before);
  if (part === 0) return a;
  const b = triple(trail.points, before + 1);
  return [a[0] + (b[0] - a[0]) * part, a[1] + (b[1] - a[1]) * part, a[2] + (b[2] - a[2]) * part];
}

/** At a sample, of values of the stretches between samples: the mean of those on its two sides. */
export function meanOfSides(values: Float64Array, sample: number): number {
  const sides = [values[sample - 1], values[sample]].filter((value) => Number.isFinite(value));
  return sides.length ? sides.reduce((a, b) => a + b) / sides.length : NaN;
}

const minus = (a: Vec3, b: Vec3): Vec3 => [a[0] - b[0], a[1] - b[1], a[2] - b[2]];

/** Each place as a function of it and of its number has it. */
function placed(points: Float64Array, place: (point: Vec3, i: number) => Vec3): Float64Array {
  const result = new Float64Array(points.length);
  for (let i = 0; 3 * i < points.length; ++i) result.set(place(triple(points, i), i), 3 * i);
  return result;
}

/** The trails as they are shown. Results are kept until the next call of relativeTo or trails. */
export class Motion {
  private readonly points = new Map<number, Float64Array>();
  private readonly keyPoints = new Map<number, Float64Array>();
  private readonly spacings = new Map<number, Float64Array>();
  private reaches: readonly Reach[] | null = null;
  private moves: readonly boolean[] | null = null;
  private related: number | null = null;
  private shownIn: Space | null = null;

  constructor(private list: readonly Trail[]) {}

  get trails(): readonly Trail[] {
    return this.list;
  }

  set trails(list: readonly Trail[]) {
    this.list = list;
    this.forget();
  }

  /** The same trails, but for these. */
  update(list: readonly Trail[], changed: ReadonlySet<number>): void {
    this.list = list;
    if (this.related !== null && changed.has(this.related)) return this.forget(); // all others are shown elsewhere, too
    for (const kept of [this.points, this.keyPoints, this.spacings]) for (const index of changed) kept.delete(index);
    this.reaches &&= this.reaches.map((reach, index) => (changed.has(index) ? reachOf(this.shownPoints(index)) : reach));
    this.moves = null;
  }

  /** From now on positions are relative to this trail; null: in the world. */
  relativeTo(trail: number | null): void {
    this.related = trail;
    this.forget();
  }

  /** From now on positions are those of this space; null: what relativeTo says. */
  within(space: Space | null): void {
    this.shownIn = space;
    this.forget();
  }

  get space(): Space | null {
    return this.shownIn;
  }

  /** The trail that positions are relative to. */
  get relation(): number | null {
    return this.related;
  }

  /** Flat triples, a sample each. */
  shownPoints(index: number): Float64Array {
    return this.kept(this.points, index, (trail) => {
      const to = this.relative;
      return to ? placed(trail.points, (point, i) => to(point, sampleFrame(trail, i))) : trail.points;
    });
  }

  shownKeyPoints(index: number): Float64Array {
    return this.kept(this.keyPoints, index, (trail) => {
      const to = this.relative;
      return to ? placed(trail.keyPoints, (point, i) => to(point, trail.keyTimes[i])) : trail.keyPoints;
    });
  }

  shownPosition(index: number, frame: number): Vec3 {
    return this.shownPlace(worldPosition(this.list[index], frame), frame);
  }

  /** Where a place of the world is at a frame, as positions are shown. */
  shownPlace(place: Vec3, frame: number): Vec3 {
    return this.relative?.(place, frame) ?? place;
  }

  /** How far each trail reaches as it is shown. */
  get reach(): readonly Reach[] {
    return (this.reaches ??= this.list.map((_, index) => reachOf(this.shownPoints(index))));
  }

  /** Whether each trail moves as it is shown. */
  get moving(): readonly boolean[] {
    return (this.moves ??= moving(this.reach));
  }

  /** Those of the trails that move; all of them when none does. */
  thatMove(trails: readonly number[]): readonly number[] {
    const found = trails.filter((trail) => this.moving[trail]);
    return found.length > 0 ? found : trails;
  }

  /** Distance a frame from each sample to the next: one less than samples; NaN beside samples that are not finite. */
  spacing(index: number): Float64Array {
    return this.kept(this.spacings, index, (trail) => {
      const points = this.shownPoints(index);
      const result = new Float64Array(Math.max(0, trail.count - 1));
      for (let i = 0; i < result.length; ++i) {
        const [x, y, z] = minus(triple(points, i + 1), triple(points, i));
        result[i] = Math.hypot(x, y, z) / trail.frameStep;
      }
      return result;
    });
  }

  /** Distance a frame at a sample: the mean of the stretches on its two sides. */
  speed(index: number, sample: number): number {
    return meanOfSides(this.spacing(index), sample);
  }

  /** What becomes of places of the world at frames; null: nothing. */
  private get relative(): ((place: Vec3, frame: number) => Vec3) | null {
    const { shownIn, related } = this;
    if (shownIn) return (place, frame) => shownIn.place(place, frame);
    const reference = related === null ? undefined : this.list[related];
    return reference ? (place, frame) => minus(place, worldPosition(reference, frame)) : null;
  }

  private forget(): void {
    this.points.clear();
    this.keyPoints.clear();
    this.spacings.clear();
    this.reaches = this.moves = null;
  }

  private kept(cache: Map<number, Float64Array>, index: number, make: (trail: Trail) => Float64Array): Float64Array {
    let found = cache.get(index);
    if (!found) cache.set(index, (found = make(this.list[index])));
    return found;
  }
}
