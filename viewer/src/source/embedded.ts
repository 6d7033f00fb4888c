// Trails written into the page by the program: a JSON header and, in base64, the arrays that it describes.

import { decodeBase64, takeBlock } from "./page_blocks";
import type { ColorMode, Measure, Scene, StaticBox, Trail, TrailSource } from "./trail";

/** Marks a coordinate of a sample that is not a finite number. */
const NOT_FINITE = 0xffffffff;

interface TrailHeader {
  viz: string;
  source: string;
  name: string;
  parent: string | null;
  samples_per_frame: number;
  color_mode: number;
  start_frame: number;
  frame_step: number;
  line_width: number;
  point_size: number;
  show_line: boolean;
  show_dots: boolean;
  ghost: boolean;
  count: number;
  low: [number, number, number];
  step: [number, number, number];
  keys: number;
  keys_on_samples: boolean;
  warnings: string[];
  measures: (number | null)[];
  compare: { source: string; low: [number, number, number]; step: [number, number, number] } | null;
}

export interface Header {
  format: number;
  scene: string;
  fps: number;
  range: [number, number];
  current: number;
  unit: string;
  up_axis: "y" | "z";
  color_mode_chosen: boolean;
  compare: { scene: string; take: string | null } | null;
  key_time_bytes: 4 | 8;
  sections: { positions: number; key_positions: number; key_times: number; colors: number; compared: number };
  bytes: number;
  measures: Measure[];
  trails: TrailHeader[];
  statics: StaticBox[];
}

/** Coordinates from their place in the trail's box. */
function unpack(codes: Uint32Array, low: readonly number[], step: readonly number[]): Float64Array {
  const values = new Float64Array(codes.length);
  const [lowX, lowY, lowZ] = low;
  const [stepX, stepY, stepZ] = step;
  for (let i = 0; i < codes.length; i += 3) {
    values[i] = codes[i] === NOT_FINITE ? NaN : lowX + codes[i] * stepX;
    values[i + 1] = codes[i + 1] === NOT_FINITE ? NaN : lowY + codes[i + 1] * stepY;
    values[i + 2] = codes[i + 2] === NOT_FINITE ? NaN : lowZ + codes[i + 2] * stepZ;
  }
  return values;
}

/** Triples of the samples at the keys' frames. */
function pick(points: Float64Array, times: Float64Array, start: number, step: number): Float64Array {
  const picked = new Float64Array(3 * times.length);
  times.forEach((time, i) => {
    const sample = Math.round((time - start) / step);
    for (let k = 0; k < 3; ++k) picked[3 * i + k] = points[3 * sample + k];
  });
  return picked;
}

/** How far a section has been read, in elements. */
class Cursor {
  private next = 0;
  constructor(private readonly start: number, private readonly elementBytes: number) {}
  /** Byte offset of the next `count` elements. */
  take(count: number): number {
    const offset = this.start + this.next * this.elementBytes;
    this.next += count;
    return offset;
  }
}

/** Throws an Error that says what is wrong when header and data do not belong together. */
export function readTrails(header: Header, data: ArrayBuffer): Trail[] {
  if (header.format !== 1) throw new Error(`The trails have format ${header.format}, but this page reads format 1: write the page again.`);
  if (data.byteLength !== header.bytes)
    throw new Error(`The trails have ${data.byteLength} bytes of data instead of ${header.bytes}: write the page again.`);
  const { sections } = header;
  const positions = new Cursor(sections.positions, 4);
  const keyPositions = new Cursor(sections.key_positions, 4);
  const keyTimes = new Cursor(sections.key_times, header.key_time_bytes);
  const colors = new Cursor(sections.colors, 1);
  const compared = new Cursor(sections.compared, 4);
  const words = (cursor: Cursor, count: number) => new Uint32Array(data, cursor.take(count), count);
  return header.trails.map((h) => {
    const points = unpack(words(positions, 3 * h.count), h.low, h.step);
    const at = keyTimes.take(h.keys);
    const times =
      header.key_time_bytes === 4
        ? Float64Array.from(new Float32Array(data, at, h.keys))
        : new Float64Array(data, at, h.keys).slice();
    return {
      viz: h.viz,
      source: h.source,
      name: h.name,
      parent: h.parent,
      samplesPerFrame: h.samples_per_frame,
      colorMode: h.color_mode as ColorMode,
      startFrame: h.start_frame,
      frameStep: h.frame_step,
      lineWidth: h.line_width,
      pointSize: h.point_size,
      showLine: h.show_line,
      showDots: h.show_dots,
      ghost: h.ghost,
      count: h.count,
      points,
      colors: new Uint8Array(data, colors.take(3 * h.count), 3 * h.count),
      keyTimes: times,
      keyPoints: h.keys_on_samples
        ? pick(points, times, h.start_frame, h.frame_step)
        : unpack(words(keyPositions, 3 * h.keys), h.low, h.step),
      warnings: h.warnings,
      measures: h.measures,
      compare: h.compare && { source: h.compare.source, points: unpack(words(compared, 3 * h.count), h.compare.low, h.compare.step) },
    };
  });
}

function readScene(header: Header): Scene {
  return {
    name: header.scene,
    fps: header.fps,
    first: header.range[0],
    last: header.range[1],
    current: header.current,
    unit: header.unit,
    upAxis: header.up_axis,
    colorModeChosen: header.color_mode_chosen,
    compared: header.compare,
    measures: header.measures,
    statics: header.statics,
  };
}

function blockText(id: string): string {
  const text = takeBlock(id);
  if (text === null) throw new Error("This page holds no trails. Make one that does with: vantorelix trails SCENE --out trails.html");
  return text;
}

/** The trails of this page. Throws an Error with a text for the reader. */
export function embeddedSource(): TrailSource {
  const header = JSON.parse(blockText("trails-header")) as Header;
  const trails = readTrails(header, decodeBase64(blockText("trails-data")));
  return { scene: readScene(header), trails: () => trails, subscribe: () => () => {} };
}
