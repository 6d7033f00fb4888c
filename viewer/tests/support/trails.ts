// Trails that tests make up, in the form in which the program writes them into the page.

import { rampColor } from "../../src/model/colors";
import type { ColorMode, Measure, StaticBox, Vec3 } from "../../src/source/trail";
import type { Header } from "../../src/source/embedded";

export interface TrailInput {
  name: string;
  /** The long path; "|NAME" when left out. */
  source?: string;
  /** The source of another trail. */
  parent?: string;
  /** World positions, a sample each. */
  points: Vec3[];
  startFrame?: number;
  frameStep?: number;
  keyTimes?: number[];
  /** Left out: the samples at the key times, which then must be there. */
  keyPoints?: Vec3[];
  /** Pushed colours, 0..255, a triple a sample; slow blue to fast red when left out. */
  colors?: Vec3[];
  colorMode?: ColorMode;
  lineWidth?: number;
  pointSize?: number;
  showLine?: boolean;
  showDots?: boolean;
  ghost?: boolean;
  warnings?: string[];
  /** As many as the scene's `measures`; all unknown when left out. */
  measures?: (number | null)[];
  /** World positions of the same object in a second scene, as many as `points`. */
  compare?: Vec3[];
}

export interface SceneInput {
  scene?: string;
  fps?: number;
  range?: [number, number];
  current?: number;
  unit?: string;
  upAxis?: "y" | "z";
  /** Left out: yes, so that trails show their own modes. */
  colorModeChosen?: boolean;
  keyTimeBytes?: 4 | 8;
  /** The second scene, where there is one. */
  compared?: { scene: string; take: string | null };
  /** Left out: floor and figure_height alone. */
  measures?: Measure[];
  statics?: StaticBox[];
  trails: TrailInput[];
}

const NOT_FINITE = 0xffffffff;

/** Where the coordinates of a trail lie, as the program packs them. */
function box(points: readonly Vec3[]): { low: Vec3; step: Vec3 } {
  const finite = points.filter((p) => p.every(Number.isFinite));
  const edge = (pick: (a: number, b: number) => number, k: number) =>
    finite.length ? finite.map((p) => p[k]).reduce((a, b) => pick(a, b)) : 0;
  const low = [0, 1, 2].map((k) => edge(Math.min, k)) as unknown as Vec3;
  const step = [0, 1, 2].map((k) => (edge(Math.max, k) / 2 - low[k] / 2) / 2147483647) as unknown as Vec3;
  return { low, step };
}

function pack(points: readonly Vec3[], { low, step }: { low: Vec3; step: Vec3 }): Buffer {
  const words = Uint32Array.from(
    points.flatMap((p) =>
      p.every(Number.isFinite)
        ? p.map((c, k) => (step[k] === 0 ? 0 : Math.min(NOT_FINITE - 1, Math.round((c - low[k]) / step[k]))))
        : [NOT_FINITE, NOT_FINITE, NOT_FINITE],
    ),
  );
  return Buffer.from(words.buffer);
}

/** Colours by speed for trails that bring none: the fastest stretch red. */
function speedColors(points: readonly Vec3[]): Vec3[] {
  const speed = points.map((p, i) => {
    const from = points[Math.max(0, i - 1)];
    return Math.hypot(p[0] - from[0], p[1] - from[1], p[2] - from[2]) || 0;
  });
  const fastest = speed.reduce((a, b) => Math.max(a, b), 0) || 1;
  return speed.map((s) => rampColor(s / fastest).map((c) => Math.round(255 * c)) as unknown as Vec3);
}

function encodeTrail(trail: TrailInput, keyTimeBytes: 4 | 8, measures: readonly Measure[]) {
  const { points, keyTimes = [], keyPoints } = trail;
  const place = box([...points, ...(keyPoints ?? [])]);
  const there = box(trail.compare ?? []);
  const times = keyTimeBytes === 4 ? Float32Array.from(keyTimes) : Float64Array.from(keyTimes);
  return {
    header: {
      viz: `${trail.name}Viz`, source: trail.source ?? `|${trail.name}`, name: trail.name, parent: trail.parent ?? null,
      samples_per_frame: 1,
      color_mode: trail.colorMode ?? 1, start_frame: trail.startFrame ?? 1, frame_step: trail.frameStep ?? 1,
      line_width: trail.lineWidth ?? 2, point_size: trail.pointSize ?? 4, show_line: trail.showLine ?? true,
      show_dots: trail.showDots ?? true, ghost: trail.ghost ?? false, count: points.length,
      low: [...place.low] as [number, number, number], step: [...place.step] as [number, number, number],
      keys: keyTimes.length, keys_on_samples: !keyPoints, warnings: trail.warnings ?? [],
      measures: trail.measures ?? measures.map(() => null),
      compare: trail.compare
        ? { source: `|second:${trail.name}`, low: [...there.low] as [number, number, number], step: [...there.step] as [number, number, number] }
        : null,
    },
    compared: pack(trail.compare ?? [], there),
    positions: pack(points, place),
    keyPositions: pack(keyPoints ?? [], place),
    keyTimes: Buffer.from(times.buffer),
    colors: Buffer.from((trail.colors ?? speedColors(points)).flat()),
  };
}

const aligned = (part: Buffer) => Buffer.concat([part, Buffer.alloc((8 - (part.length % 8)) % 8)]);

/** The header and the data of a scene. */
export function encodeScene(input: SceneInput): { header: Header; data: Buffer } {
  const bytes = input.keyTimeBytes ?? 4;
  const unit = input.unit ?? "cm";
  const measures = input.measures ?? ["floor", "figure_height"].map((name) => ({ name, unit }));
  const trails = input.trails.map((trail) => encodeTrail(trail, bytes, measures));
  const part = (name: "positions" | "keyPositions" | "keyTimes" | "colors" | "compared") =>
    aligned(Buffer.concat(trails.map((trail) => trail[name])));
  const [positions, keyPositions, keyTimes] = [part("positions"), part("keyPositions"), part("keyTimes")];
  const colors = part("colors");
  const data = Buffer.concat([positions, keyPositions, keyTimes, colors, part("compared")]);
  const afterKeys = positions.length + keyPositions.length;
  const afterTimes = afterKeys + keyTimes.length;
  const header: Header = {
    format: 1, scene: input.scene ?? "scenes/test.usda", fps: input.fps ?? 24, range: input.range ?? [1, 48],
    current: input.current ?? 1, unit, up_axis: input.upAxis ?? "y",
    color_mode_chosen: input.colorModeChosen ?? true, compare: input.compared ?? null, key_time_bytes: bytes,
    sections: {
      positions: 0, key_positions: positions.length, key_times: afterKeys, colors: afterTimes,
      compared: afterTimes + colors.length,
    },
    bytes: data.length,
    measures,
    trails: trails.map((trail) => trail.header),
    statics: input.statics ?? [],
  };
  return { header, data };
}
