// Many trails drawn at once: one object for all lines of a style, one for their dots, one for their key markers.

import {
  BufferAttribute,
  BufferGeometry,
  InstancedInterleavedBuffer,
  InterleavedBufferAttribute,
  LineBasicMaterial,
  LineSegments,
  Points,
  type ShaderMaterial,
} from "three";
import type { LineMaterial } from "three/examples/jsm/lines/LineMaterial.js";
import { LineSegments2 } from "three/examples/jsm/lines/LineSegments2.js";
import { LineSegmentsGeometry } from "three/examples/jsm/lines/LineSegmentsGeometry.js";
import type { ColorMode } from "../source/trail";

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

const finiteAt = (places: Float32Array, sample: number) => Number.isFinite(places[3 * sample]);

/** Calls `visit` with the two end samples of each stretch of a line through every `stride`th sample. */
export function eachStretch(places: Float32Array, stride: number, visit: (from: number, to: number) => void): void {
  const last = places.length / 3 - 1;
  for (let from = 0; from < last; from += stride) {
    const to = Math.min(from + stride, last);
    if (finiteAt(places, from) && finiteAt(places, to)) visit(from, to);
  }
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

/** The ends of all stretches, x y z x y z each. */
function endsOf(trails: readonly DrawnTrail[], stride: number): Float32Array {
  let count = 0;
  for (const trail of trails) eachStretch(trail.places, stride, () => ++count);
  const ends = new Float32Array(6 * count);
  let at = 0;
  for (const { places } of trails)
    eachStretch(places, stride, (from, to) => {
      for (let k = 0; k < 3; ++k) {
        ends[at + k] = places[3 * from + k];
        ends[at + 3 + k] = places[3 * to + k];
      }
      at += 6;
    });
  return ends;
}

/** Lines of a given width, or of one pixel, which software draws much faster. */
export class Lines {
  readonly object: LineSegments2 | LineSegments;
  private readonly colors: Uint8Array;
  private readonly colorBuffer: InstancedInterleavedBuffer | BufferAttribute;

  constructor(
    private readonly trails: readonly DrawnTrail[], private readonly stride: number,
    material: LineMaterial | LineBasicMaterial,
  ) {
    const ends = endsOf(trails, stride);
    this.colors = new Uint8Array(material.vertexColors ? ends.length : 0);
    if (material instanceof LineBasicMaterial) {
      const geometry = new BufferGeometry();
      geometry.setAttribute("position", new BufferAttribute(ends, 3));
      this.colorBuffer = new BufferAttribute(this.colors, 3, true);
      geometry.setAttribute("color", this.colorBuffer);
      this.object = new LineSegments(geometry, material);
    } else {
      const geometry = new LineSegmentsGeometry();
      const buffer = new InstancedInterleavedBuffer(ends, 6, 1);
      geometry.setAttribute("instanceStart", new InterleavedBufferAttribute(buffer, 3, 0));
      geometry.setAttribute("instanceEnd", new InterleavedBufferAttribute(buffer, 3, 3));
      geometry.instanceCount = ends.length / 6;
      this.colorBuffer = new InstancedInterleavedBuffer(this.colors, 6, 1);
      if (material.vertexColors) {
        geometry.setAttribute("instanceColorStart", new InterleavedBufferAttribute(this.colorBuffer, 3, 0, true));
        geometry.setAttribute("instanceColorEnd", new InterleavedBufferAttribute(this.colorBuffer, 3, 3, true));
      }
      this.object = new LineSegments2(geometry, material);
    }
    this.object.frustumCulled = false;
  }

  /** In Beats a stretch has the colour of its first sample, in Flow that of its last; in other modes the two blend. */
  recolor(colorsOf: (trail: number) => SampleColors): void {
    let at = 0;
    for (const { index, places } of this.trails) {
      const { values, mode } = colorsOf(index);
      eachStretch(places, this.stride, (from, to) => {
        copy(this.colors, at, values, mode === 2 ? to : from);
        copy(this.colors, at + 3, values, mode === 3 ? from : to);
        at += 6;
      });
    }
    this.colorBuffer.needsUpdate = true;
  }

  dispose(): void {
    this.object.geometry.dispose();
  }
}

function pointsOf(places: Float32Array, material: ShaderMaterial): Points {
  const geometry = new BufferGeometry();
  geometry.setAttribute("position", new BufferAttribute(places, 3));
  const points = new Points(geometry, material);
  points.frustumCulled = false;
  return points;
}

export class Dots {
  readonly object: Points;
  private readonly colors: BufferAttribute;

  constructor(
    private readonly trails: readonly DrawnTrail[], private readonly every: number, material: ShaderMaterial,
  ) {
    const places: number[] = [];
    for (const trail of trails)
      eachDot(trail, every, (s) => places.push(trail.places[3 * s], trail.places[3 * s + 1], trail.places[3 * s + 2]));
    this.object = pointsOf(Float32Array.from(places), material);
    this.colors = new BufferAttribute(new Uint8Array(places.length), 3, true);
    this.object.geometry.setAttribute("color", this.colors);
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
export function keyMarkers(trails: readonly DrawnTrail[], material: ShaderMaterial): Points {
  const total = trails.reduce((sum, trail) => sum + trail.keyPlaces.length, 0);
  const places = new Float32Array(total);
  let at = 0;
  for (const { keyPlaces } of trails)
    for (let i = 0; i < keyPlaces.length; i += 3) {
      if (!finiteAt(keyPlaces, i / 3)) continue;
      places.set(keyPlaces.subarray(i, i + 3), at);
      at += 3;
    }
  return pointsOf(places.slice(0, at), material);
}
