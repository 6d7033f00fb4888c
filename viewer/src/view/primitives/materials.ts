// How lines, dots and key markers look.

import { Color, LineBasicMaterial, ShaderMaterial } from "three";
import { FatLineMaterial, type FatLineStyle } from "./fat_lines";

export const lineMaterial = (style: FatLineStyle): FatLineMaterial => new FatLineMaterial(style);

/** Of one pixel, in the samples' colours. */
export const thinMaterial = (ghost: boolean): LineBasicMaterial =>
  new LineBasicMaterial({ vertexColors: true, depthTest: !ghost });

const vertex = (color: string) => `
${color}
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
const shape = (distance: string) => `
uniform float size;
uniform float edge;
uniform vec3 rim;
varying vec3 vColor;
void main() {
  vec2 p = 2.0 * gl_PointCoord - 1.0;
  float inside = (1.0 - (${distance})) * size * 0.5;
  if (inside < 0.0) discard;
  gl_FragColor = vec4(inside < edge ? rim : vColor, 1.0);
}`;
const ROUND = shape("length(p)");
const DIAMOND = shape("abs(p.x) + abs(p.y)");

interface PointStyle {
  /** Device pixels. */
  readonly size: number;
  readonly ghost: boolean;
  /** Width and colour of the rim, device pixels. */
  readonly edge: number;
  readonly rim: string;
}

const pointMaterial = (color: string, fragmentShader: string, lift: number, style: PointStyle) =>
  new ShaderMaterial({
    vertexShader: vertex(color),
    fragmentShader,
    uniforms: {
      size: { value: style.size },
      lift: { value: lift },
      edge: { value: style.edge },
      rim: { value: new Color(style.rim) },
    },
    depthTest: !style.ghost,
  });

/** Dots lie a hair before their line, key markers before both. */
export const dotMaterial = (style: PointStyle) => pointMaterial("attribute vec3 color;", ROUND, 2e-5, style);
export function keyMaterial(style: PointStyle & { readonly fill: string }): ShaderMaterial {
  const material = pointMaterial("uniform vec3 color;", DIAMOND, 4e-5, style);
  material.uniforms.color = { value: new Color(style.fill) };
  return material;
}
