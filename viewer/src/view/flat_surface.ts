// Draws the trails on a plain canvas, for browsers without WebGL: lines, dots and keys, without depth and without boxes.

import type { App } from "../model/app";
import { eachDot, stretchesOf, type DrawnTrail, type SampleColors } from "./primitives/batch";
import { styleOf, type Drawing, type TrailLayers } from "./layers";
import { isEmpty } from "./primitives/moved";
import type { Area, Projection, Spot } from "./primitives/projection";
import { pixelsOf, type Surface, type View } from "./surface";
import type { Colors } from "./theme";

/** Pixels by which the line around a selected trail is wider than the trail's own. */
const AROUND = 5;

/** Pixels by which more is drawn than is shown of an area. */
const BORDER = 16;

type Context = CanvasRenderingContext2D;

const spotOf = (projection: Projection, places: Float32Array, i: number): Spot | null =>
  places[3 * i] === places[3 * i] ? projection.spot(places[3 * i], places[3 * i + 1], places[3 * i + 2]) : null;

/** The colour of a stretch: in Beats that of its first sample, in Flow that of its last, else the mean of the two. */
function colorOf({ values, mode }: SampleColors, from: number, to: number): [number, number, number] {
  const [a, b] = [mode === 2 ? to : from, mode === 3 ? from : to];
  const mean = (k: number) => (values[3 * a + k] + values[3 * b + k]) >> 1;
  return [mean(0), mean(1), mean(2)];
}

export class FlatSurface implements Surface {
  readonly canvas = document.createElement("canvas");
  private readonly context = this.canvas.getContext("2d")!;
  private readonly sheet = document.createElement("canvas").getContext("2d")!;
  private ratio = 1;

  constructor(private readonly app: App, private readonly layers: TrailLayers, private readonly colors: () => Colors) {}

  resize(width: number, height: number, ratio: number): void {
    [this.canvas.width, this.canvas.height] = [Math.round(width * ratio), Math.round(height * ratio)];
    this.ratio = ratio;
  }

  draw(view: View): number {
    return this.paint(this.context, view, this.layers.trails);
  }

  /** On a sheet of its own: at the edge of what is cut off, canvases smooth lines in another way. */
  drawArea(view: View, area: Area, trails: ReadonlySet<number>): boolean {
    const { sheet, context: { canvas } } = this;
    const pixels = pixelsOf(area, this.ratio, view.projection);
    if (!pixels) return false;
    if (isEmpty(pixels)) return true;
    if (sheet.canvas.width !== canvas.width || sheet.canvas.height !== canvas.height)
      [sheet.canvas.width, sheet.canvas.height] = [canvas.width, canvas.height];
    const { left, top, right, bottom } = pixels;
    const [width, height] = [right - left, bottom - top];
    sheet.save();
    sheet.setTransform(1, 0, 0, 1, 0, 0);
    sheet.beginPath();
    sheet.rect(left - BORDER, top - BORDER, width + 2 * BORDER, height + 2 * BORDER);
    sheet.clip();
    this.paint(sheet, view, this.layers.trails.filter(({ index }) => trails.has(index)));
    sheet.restore();
    this.context.setTransform(1, 0, 0, 1, 0, 0);
    this.context.drawImage(sheet.canvas, left, top, width, height, left, top, width, height);
    return true;
  }

  /** Returns the number of stretches. */
  private paint(context: Context, { drawing, projection, background }: View, trails: readonly DrawnTrail[]): number {
    const { ratio } = this;
    const { selected } = this.app.store.state;
    context.setTransform(ratio, 0, 0, ratio, 0, 0);
    context.fillStyle = background;
    context.fillRect(0, 0, projection.width, projection.height);
    context.lineCap = context.lineJoin = "round";
    const last = (trail: DrawnTrail) => Number(selected.has(trail.index));
    let stretches = 0;
    for (const trail of [...trails].sort((a, b) => last(a) - last(b))) stretches += this.drawTrail(context, trail, drawing, projection);
    return stretches;
  }

  finish(): void {
    this.context.getImageData(0, 0, 1, 1);
  }

  dispose(): void {}

  private drawTrail(context: Context, trail: DrawnTrail, drawing: Drawing, projection: Projection): number {
    const { lineWidth, pointSize, showLine, showDots } = styleOf(this.app, trail.index);
    const { selected, showKeys } = this.app.store.state;
    const lined = showLine && lineWidth > 0;
    const stretches = lined ? stretchesOf(trail.places, drawing.stride) : new Uint32Array();
    const width = drawing.plain ? 1 : lineWidth;
    if (selected.has(trail.index) && selected.size < this.layers.trails.length) this.around(context, trail, stretches, width + AROUND, projection);
    this.strokes(context, trail, stretches, width, projection);
    if (showDots && pointSize > 0 && (!drawing.plain || !lined)) this.dots(context, trail, Math.max(drawing.dotEvery, drawing.stride), pointSize, projection);
    if (showKeys && !drawing.plain) this.keys(context, trail, Math.max(9, pointSize + 5) / 2, projection);
    return stretches.length / 2;
  }

  private around(context: Context, { places }: DrawnTrail, stretches: Uint32Array, width: number, projection: Projection): void {
    context.beginPath();
    this.path(context, places, stretches, projection, () => {});
    context.lineWidth = width;
    context.strokeStyle = this.colors().selected;
    context.stroke();
  }

  /** Adds stretches to the path; `begin` is called before each. */
  private path(context: Context, places: Float32Array, stretches: Uint32Array, projection: Projection, begin: (from: number, to: number) => boolean | void): void {
    let before: Spot | null = null;
    let end = -1;
    for (let k = 0; k < stretches.length; k += 2) {
      const [from, to] = [stretches[k], stretches[k + 1]];
      const anew = begin(from, to) || from !== end;
      const a = from === end ? before : spotOf(projection, places, from);
      const b = spotOf(projection, places, to);
      [before, end] = [b, to];
      if (!a || !b) continue;
      if (anew) context.moveTo(a.x, a.y);
      context.lineTo(b.x, b.y);
    }
  }

  /** Stretches of nearly the same colour are one path: a path of its own for each takes ten times as long. */
  private strokes(context: Context, { index, places }: DrawnTrail, stretches: Uint32Array, width: number, projection: Projection): void {
    const colors = this.layers.drawnColors(index);
    let shade = -1;
    context.lineWidth = width;
    context.beginPath();
    this.path(context, places, stretches, projection, (from, to) => {
      const [r, g, b] = colorOf(colors, from, to);
      const next = ((r >> 3) << 10) | ((g >> 3) << 5) | (b >> 3);
      if (next === shade) return false;
      context.stroke();
      context.beginPath();
      context.strokeStyle = `rgb(${r},${g},${b})`;
      shade = next;
      return true;
    });
    context.stroke();
  }

  private dots(context: Context, trail: DrawnTrail, every: number, size: number, projection: Projection): void {
    const { values } = this.layers.drawnColors(trail.index);
    eachDot(trail, every, (i) => {
      const at = spotOf(projection, trail.places, i);
      if (!at) return;
      context.fillStyle = `rgb(${values[3 * i]},${values[3 * i + 1]},${values[3 * i + 2]})`;
      context.beginPath();
      context.arc(at.x, at.y, size / 2, 0, 2 * Math.PI);
      context.fill();
    });
  }

  private keys(context: Context, { keyPlaces }: DrawnTrail, reach: number, projection: Projection): void {
    context.fillStyle = "#ffffff";
    context.strokeStyle = "#1c2430";
    context.lineWidth = 1.4;
    for (let i = 0; 3 * i < keyPlaces.length; ++i) {
      const at = spotOf(projection, keyPlaces, i);
      if (!at) continue;
      context.beginPath();
      context.moveTo(at.x, at.y - reach);
      context.lineTo(at.x + reach, at.y);
      context.lineTo(at.x, at.y + reach);
      context.lineTo(at.x - reach, at.y);
      context.closePath();
      context.fill();
      context.stroke();
    }
  }
}
