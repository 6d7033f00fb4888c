// Lines that are some pixels wide, with round ends.
//
// Every stretch has four corners of its own in one indexed mesh. Drawing one quad many times, as three's own wide lines
// do, takes software some 20 microseconds a stretch: it begins anew for each. This takes less than a third of that.

import {
  BufferAttribute, BufferGeometry, DoubleSide, InterleavedBuffer, InterleavedBufferAttribute, Mesh, ShaderMaterial, Vector2,
  Vector4, type WebGLRenderer,
} from "three";
import { oneColor } from "./materials";
import { unculled } from "./unculled";

export interface FatLineStyle {
  /** CSS pixels. */
  readonly width: number;
  readonly ghost: boolean;
}

const vertex = `
attribute vec3 from;
attribute vec3 to;
attribute vec3 colorFrom;
attribute vec3 colorTo;
varying vec3 first;
varying vec3 last;
uniform vec2 viewport;
uniform float halfWidth;
varying vec2 place;
varying float span;

vec4 beforeNear(vec4 behind, vec4 other) {
  float a = behind.z + behind.w;
  float b = other.z + other.w;
  return a < 0.0 && b > 0.0 ? mix(behind, other, a / (a - b)) : behind;
}

void main() {
  vec4 a = projectionMatrix * modelViewMatrix * vec4(from, 1.0);
  vec4 b = projectionMatrix * modelViewMatrix * vec4(to, 1.0);
  if (a.z + a.w < 0.0 && b.z + b.w < 0.0) {
    gl_Position = vec4(0.0, 0.0, 2.0, 1.0); // behind the reader
    return;
  }
  vec4 c = beforeNear(a, b);
  vec4 d = beforeNear(b, a);
  vec2 begin = c.xy / c.w * viewport * 0.5;
  vec2 way = d.xy / d.w * viewport * 0.5 - begin;
  span = length(way);
  vec2 along = span > 1e-4 ? way / span : vec2(1.0, 0.0);
  bool atEnd = (gl_VertexID & 2) != 0;
  place = vec2(atEnd ? span + halfWidth : -halfWidth, (gl_VertexID & 1) != 0 ? halfWidth : -halfWidth);
  vec2 pixel = begin + along * place.x + vec2(-along.y, along.x) * place.y;
  // The round ends go on in the line's own slope, so that its depth is right where the samples are.
  float slope = (d.z / d.w - c.z / c.w) * min(halfWidth / max(span, 1e-4), 4.0);
  gl_Position = vec4(pixel / viewport * 2.0, atEnd ? d.z / d.w + slope : c.z / c.w - slope, 1.0);
  first = colorFrom;
  last = colorTo;
}`;

const fragment = `
uniform float halfWidth;
varying vec2 place;
varying float span;
varying vec3 first;
varying vec3 last;
void main() {
  float along = clamp(place.x, 0.0, span);
  if (distance(place, vec2(along, 0.0)) > halfWidth) discard;
  gl_FragColor = vec4(mix(first, last, span > 0.0 ? along / span : 0.0), 1.0);
}`;

export class FatLineMaterial extends ShaderMaterial {
  constructor({ width, ghost }: FatLineStyle) {
    super({
      vertexShader: vertex,
      fragmentShader: fragment,
      uniforms: {
        viewport: { value: new Vector2(1, 1) },
        halfWidth: { value: width / 2 },
      },
      depthTest: !ghost,
      side: DoubleSide, // the corners turn with the line
    });
  }

  /** For a picture of so many CSS pixels. */
  fit(renderer: WebGLRenderer): void {
    const { z, w } = renderer.getViewport(new Vector4());
    (this.uniforms.viewport.value as Vector2).set(z, w);
  }
}

/** What both ends of each stretch have, six numbers, four times in a row. */
function fillCorners<T extends Float32Array | Uint8Array>(corners: T, ends: T): T {
  for (let i = 0, at = 0; i < ends.length; i += 6)
    for (let corner = 0; corner < 4; ++corner)
      for (let k = 0; k < 6; ++k) corners[at++] = ends[i + k];
  return corners;
}

function cornerIndices(stretches: number): Uint32Array {
  const indices = new Uint32Array(6 * stretches);
  for (let i = 0, corner = 0; i < indices.length; i += 6, corner += 4) {
    indices[i] = corner;
    indices[i + 1] = indices[i + 3] = corner + 1;
    indices[i + 2] = indices[i + 5] = corner + 2;
    indices[i + 4] = corner + 3;
  }
  return indices;
}

function addPair(geometry: BufferGeometry, names: readonly [string, string], buffer: InterleavedBuffer, normalized = false): void {
  names.forEach((name, i) => geometry.setAttribute(name, new InterleavedBufferAttribute(buffer, 3, 3 * i, normalized)));
}

/** A mesh of such lines. */
export class FatLines {
  readonly object: Mesh;
  private readonly places: InterleavedBuffer;
  private readonly colors: InterleavedBuffer | null = null;

  /** `ends` holds x y z of both ends of each stretch. They have one colour, or those that recolor() gives them. */
  constructor(ends: Float32Array, material: FatLineMaterial, color?: string) {
    const geometry = new BufferGeometry();
    this.places = new InterleavedBuffer(fillCorners(new Float32Array(4 * ends.length), ends), 6);
    addPair(geometry, ["from", "to"], this.places);
    if (color === undefined) {
      this.colors = new InterleavedBuffer(new Uint8Array(4 * ends.length), 6);
      addPair(geometry, ["colorFrom", "colorTo"], this.colors, true);
    } else {
      for (const name of ["colorFrom", "colorTo"]) geometry.setAttribute(name, oneColor(color));
    }
    geometry.setIndex(new BufferAttribute(cornerIndices(ends.length / 6), 1));
    this.object = unculled(new Mesh(geometry, material));
    this.object.onBeforeRender = (renderer) => material.fit(renderer);
  }

  /** Puts an end, 0 to twice the number of stretches, to the place in `values` that begins at `from`. */
  moveEnd(end: number, values: Float32Array, from: number): void {
    const array = this.places.array as Float32Array;
    for (let corner = 0; corner < 4; ++corner)
      for (let k = 0; k < 3; ++k) array[24 * (end >> 1) + 6 * corner + 3 * (end & 1) + k] = values[from + k];
  }

  /** Lets ends that were put elsewhere be drawn there: so many from one on. */
  upload(end: number, count: number): void {
    const [first, last] = [end >> 1, (end + count - 1) >> 1];
    this.places.addUpdateRange(24 * first, 24 * (last - first + 1));
    this.places.needsUpdate = true;
  }

  /** Colours of both ends of each stretch. */
  recolor(ends: Uint8Array): void {
    if (!this.colors) return;
    fillCorners(this.colors.array as Uint8Array, ends);
    this.colors.needsUpdate = true;
  }
}
