// How surfaces, lines of one pixel, dots and key markers look. A browser takes 20 to 50 milliseconds to make a program
// where software draws, so there are few: colours and shapes are not programs of their own.

import { Color, DoubleSide, InstancedBufferAttribute, ShaderMaterial, type ShaderMaterialParameters } from "three";
import { channels } from "./shades";

/** A colour for all of a geometry: what is not drawn many times reads the first instance's for every corner. */
export const oneColor = (color: string): InstancedBufferAttribute => new InstancedBufferAttribute(Uint8Array.from(channels(color)), 3, true);

const FLAT_VERTEX = `
attribute vec3 color;
varying vec3 vColor;
void main() {
  vColor = color;
  gl_Position = projectionMatrix * modelViewMatrix * vec4(position, 1.0);
}`;

const FLAT_FRAGMENT = `
uniform float strength;
varying vec3 vColor;
void main() {
  gl_FragColor = vec4(vColor, strength);
}`;

/** Surfaces, seen from both sides, and lines of one pixel, in the colours of their corners. */
export const flatMaterial = (more: ShaderMaterialParameters = {}, strength = 1): ShaderMaterial =>
  new ShaderMaterial({
    vertexShader: FLAT_VERTEX, fragmentShader: FLAT_FRAGMENT, uniforms: { strength: { value: strength } }, side: DoubleSide, ...more,
  });

/** Of one pixel, in the samples' colours. */
export const thinMaterial = (ghost: boolean): ShaderMaterial => flatMaterial({ depthTest: !ghost });

const POINT_VERTEX = `
attribute vec3 color;
uniform float size;
uniform float lift;
varying vec3 vColor;
void main() {
  vColor = color;
  gl_Position = projectionMatrix * modelViewMatrix * vec4(position, 1.0);
  gl_Position.z -= lift * gl_Position.w;
  gl_PointSize = size;
}`;

// The distance from the middle, 1 at the edge: round, or with corners to the sides and up and down.
const POINT_FRAGMENT = `
uniform float size;
uniform float edge;
uniform float pointed;
uniform vec3 rim;
varying vec3 vColor;
void main() {
  vec2 p = 2.0 * gl_PointCoord - 1.0;
  float inside = (1.0 - mix(length(p), abs(p.x) + abs(p.y), pointed)) * size * 0.5;
  if (inside < 0.0) discard;
  gl_FragColor = vec4(inside < edge ? rim : vColor, 1.0);
}`;

interface PointStyle {
  /** Device pixels. */
  readonly size: number;
  readonly ghost: boolean;
  /** Width and colour of the rim, device pixels. */
  readonly edge: number;
  readonly rim: string;
}

const pointMaterial = (pointed: 0 | 1, lift: number, style: PointStyle) =>
  new ShaderMaterial({
    vertexShader: POINT_VERTEX,
    fragmentShader: POINT_FRAGMENT,
    uniforms: {
      size: { value: style.size },
      lift: { value: lift },
      pointed: { value: pointed },
      edge: { value: style.edge },
      rim: { value: new Color(style.rim) },
    },
    depthTest: !style.ghost,
  });

/** Dots lie a hair before their line, key markers before both. */
export const dotMaterial = (style: PointStyle): ShaderMaterial => pointMaterial(0, 2e-5, style);
export const keyMaterial = (style: PointStyle): ShaderMaterial => pointMaterial(1, 4e-5, style);
