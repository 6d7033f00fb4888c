// Trails as a table, a line a sample.

import type { Comparison } from "./compare";
import { isFinitePoint, sampleFrame, triple, type Motion } from "./motion";

const field = (text: string) => (/[",\r\n]/.test(text) ? `"${text.replace(/"/g, '""')}"` : text);

/** A number with the digits that the page has of it; nothing for what is not finite. */
const digits = (value: number) => (Number.isFinite(value) ? String(Number(value.toPrecision(12))) : "");

/**
 * Positions as they are shown, in the scene's axes; spacing is the distance a frame to the next sample. Beside a second
 * scene also the distance to the same object there.
 */
export function selectionCsv(motion: Motion, trails: readonly number[], comparison: Comparison | null = null): string {
  const lines = [`source,sample,frame,x,y,z,spacing${comparison ? ",distance" : ""}`];
  for (const index of trails) {
    const trail = motion.trails[index];
    const points = motion.shownPoints(index);
    const spacing = motion.spacing(index);
    const apart = comparison?.apart(index);
    for (let i = 0; i < trail.count; ++i) {
      const p = triple(points, i);
      const position = isFinitePoint(p) ? p.map(digits).join(",") : ",,";
      const end = apart ? `,${digits(apart[i])}` : "";
      lines.push(`${field(trail.source)},${i},${digits(sampleFrame(trail, i))},${position},${digits(spacing[i])}${end}`);
    }
  }
  return lines.join("\r\n") + "\r\n";
}
