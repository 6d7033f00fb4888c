// A picture to save: what is drawn, with a title, the current frame and the legend where they are wanted.

import type { App } from "../model/app";
import { objectColor } from "../model/colors";
import { baseName, frameText } from "../model/format";
import { legendColors, legendItems, type LegendItem } from "../model/legend";
import { COLOR_MODES } from "../source/trail";
import type { Colors } from "./theme";

/** CSS pixels. */
const HEAD = 36;
const FOOT = 30;
const EDGE = 14;
const RAMP = 90;

type Context = CanvasRenderingContext2D;

/** Writes and paints from left to right, as long as there is room. */
class Line {
  private x = EDGE;

  constructor(private readonly context: Context, private readonly y: number, private readonly right: number, private readonly ink: string) {}

  /** False when the text has no room; nothing is written then. */
  text(text: string, strong = false): boolean {
    const { context } = this;
    context.font = `${strong ? "600 " : ""}12px system-ui, sans-serif`;
    const { width } = context.measureText(text);
    if (this.x + width > this.right) return false;
    context.fillStyle = this.ink;
    context.fillText(text, this.x, this.y + 4);
    this.x += width + 8;
    return true;
  }

  paint(colors: readonly string[], width: number): void {
    colors.forEach((color, i) => {
      this.context.fillStyle = color;
      this.context.fillRect(this.x + (i * width) / colors.length, this.y - 6, width / colors.length + 0.5, 12);
    });
    this.x += width + 6;
  }
}

const swatches = (line: Line, items: readonly LegendItem[]): boolean =>
  items.every(([color, text]) => {
    line.paint([color], 12);
    return line.text(text);
  });

function drawLegend(line: Line, app: App, trails: readonly number[]): void {
  const { colorBy, mode, palette } = app.store.state;
  if (colorBy === "object") {
    trails.every((index) => swatches(line, [[objectColor(index), app.motion.trails[index].name]]));
    return;
  }
  const modes = mode === null ? [...new Set(trails.map((index) => app.motion.trails[index].colorMode))].sort() : [mode];
  for (const each of modes) {
    line.text(COLOR_MODES[each], true);
    if (each !== 1) swatches(line, legendItems(each, palette));
    else {
      line.text("slow");
      line.paint(legendColors(1, palette), RAMP);
      line.text("fast");
    }
  }
}

function drawHead(context: Context, app: App, width: number, ink: string): void {
  const { pictureTitle, pictureFrame, frame } = app.store.state;
  context.fillStyle = ink;
  context.font = "600 16px system-ui, sans-serif";
  const text = pictureFrame ? `Frame ${frameText(frame)}` : "";
  const right = width - EDGE - context.measureText(text).width;
  if (pictureTitle) context.fillText(baseName(app.scene.name), EDGE, HEAD - 12, right - 2 * EDGE);
  context.fillText(text, right, HEAD - 12);
}

/** The layers, one above the other, with what is chosen around them; `ratio` device pixels a CSS pixel. */
export function framed(
  app: App, trails: readonly number[], layers: readonly HTMLCanvasElement[], ratio: number, colors: Colors,
): HTMLCanvasElement {
  const { pictureTitle, pictureFrame, pictureLegend } = app.store.state;
  const [head, foot] = [pictureTitle || pictureFrame ? HEAD : 0, pictureLegend ? FOOT : 0];
  const canvas = document.createElement("canvas");
  canvas.width = layers[0].width;
  canvas.height = layers[0].height + Math.round((head + foot) * ratio);
  const context = canvas.getContext("2d")!;
  context.fillStyle = colors.background;
  context.fillRect(0, 0, canvas.width, canvas.height);
  for (const layer of layers) context.drawImage(layer, 0, Math.round(head * ratio));
  context.scale(ratio, ratio);
  const [width, height] = [canvas.width / ratio, canvas.height / ratio];
  if (head) drawHead(context, app, width, colors.ink);
  if (foot) drawLegend(new Line(context, height - FOOT / 2, width - EDGE, colors.ink), app, trails);
  return canvas;
}

export const blobOf = (canvas: HTMLCanvasElement): Promise<Blob> =>
  new Promise((resolve, reject) =>
    canvas.toBlob((blob) => (blob ? resolve(blob) : reject(new Error("The picture could not be made: choose a smaller size, or make the window smaller")))));
