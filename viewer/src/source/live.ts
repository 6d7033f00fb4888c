// Trails from the engine that runs beside the page, which follow edits of their keys.

import type { LiveClient } from "../../../web/src/live/client";
import type { Dragged, LiveEvent, MovedPart, Opened, TrailNumbers } from "../../../web/src/live/protocol";
import type { SceneRequest } from "./engine";
import { Listeners } from "./listeners";
import { LiveEditing } from "./live_editing";
import type { ChangedPart, ColorMode, Scene, Spaces, Takes, Trail, TrailChange, TrailSource, Writing } from "./trail";

/** As the engine has them where nobody chose. */
const LINE_WIDTH = 2.5;
const POINT_SIZE = 6;

function takesOf(wanted: string | undefined, { takes, take }: Opened["description"]): Takes | null {
  const names = takes.map(({ name }) => name);
  return names.length > 1 && take !== null ? { names, shown: take, usual: Math.max(0, names.indexOf(wanted ?? "")) } : null;
}

function sceneOf({ name, style, wanted }: SceneRequest, { description, measures, statics }: Opened): Scene {
  const [first, last] = description.range;
  const { first: from = first, last: to = last, colorMode } = wanted.trails;
  return {
    name, first: from, last: to, current: style.frame ?? from, fps: description.fps, unit: description.unit,
    upAxis: description.up_axis, colorModeChosen: colorMode !== undefined, measures, statics,
    compared: { scene: name, take: null, opened: true }, takes: takesOf(wanted.reading.take, description),
  };
}

const lastStep = (path: string) => path.split("|").pop()!;

/** A trail without its numbers. Its measures come later. */
function trailOf({ style }: SceneRequest, opened: Opened, index: number, numbers: TrailNumbers): Trail {
  const fields = opened.fields[index];
  return {
    viz: fields.viz, source: fields.source, name: fields.name, parent: fields.parent,
    samplesPerFrame: fields.samples_per_frame, colorMode: fields.color_mode as ColorMode,
    startFrame: fields.start_frame, frameStep: fields.frame_step, warnings: fields.warnings,
    lineWidth: style.lineWidth ?? LINE_WIDTH, pointSize: style.pointSize ?? POINT_SIZE,
    showLine: style.showLine ?? true, showDots: style.showDots ?? true, ghost: style.ghost ?? false,
    measures: opened.measures.map(() => null), compare: { source: fields.source, points: numbers.points }, ...arraysOf(numbers),
  };
}

const arraysOf = ({ points, colors, keyPoints, keyTimes }: TrailNumbers) =>
  ({ points, colors, keyPoints, keyTimes, count: points.length / 3 });

export class LiveSource implements TrailSource {
  readonly scene: Scene;
  readonly editing: LiveEditing;
  readonly writing: Writing;
  readonly spaces: Spaces;
  private list: readonly Trail[];
  /** The trails by their objects. */
  private readonly places: ReadonlyMap<string, number>;
  private readonly listeners = new Listeners<[TrailChange, readonly ChangedPart[]]>();

  /** `opened` may be another take than the request's own. */
  constructor(client: LiveClient, request: SceneRequest, opened: Opened) {
    this.scene = sceneOf(request, opened);
    this.list = opened.numbers.map((numbers, index) => trailOf(request, opened, index, numbers));
    this.editing = new LiveEditing(client, opened.history, (index) => this.list[index].source, () => this.list.length,
      (dragged) => this.move(dragged));
    this.spaces = {
      cameras: opened.cameras.map((camera) => ({ ...camera, name: lastStep(camera.source ?? camera.shape) })),
      matrices: (object, frames) => client.call("matrices", object, frames),
      lenses: (shape, frames) => client.call("lenses", shape, frames),
    };
    this.writing = { written: (form) => client.call("written", form) };
    this.places = new Map(this.list.map(({ source }, index) => [source, index]));
  }

  trails(): readonly Trail[] {
    return this.list;
  }

  subscribe(changed: (how: TrailChange, parts: readonly ChangedPart[]) => void): () => void {
    return this.listeners.add(changed);
  }

  hear(event: LiveEvent): void {
    if (event.kind === "measures") return this.measure(event.values);
    this.change(event.numbers, arraysOf);
    this.editing.work(event.pending ? { done: event.done, of: event.of } : null);
    if (event.numbers.length > 0) this.listeners.tell("final", []);
  }

  private measure(all: [number, (number | null)[]][]): void {
    this.change(all.map(([index, measures]) => ({ index, measures })), ({ measures }) => ({ measures }));
    this.listeners.tell("measured", []);
  }

  /** What a drag has moved, until the engine has made the trails again. */
  private move({ from, frame, keys, parts }: Dragged): void {
    this.change(parts, (part, { points }) => ({ points: withPart(points, part) }));
    if (frame !== from)
      this.change(this.dragged(keys), (_, { keyTimes }) => ({ keyTimes: keyTimes.map((time) => (time === from ? frame : time)) }));
    this.change(parts, (part, trail) => ({ keyPoints: withKeys(trail, part) }));
    this.change(this.dragged(keys), ({ position }, { keyTimes, keyPoints }) => {
      const moved = keyPoints.slice();
      keyTimes.forEach((time, k) => time === frame && moved.set(position, 3 * k));
      return { keyPoints: moved };
    });
    this.listeners.tell("provisional", [
      ...parts.map(({ index, first, points }) => ({ index, first, count: points.length / 3 })),
      ...this.dragged(keys).map(({ index }) => ({ index, first: 0, count: 0 })),
    ]);
  }

  /** Those that have a trail. */
  private dragged(keys: Dragged["keys"]) {
    return keys.flatMap(({ object, position }) => {
      const index = this.places.get(object);
      return index === undefined ? [] : [{ index, position }];
    });
  }

  private change<T extends { index: number }>(items: readonly T[], patch: (item: T, trail: Trail) => Partial<Trail>): void {
    const list = [...this.list];
    for (const item of items) list[item.index] = { ...list[item.index], ...patch(item, list[item.index]) };
    this.list = list;
  }
}

function withPart(points: Float64Array, { first, points: part }: MovedPart): Float64Array {
  const result = points.slice();
  result.set(part, 3 * first);
  return result;
}

/** The keys in a part that moved are where the nearest samples are. */
function withKeys({ points, keyTimes, keyPoints, startFrame, frameStep }: Trail, { first, points: part }: MovedPart): Float64Array {
  const moved = keyPoints.slice();
  keyTimes.forEach((time, k) => {
    const sample = Math.round((time - startFrame) / frameStep);
    if (sample >= first && sample < first + part.length / 3) moved.set(points.subarray(3 * sample, 3 * sample + 3), 3 * k);
  });
  return moved;
}
