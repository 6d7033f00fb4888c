// Text and marks that are drawn over the trails, at the size of text.

import { Room, shortened } from "./labels";
import type { Colors } from "./theme";
import type { Area, Spot } from "./primitives/projection";

export interface Label {
  readonly at: Spot;
  readonly text: string;
  readonly strong?: boolean;
}

export interface Mark {
  readonly at: Spot;
  readonly color: string;
  /** A ring with the selection's colour, a ring, or a small dot. */
  readonly kind: "selected" | "ring" | "dot";
  /** Of the ring, where it tells one selected object from the others. */
  readonly ring?: string;
}

/** The most labels that are drawn: nobody would read more. */
const MOST_LABELS = 250;

/** Widths to which a label is shortened, one after the other, until there is room for it. */
const WIDTHS = [180, 110];

const NOTE = "11px system-ui, sans-serif";
const LINE = 15;

export class Overlay {
  readonly canvas = document.createElement("canvas");
  private readonly context = this.canvas.getContext("2d")!;
  private colors!: Colors;
  private room = new Room(0, 0);
  private labels = 0;
  private width = 0;
  private height = 0;

  begin(width: number, height: number, ratio: number, colors: Colors): void {
    const { canvas, context } = this;
    const [w, h] = [Math.round(width * ratio), Math.round(height * ratio)];
    if (canvas.width !== w || canvas.height !== h) [canvas.width, canvas.height] = [w, h];
    context.setTransform(ratio, 0, 0, ratio, 0, 0);
    context.clearRect(0, 0, width, height);
    this.colors = colors;
    this.room = new Room(width, height);
    [this.width, this.height] = [width, height];
    this.labels = 0;
  }

  /** Where an object is now: a ring that no sample has, or a small dot. */
  mark({ at, color, kind, ring }: Mark): void {
    const { context, colors } = this;
    const strong = kind === "selected";
    const radius = kind === "dot" ? 2.5 : strong ? 6 : 5;
    context.beginPath();
    context.arc(at.x, at.y, radius, 0, 2 * Math.PI);
    context.fillStyle = color;
    context.fill();
    if (kind === "dot") return;
    context.lineWidth = strong ? 3 : 2;
    context.strokeStyle = strong ? (ring ?? colors.selected) : colors.ink;
    context.stroke();
    this.room.take(at.x - radius, at.y - radius, 2 * radius, 2 * radius);
  }

  /** A ring where an object was or will be. */
  ghost(at: Spot, color: string): void {
    const { context } = this;
    context.beginPath();
    context.arc(at.x, at.y, 6, 0, 2 * Math.PI);
    context.lineWidth = 2;
    context.strokeStyle = color;
    context.stroke();
  }

  /** A line from a key to the end of a tangent; in dashes where the key's two sides turn alone. */
  handle(from: Spot, to: Spot, broken: boolean): void {
    const { context, colors } = this;
    context.lineWidth = 1.5;
    context.strokeStyle = context.fillStyle = colors.selected;
    context.setLineDash(broken ? [4, 3] : []);
    context.beginPath();
    context.moveTo(from.x, from.y);
    context.lineTo(to.x, to.y);
    context.stroke();
    context.setLineDash([]);
    context.beginPath();
    context.arc(to.x, to.y, 4, 0, 2 * Math.PI);
    context.fill();
  }

  /** Drawn beside its place, shortened where it must be; not at all where there is no room. */
  label({ at, text, strong }: Label): void {
    if (this.labels >= MOST_LABELS || !this.inside(at)) return;
    const { context, colors } = this;
    context.font = `${strong ? "600 13px" : "11px"} system-ui, sans-serif`;
    const widthOf = (part: string) => context.measureText(part).width;
    for (const most of WIDTHS) {
      const shown = shortened(text, most, widthOf);
      const place = this.room.beside(at, widthOf(shown));
      if (!place) continue;
      ++this.labels;
      context.lineWidth = 3.5;
      context.lineJoin = "round";
      context.strokeStyle = colors.background;
      context.fillStyle = strong ? colors.ink : colors.soft;
      context.strokeText(shown, place.x, place.y);
      context.fillText(shown, place.x, place.y);
      return;
    }
  }

  private inside({ x, y }: Spot): boolean {
    return x >= 0 && y >= 0 && x <= this.width && y <= this.height;
  }

  /** A thin grey line, broken where there is no spot; dashes in pixels. */
  mutedLine(spots: readonly (Spot | null)[], { dash = [], strength = 1 }: { dash?: number[]; strength?: number } = {}): void {
    const { context, colors } = this;
    context.beginPath();
    spots.forEach((spot, i) => {
      if (spot && spots[i - 1]) context.lineTo(spot.x, spot.y);
      else if (spot) context.moveTo(spot.x, spot.y);
    });
    context.setLineDash(dash);
    context.globalAlpha = strength;
    context.lineWidth = 1.25;
    context.lineJoin = "round";
    context.strokeStyle = colors.soft;
    context.stroke();
    context.globalAlpha = 1;
    context.setLineDash([]);
  }

  /** A small grey ring. */
  mutedMark(at: Spot): void {
    const { context, colors } = this;
    context.beginPath();
    context.arc(at.x, at.y, 3.5, 0, 2 * Math.PI);
    context.fillStyle = colors.background;
    context.fill();
    context.lineWidth = 1.5;
    context.strokeStyle = colors.soft;
    context.stroke();
  }

  /** An area with all around it veiled, and a text above it. */
  gate({ left, top, right, bottom }: Area, text: string): void {
    const { context, colors, width, height } = this;
    context.globalAlpha = 0.55;
    context.fillStyle = colors.background;
    for (const [x, y, w, h] of [[0, 0, width, top], [0, bottom, width, height - bottom], [0, top, left, bottom - top], [right, top, width - right, bottom - top]])
      context.fillRect(x, y, w, h);
    context.globalAlpha = 1;
    context.lineWidth = 1;
    context.strokeStyle = colors.ink;
    context.strokeRect(left, top, right - left, bottom - top);
    context.font = NOTE;
    context.fillStyle = colors.soft;
    context.fillText(text, left, top - 6);
    this.room.take(left, top - LINE, context.measureText(text).width, LINE);
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
    this.room.take(x - 40, y - 40, 80, 80);
  }

  /** Small text at the lower edge, in as many lines as it needs; the last one ends at `y`. */
  note(parts: readonly string[], x: number, y: number): void {
    const { context, colors } = this;
    context.font = NOTE;
    context.fillStyle = colors.soft;
    const lines: string[] = [];
    for (const part of parts) {
      const longer = lines.length > 0 ? `${lines[lines.length - 1]} · ${part}` : part;
      const fits = lines.length > 0 && context.measureText(longer).width <= this.width - x - 12;
      lines.splice(fits ? -1 : lines.length, 1, fits ? longer : part);
    }
    lines.forEach((line, i) => context.fillText(line, x, y - LINE * (lines.length - 1 - i)));
    const widest = Math.max(0, ...lines.map((line) => context.measureText(line).width));
    this.room.take(x, y - LINE * lines.length, widest, LINE * lines.length + 4);
  }
}
