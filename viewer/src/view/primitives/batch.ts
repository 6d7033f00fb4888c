// Many trails drawn at once: one object for all lines of a style, one for their dots, one for their key markers.

import { BufferAttribute, BufferGeometry, LineSegments, Points, type InstancedBufferAttribute, type Mesh, type ShaderMaterial } from "three";
import type { ColorMode } from "../../source/trail";
import { FatLineMaterial, FatLines } from "./fat_lines";
import { oneColor } from "./materials";
import { unculled } from "./unculled";

/** A trail as it is drawn: places relative to the viewport's origin, y up, NaN where there is none. */
export interface DrawnTrail {
  readonly index: number;
  readonly places: Float32Array;
  /** The trail's sample at which the places begin. */
  readonly first: number;
  /** Frame of that sample, and frames from place to place. */
  readonly startFrame: number;
  readonly frameStep: number;
  readonly keyPlaces: Float32Array;
  /** As many as key places. */
  readonly keyTimes: Float64Array;
}

/** Colours of a trail's samples, 0..255, and what they mean: it decides how a stretch between two samples looks. */
export interface SampleColors {
  readonly values: Uint8Array;
  readonly mode: ColorMode;
}

const finiteAt = (places: Float32Array, sample: number) => places[3 * sample] === places[3 * sample]; // not NaN

/** The two end samples of each stretch of a line through every `stride`th sample: from, to, from, to ... */
export function stretchesOf(places: Float32Array, stride: number): Uint32Array {
  const last = places.length / 3 - 1;
  const stretches = new Uint32Array(2 * Math.max(0, Math.ceil(last / stride)));
  let at = 0;
  for (let from = 0; from < last; from += stride) {
    const to = Math.min(from + stride, last);
    if (!finiteAt(places, from) || !finiteAt(places, to)) continue;
    stretches[at++] = from;
    stretches[at++] = to;
  }
  return stretches.subarray(0, at);
}

/** Calls `visit` with the samples that get a dot: those at whole frames that `every` divides. */
export function eachDot({ places, startFrame, frameStep }: DrawnTrail, every: number, visit: (sample: number) => void): void {
  for (let sample = 0; 3 * sample < places.length; ++sample) {
    const frame = startFrame + sample * frameStep;
    const whole = Math.round(frame);
    if (Math.abs(frame - whole) < 1e-4 && whole % every === 0 && finiteAt(places, sample)) visit(sample);
  }
}

function copy(to: Uint8Array, at: number, from: Uint8Array, sample: number): void {
  to[at] = from[3 * sample];
  to[at + 1] = from[3 * sample + 1];
  to[at + 2] = from[3 * sample + 2];
}

function geometryOf(places: Float32Array, colors: BufferAttribute | InstancedBufferAttribute): BufferGeometry {
  const geometry = new BufferGeometry();
  geometry.setAttribute("position", new BufferAttribute(places, 3));
  geometry.setAttribute("color", colors);
  return geometry;
}

export const thinLines = (ends: Float32Array, colors: Uint8Array, material: ShaderMaterial): LineSegments =>
  unculled(new LineSegments(geometryOf(ends, new BufferAttribute(colors, 3, true)), material));

export const pointsOf = (
  places: Float32Array, colors: BufferAttribute | InstancedBufferAttribute, material: ShaderMaterial,
): Points => unculled(new Points(geometryOf(places, colors), material));

/** Where the samples from this one on begin, in samples that never go back. */
function firstWith(samples: Uint32Array, least: number): number {
  let [low, high] = [0, samples.length];
  while (low < high) {
    const middle = (low + high) >> 1;
    if (samples[middle] < least) low = middle + 1;
    else high = middle;
  }
  return low;
}

type Drawn = Mesh | LineSegments | Points;

/** Draws only those of the trails in an object that `chosen` names; null: all. `counts` are their parts, in the object's units. */
function drawOnly(object: Drawn, trails: readonly DrawnTrail[], counts: readonly number[], chosen: ReadonlySet<number> | null): void {
  const { geometry } = object;
  const material = [object.material].flat()[0];
  geometry.clearGroups();
  object.material = chosen ? [material] : material;
  let at = 0;
  trails.forEach(({ index }, i) => {
    const last = geometry.groups.at(-1);
    if (chosen?.has(index) && last && last.start + last.count === at) last.count += counts[i];
    else if (chosen?.has(index)) geometry.addGroup(at, counts[i], 0);
    at += counts[i];
  });
}

/** Lines of a given width, or of one pixel, which software draws much faster. */
export class Lines {
  readonly object: Mesh | LineSegments;
  private readonly stretches: readonly Uint32Array[];
  private readonly fat: FatLines | null = null;
  /** Colours of both ends of each stretch; of a trail after the other. */
  private readonly colors: Uint8Array;

  /** Wide ones may have one colour for all; other colours come by recolor(). */
  constructor(private readonly trails: readonly DrawnTrail[], stride: number, material: ShaderMaterial, color?: string) {
    this.stretches = trails.map(({ places }) => stretchesOf(places, stride));
    const ends = new Float32Array(3 * this.stretches.reduce((sum, { length }) => sum + length, 0));
    let at = 0;
    this.stretches.forEach((samples, i) => {
      const { places } = trails[i];
      for (let k = 0; k < samples.length; ++k) {
        const from = 3 * samples[k];
        ends[at++] = places[from];
        ends[at++] = places[from + 1];
        ends[at++] = places[from + 2];
      }
    });
    this.colors = new Uint8Array(color === undefined ? ends.length : 0);
    if (material instanceof FatLineMaterial) this.fat = new FatLines(ends, material, color);
    this.object = this.fat?.object ?? thinLines(ends, this.colors, material);
  }

  /** Writes the ends of these samples of a trail anew, wherever they are drawn. */
  moved(trail: number, first: number, count: number): void {
    let at = 0;
    this.stretches.forEach((samples, i) => {
      const { index, places } = this.trails[i];
      if (index === trail) {
        const [from, end] = [firstWith(samples, first), firstWith(samples, first + count)];
        for (let k = from; k < end; ++k) this.write(at + k, places, samples[k]);
        if (end > from) this.upload(at + from, end - from);
      }
      at += samples.length;
    });
  }

  /** From now on only these trails are drawn; null: all. */
  only(chosen: ReadonlySet<number> | null): void {
    drawOnly(this.object, this.trails, this.stretches.map(({ length }) => (this.fat ? 3 * length : length)), chosen);
  }

  /** The place of an end, by its number. */
  private write(end: number, places: Float32Array, sample: number): void {
    const { position } = this.object.geometry.attributes;
    if (this.fat) this.fat.moveEnd(end, places, 3 * sample);
    else (position.array as Float32Array).set(places.subarray(3 * sample, 3 * sample + 3), 3 * end);
  }

  private upload(end: number, count: number): void {
    if (this.fat) return this.fat.upload(end, count);
    const position = this.object.geometry.attributes.position as BufferAttribute;
    position.addUpdateRange(3 * end, 3 * count);
    position.needsUpdate = true;
  }

  /** In Beats a stretch has the colour of its first sample, in Flow that of its last; in other modes the two blend. */
  recolor(colorsOf: (trail: number) => SampleColors): void {
    const { colors } = this;
    let at = 0;
    this.stretches.forEach((samples, i) => {
      const { values, mode } = colorsOf(this.trails[i].index);
      for (let k = 0; k < samples.length; k += 2, at += 6) {
        copy(colors, at, values, samples[mode === 2 ? k + 1 : k]);
        copy(colors, at + 3, values, samples[mode === 3 ? k : k + 1]);
      }
    });
    if (this.fat) this.fat.recolor(colors);
    else this.object.geometry.getAttribute("color").needsUpdate = true;
  }

  dispose(): void {
    this.object.geometry.dispose();
  }
}

export class Dots {
  readonly object: Points;
  private readonly colors: BufferAttribute;
  /** How many dots each trail has. */
  private readonly counts: readonly number[];

  constructor(
    private readonly trails: readonly DrawnTrail[], private readonly every: number, material: ShaderMaterial,
  ) {
    const places: number[] = [];
    this.counts = trails.map((trail) => {
      const before = places.length;
      eachDot(trail, every, (s) => places.push(trail.places[3 * s], trail.places[3 * s + 1], trail.places[3 * s + 2]));
      return (places.length - before) / 3;
    });
    this.colors = new BufferAttribute(new Uint8Array(places.length), 3, true);
    this.object = pointsOf(Float32Array.from(places), this.colors, material);
  }

  /** Writes the dots of a trail anew. */
  moved(index: number): void {
    const { position } = this.object.geometry.attributes;
    let at = 0;
    for (const trail of this.trails) {
      const from = at;
      eachDot(trail, this.every, (s) => {
        if (trail.index === index) (position.array as Float32Array).set(trail.places.subarray(3 * s, 3 * s + 3), at);
        at += 3;
      });
      if (trail.index !== index || at === from) continue;
      (position as BufferAttribute).addUpdateRange(from, at - from);
      position.needsUpdate = true;
    }
  }

  /** From now on only these trails are drawn; null: all. */
  only(chosen: ReadonlySet<number> | null): void {
    drawOnly(this.object, this.trails, this.counts, chosen);
  }

  recolor(colorsOf: (trail: number) => SampleColors): void {
    const colors = this.colors.array as Uint8Array;
    let at = 0;
    for (const trail of this.trails) {
      const { values } = colorsOf(trail.index);
      eachDot(trail, this.every, (sample) => {
        copy(colors, at, values, sample);
        at += 3;
      });
    }
    this.colors.needsUpdate = true;
  }

  dispose(): void {
    this.object.geometry.dispose();
  }
}

/** Markers of all keys; they have one look. */
export class KeyMarkers {
  readonly object: Points;

  constructor(private readonly trails: () => readonly DrawnTrail[], color: string, material: ShaderMaterial) {
    this.object = pointsOf(this.places(), oneColor(color), material);
  }

  /** After keys have moved. */
  moved(): void {
    const position = this.object.geometry.attributes.position as BufferAttribute;
    const places = this.places();
    if (places.length === position.array.length) (position.array as Float32Array).set(places);
    else this.object.geometry.setAttribute("position", new BufferAttribute(places, 3));
    position.needsUpdate = true;
  }

  dispose(): void {
    this.object.geometry.dispose();
  }

  private places(): Float32Array {
    const trails = this.trails();
    const places = new Float32Array(trails.reduce((sum, trail) => sum + trail.keyPlaces.length, 0));
    let at = 0;
    for (const { keyPlaces } of trails)
      for (let i = 0; i < keyPlaces.length; i += 3) {
        if (!finiteAt(keyPlaces, i / 3)) continue;
        places.set(keyPlaces.subarray(i, i + 3), at);
        at += 3;
      }
    return places.slice(0, at);
  }
}
