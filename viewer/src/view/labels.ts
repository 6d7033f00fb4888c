// Room for text in the picture: labels that avoid each other and the edges, and are shortened where they must be.

import type { Spot } from "./primitives/projection";

const CELL = 4;
/** Pixels that a text keeps from the picture's edges, and its height above and below its base line. */
const EDGE = 4;
const ABOVE = 11;
const BELOW = 3;

/** The squares of the picture that already hold something. */
export class Room {
  private readonly cells = new Set<number>();

  constructor(private readonly width: number, private readonly height: number) {}

  take(left: number, top: number, width: number, height: number): void {
    this.each(left, top, width, height, (cell) => void this.cells.add(cell));
  }

  /** Where text of this width stands free beside a spot, its base line; null where it does not. It is taken then. */
  beside(at: Spot, width: number): Spot | null {
    for (const [dx, dy] of [
      [10, -6], [10, 14], [-10 - width, -6], [-10 - width, 14], [12, 4], [-12 - width, 4], [-width / 2, -12], [-width / 2, 22],
      [10, -22], [10, 30], [-10 - width, -22], [-10 - width, 30],
    ]) {
      const [left, top] = [at.x + dx, at.y + dy - ABOVE];
      if (!this.free(left, top, width, ABOVE + BELOW)) continue;
      this.take(left, top, width, ABOVE + BELOW);
      return { x: left, y: top + ABOVE };
    }
    return null;
  }

  private free(left: number, top: number, width: number, height: number): boolean {
    if (left < EDGE || top < EDGE || left + width > this.width - EDGE || top + height > this.height - EDGE) return false;
    let free = true;
    this.each(left, top, width, height, (cell) => (free &&= !this.cells.has(cell)));
    return free;
  }

  private each(left: number, top: number, width: number, height: number, visit: (cell: number) => void): void {
    for (let x = Math.floor(left / CELL); x <= (left + width) / CELL; ++x)
      for (let y = Math.floor(top / CELL); y <= (top + height) / CELL; ++y) visit(x * 65_536 + y);
  }
}

/** The text, its middle left out where it is wider than that. */
export function shortened(text: string, most: number, widthOf: (text: string) => number): string {
  if (widthOf(text) <= most) return text;
  const letters = [...text];
  for (let kept = letters.length - 1; kept > 2; --kept) {
    const head = Math.floor(kept / 2);
    const short = `${letters.slice(0, head).join("").trimEnd()}…${letters.slice(letters.length - (kept - head)).join("").trimStart()}`;
    if (widthOf(short) <= most) return short;
  }
  return "…";
}
