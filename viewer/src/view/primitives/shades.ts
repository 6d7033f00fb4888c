// Colours on their way to the background: what is dimmed, and what fades.

import { Color } from "three";

/** The part of its strength that a trail beside selected ones keeps. */
export const DIMMED = 0.25;

/** The channels of a colour, 0..255. */
export function channels(color: string): [number, number, number] {
  const [r, g, b] = new Color(color).toArray();
  return [Math.round(255 * r), Math.round(255 * g), Math.round(255 * b)];
}

/** Triples of channels, each with its part of the strength; the rest is background. */
export function shaded(values: Uint8Array, background: string, strength: (sample: number) => number): Uint8Array {
  const ground = channels(background);
  const result = new Uint8Array(values.length);
  for (let i = 0; i < values.length; i += 3) {
    const part = strength(i / 3);
    for (let k = 0; k < 3; ++k) result[i + k] = Math.round(ground[k] + (values[i + k] - ground[k]) * part);
  }
  return result;
}

/** The same for a single colour of a style sheet. */
export function shade(color: string, background: string, strength: number): string {
  const [r, g, b] = shaded(Uint8Array.from(channels(color)), background, () => strength);
  return `rgb(${r},${g},${b})`;
}
