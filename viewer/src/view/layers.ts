// The drawn trails: batches of a style each, at the details that were asked for, with the colours of the moment.

import { Group, type LineBasicMaterial, type Object3D } from "three";
import type { LineMaterial } from "three/examples/jsm/lines/LineMaterial.js";
import type { App } from "../model/app";
import { objectColor, trailColors } from "../model/colors";
import { yUp } from "../model/pose";
import { isVisible } from "../model/state";
import type { Trail, Vec3 } from "../source/trail";
import { Dots, eachStretch, keyMarkers, Lines, type DrawnTrail, type SampleColors } from "./batch";
import { dotMaterial, keyMaterial, lineMaterial, thinMaterial } from "./materials";
import type { Colors } from "./theme";

/** Up to this many stretches, every line has a casing and every dot a rim. */
const MOST_CASED = 60_000;

/** Ghosts come last, over everything. */
const order = (ghost: boolean, place: number) => (ghost ? 10 : 0) + place;

export interface DrawnStyle {
  readonly lineWidth: number;
  readonly pointSize: number;
  readonly showLine: boolean;
  readonly showDots: boolean;
  readonly ghost: boolean;
}

/** What the reader chose, else what the trail's node says. */
export function styleOf(app: App, index: number): DrawnStyle {
  const { state } = app.store;
  const trail = app.motion.trails[index];
  return {
    lineWidth: state.lineWidth ?? trail.lineWidth,
    pointSize: state.pointSize ?? trail.pointSize,
    showLine: state.showLine ?? trail.showLine,
    showDots: state.showDots ?? trail.showDots,
    ghost: state.ghost ?? trail.ghost,
  };
}

function places(points: Float64Array, upAxis: "y" | "z", origin: Vec3): Float32Array {
  const result = new Float32Array(points.length);
  for (let i = 0; i < points.length; i += 3) {
    const turned = yUp([points[i], points[i + 1], points[i + 2]], upAxis);
    for (let k = 0; k < 3; ++k) result[i + k] = turned[k] - origin[k];
  }
  return result;
}

/** Whether keys are nearly everywhere, as in a recorded motion: markers would tell nothing and hide the trail. */
export const hasDenseKeys = (trail: Trail): boolean => trail.keyTimes.length > 24 && trail.keyTimes.length > 0.4 * trail.count;

/** How much of the trails is drawn: through every `stride`th sample; plain is lines of a pixel and nothing else. */
export interface Drawing {
  readonly stride: number;
  readonly plain: boolean;
}

/** Everything that is drawn of the trails in one way. */
interface Level {
  readonly group: Group;
  readonly colored: (Lines | Dots)[];
  readonly disposables: { dispose(): void }[];
  stretches: number;
  /** Which colours it has. */
  version: number;
}

function grouped<T>(items: readonly T[], key: (item: T) => string): T[][] {
  const groups = new Map<string, T[]>();
  for (const item of items) {
    const found = groups.get(key(item));
    if (found) found.push(item);
    else groups.set(key(item), [item]);
  }
  return [...groups.values()];
}

export class TrailLayers {
  readonly group = new Group();
  private drawn: readonly DrawnTrail[] | null = null;
  private readonly levels = new Map<string, Level>();
  private readonly samples = new Map<number, SampleColors>();
  private version = 1;

  constructor(private readonly app: App, private readonly origin: () => Vec3, private readonly colors: () => Colors,
              private readonly ratio: () => number) {}

  /** The visible trails. */
  get trails(): readonly DrawnTrail[] {
    const { app } = this;
    return (this.drawn ??= app.motion.trails
      .map((_, index) => index)
      .filter((index) => isVisible(app.store.state, index))
      .map((index) => ({
        index,
        places: places(app.motion.shownPoints(index), app.scene.upAxis, this.origin()),
        keyPlaces: hasDenseKeys(app.motion.trails[index])
          ? new Float32Array()
          : places(app.motion.shownKeyPoints(index), app.scene.upAxis, this.origin()),
      })));
  }

  get sampleCount(): number {
    return this.trails.reduce((sum, trail) => sum + trail.places.length / 3, 0);
  }

  /** Forget where everything is. */
  moved(): void {
    this.drawn = null;
    this.restyled();
  }

  /** Forget how everything looks. */
  restyled(): void {
    for (const level of this.levels.values()) this.drop(level);
    this.levels.clear();
    this.recolored();
  }

  recolored(): void {
    ++this.version;
    this.samples.clear();
  }

  /** Puts the trails into the group; returns the number of stretches. */
  show(drawing: Drawing): number {
    const name = JSON.stringify(drawing);
    let level = this.levels.get(name);
    if (!level) {
      if (this.levels.size >= 3) this.forgetOldest();
      this.levels.set(name, (level = this.build(drawing)));
    }
    if (level.version !== this.version) {
      for (const batch of level.colored) batch.recolor((trail) => this.colorsOf(trail));
      level.version = this.version;
    }
    if (this.group.children[0] !== level.group) {
      this.group.clear();
      this.group.add(level.group);
    }
    return level.stretches;
  }

  /** Colours of a trail's samples as they are now. */
  colorsOf(index: number): SampleColors {
    const kept = this.samples.get(index);
    if (kept) return kept;
    const { state } = this.app.store;
    const trail = this.app.motion.trails[index];
    const mode = state.mode ?? trail.colorMode;
    let values: Uint8Array;
    if (state.colorBy === "object") {
      const color = parseInt(objectColor(index).slice(1), 16);
      values = new Uint8Array(3 * trail.count);
      for (let i = 0; i < values.length; i += 3)
        [values[i], values[i + 1], values[i + 2]] = [color >> 16, (color >> 8) & 255, color & 255];
    } else {
      values = trailColors(trail, mode, state.frame, state.palette);
    }
    const result: SampleColors = { values, mode: state.colorBy === "object" ? 0 : mode };
    this.samples.set(index, result);
    return result;
  }

  private forgetOldest(): void {
    const [name, level] = [...this.levels][0];
    this.drop(level);
    this.levels.delete(name);
  }

  private drop(level: Level): void {
    level.disposables.forEach((each) => each.dispose());
    level.group.removeFromParent();
  }

  private build({ stride, plain }: Drawing): Level {
    const level: Level = { group: new Group(), colored: [], disposables: [], stretches: 0, version: 0 };
    const style = (trail: DrawnTrail) => styleOf(this.app, trail.index);
    const lined = this.trails.filter((trail) => style(trail).showLine && style(trail).lineWidth > 0);
    for (const trail of lined) eachStretch(trail.places, stride, () => ++level.stretches);
    if (!plain) this.addCasings(level, lined, stride);
    for (const batch of grouped(lined, (trail) => `${style(trail).lineWidth} ${style(trail).ghost}`)) {
      const { lineWidth, ghost } = style(batch[0]);
      const material = plain ? thinMaterial(ghost) : lineMaterial({ width: lineWidth, ghost });
      this.addLines(level, batch, stride, material, order(ghost, 2));
    }
    const dotted = this.trails.filter((trail) => style(trail).showDots && style(trail).pointSize > 0);
    // Where there are no lines, dots are all that there is.
    if (!plain || lined.length === 0)
      for (const batch of grouped(dotted, (trail) => `${style(trail).pointSize} ${style(trail).ghost}`))
        this.addDots(level, batch, stride);
    if (this.app.store.state.showKeys && !plain)
      for (const batch of grouped(this.trails, (trail) => String(style(trail).ghost))) this.addKeys(level, batch);
    return level;
  }

  /** Casings around all lines while these are few, and around selected trails unless every trail is selected. */
  private addCasings(level: Level, lined: readonly DrawnTrail[], stride: number): void {
    const { selected } = this.app.store.state;
    const { casing, selected: accent } = this.colors();
    const add = (trails: readonly DrawnTrail[], more: number, color: string, place: number) => {
      for (const batch of grouped(trails, ({ index }) => JSON.stringify(styleOf(this.app, index)))) {
        const { lineWidth, ghost } = styleOf(this.app, batch[0].index);
        const material = lineMaterial({ width: lineWidth + more, ghost, color });
        this.addLines(level, batch, stride, material, order(ghost, place));
      }
    };
    const chosen = lined.filter((trail) => selected.has(trail.index));
    if (lined.length > 1 && chosen.length < lined.length) add(chosen, 5, accent, 0);
    if (level.stretches <= MOST_CASED) add(lined, 1.6, casing, 1);
  }

  private addLines(level: Level, trails: readonly DrawnTrail[], stride: number,
                   material: LineMaterial | LineBasicMaterial, renderOrder: number): void {
    const lines = new Lines(trails, stride, material);
    if (material.vertexColors) level.colored.push(lines);
    else material.depthWrite = false;
    this.add(level, lines.object, renderOrder, [lines, material]);
  }

  private addDots(level: Level, trails: readonly DrawnTrail[], stride: number): void {
    const { pointSize, ghost } = styleOf(this.app, trails[0].index);
    const rim = level.stretches <= MOST_CASED && pointSize >= 4 ? 0.8 : 0;
    const material = dotMaterial({ size: (pointSize + rim) * this.ratio(), ghost, edge: rim * this.ratio(), rim: this.colors().casing });
    const dots = new Dots(trails, stride, material);
    level.colored.push(dots);
    this.add(level, dots.object, order(ghost, 3), [dots, material]);
  }

  private addKeys(level: Level, trails: readonly DrawnTrail[]): void {
    const { pointSize, ghost } = styleOf(this.app, trails[0].index);
    const size = Math.max(9, pointSize + 5) * this.ratio();
    const material = keyMaterial({ size, ghost, edge: 1.4 * this.ratio(), rim: "#1c2430" });
    const points = keyMarkers(trails, material);
    this.add(level, points, order(ghost, 4), [points.geometry, material]);
  }

  private add(level: Level, object: Object3D, renderOrder: number, owned: { dispose(): void }[]): void {
    object.renderOrder = renderOrder;
    level.group.add(object);
    level.disposables.push(...owned);
  }
}
