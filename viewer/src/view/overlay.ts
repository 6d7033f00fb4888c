// Text and marks that are drawn over the trails, at the size of text.

import type { Colors } from "./theme";
import type { Spot } from "./projection";

export interface Label {
  readonly at: Spot;
  readonly text: string;
  readonly strong?: boolean;
}

export interface Mark {
  readonly at: Spot;
  readonly color: string;
  readonly strong: boolean;
}

/** The most labels that are drawn: nobody would read more. */
const MOST_LABELS = 250;

/** The squares of the picture that already hold a label. */
class Occupied {
  private readonly cells = new Set<number>();

  /** Whether the box was free; it is taken now. */
  take(left: number, top: number, width: number, height: number): boolean {
    const cells: number[] = [];
    for (let x = Math.floor(left / 8); x <= (left + width) / 8; ++x)
      for (let y = Math.floor(top / 8); y <= (top + height) / 8; ++y) cells.push(x * 65_536 + y);
    if (cells.some((cell) => this.cells.has(cell))) return false;
    cells.forEach((cell) => this.cells.add(cell));
    return true;
  }
}

export class Overlay {
  readonly canvas = document.createElement("canvas");
  private readonly context = this.canvas.getContext("2d")!;
  private colors!: Colors;
  private occupied = new Occupied();
  private labels = 0;

  begin(width: number, height: number, ratio: number, colors: Colors): void {
    const { canvas, context } = this;
    const [w, h] = [Math.round(width * ratio), Math.round(height * ratio)];
    if (canvas.width !== w || canvas.height !== h) [canvas.width, canvas.height] = [w, h];
    context.setTransform(ratio, 0, 0, ratio, 0, 0);
    context.clearRect(0, 0, width, height);
    this.colors = colors;
    this.occupied = new Occupied();
    this.labels = 0;
  }

  /** Where an object is now: a ring that no sample has. */
  mark({ at, color, strong }: Mark): void {
    const { context, colors } = this;
    const radius = strong ? 6.5 : 5;
    context.beginPath();
    context.arc(at.x, at.y, radius, 0, 2 * Math.PI);
    context.fillStyle = color;
    context.fill();
    context.lineWidth = strong ? 3 : 2;
    context.strokeStyle = strong ? colors.selected : colors.ink;
    context.stroke();
  }

  /** A ring around the sample that is pointed at. */
  ring(at: Spot): void {
    const { context, colors } = this;
    context.beginPath();
    context.arc(at.x, at.y, 9, 0, 2 * Math.PI);
    context.lineWidth = 2;
    context.strokeStyle = colors.ink;
    context.stroke();
  }

  /** Drawn beside its place if no other label is there; otherwise not at all. */
  label({ at, text, strong }: Label): void {
    if (this.labels >= MOST_LABELS) return;
    const { context, colors } = this;
    context.font = `${strong ? "600 13px" : "11px"} system-ui, sans-serif`;
    const width = context.measureText(text).width;
    const place = [[9, -5], [9, 13], [-9 - width, -5], [-9 - width, 13]].find(([dx, dy]) =>
      this.occupied.take(at.x + dx, at.y + dy - 11, width, 13));
    if (!place) return;
    ++this.labels;
    context.lineWidth = 3.5;
    context.lineJoin = "round";
    context.strokeStyle = colors.background;
    context.fillStyle = strong ? colors.ink : colors.soft;
    context.strokeText(text, at.x + place[0], at.y + place[1]);
    context.fillText(text, at.x + place[0], at.y + place[1]);
  }

  /** The directions of the axes, in a corner: name and direction in the picture (right, down; at most 1 long). */
  axes(x: number, y: number, directions: readonly (readonly [string, Spot])[]): void {
    const { context, colors } = this;
    context.font = "600 11px system-ui, sans-serif";
    context.textAlign = "center";
    for (const [name, direction] of directions) {
      context.beginPath();
      context.moveTo(x, y);
      context.lineTo(x + 24 * direction.x, y + 24 * direction.y);
      context.lineWidth = 2;
      context.strokeStyle = colors.axis;
      context.stroke();
      context.fillStyle = colors.soft;
      context.fillText(name, x + 33 * direction.x, y + 33 * direction.y + 4);
    }
    context.textAlign = "start";
  }

  /** A line of small text at the lower edge. */
  note(text: string, x: number, y: number): void {
    const { context, colors } = this;
    context.font = "11px system-ui, sans-serif";
    context.fillStyle = colors.soft;
    context.fillText(text, x, y);
  }
}
