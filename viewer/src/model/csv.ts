// Trails as a table, a line a sample.

import { isFinitePoint, sampleFrame, triple, type Motion } from "./motion";

const field = (text: string) => (/[",\r\n]/.test(text) ? `"${text.replace(/"/g, '""')}"` : text);

/** A number with the digits that the page has of it; nothing for what is not finite. */
const digits = (value: number) => (Number.isFinite(value) ? String(Number(value.toPrecision(12))) : "");

/** Positions as they are shown, in the scene's axes; spacing is the distance a frame to the next sample. */
export function selectionCsv(motion: Motion, trails: readonly number[]): string {
  const lines = ["source,sample,frame,x,y,z,spacing"];
  for (const index of trails) {
    const trail = motion.trails[index];
    const points = motion.shownPoints(index);
    const spacing = motion.spacing(index);
    for (let i = 0; i < trail.count; ++i) {
      const p = triple(points, i);
      const position = isFinitePoint(p) ? p.map(digits).join(",") : ",,";
      lines.push(`${field(trail.source)},${i},${digits(sampleFrame(trail, i))},${position},${digits(spacing[i])}`);
    }
  }
  return lines.join("\r\n") + "\r\n";
}
