// The drawn trails: batches of a style each, at the details that were asked for, with the colours of the moment.

import { Group, type Object3D, type ShaderMaterial } from "three";
import type { App } from "../model/app";
import { markColor, trailColors } from "../model/colors";
import { dimming } from "../model/emphasis";
import { isVisible } from "../model/state";
import type { ChangedPart, Vec3 } from "../source/trail";
import { Dots, KeyMarkers, Lines, stretchesOf, type DrawnTrail, type SampleColors } from "./primitives/batch";
import { framesBetweenDots } from "./dot_spacing";
import { FatLineMaterial } from "./primitives/fat_lines";
import { MovedTrails } from "./primitives/moved";
import { dotMaterial, keyMaterial, thinMaterial } from "./primitives/materials";
import { forgetBoxes, type Pickable } from "./picking";
import { between, movedTrail, wholeTrail, windowOf, windowStrength } from "./places";
import type { Projection } from "./primitives/projection";
import { channels, DIMMED, shade, shaded } from "./primitives/shades";
import type { Colors } from "./theme";

/** Up to this many stretches, every line has a casing and every dot a rim. */
const MOST_CASED = 60_000;

/** Up to this many stretches, lit trails keep their width in plain drawing. */
const MOST_LIT = 12_000;

/** Dimmed trails come first, then the figure and what is lit; ghosts last, over everything. */
export const FIGURE_ORDER = 8;
export const BOX_ORDER = 20;
const order = ({ ghost, dim }: Look, place: number) => (ghost ? 30 : 0) + (dim ? 0 : 10) + place;

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

/** What is drawn together. */
interface Look extends DrawnStyle {
  readonly dim: boolean;
}

/** How much of the trails is drawn: through every `stride`th sample; plain is lines of a pixel, but for lit trails. */
export interface Amount {
  readonly stride: number;
  readonly plain: boolean;
  /** Whether edges are smooth. */
  readonly smooth: boolean;
}

export interface Drawing extends Amount {
  /** Frames from dot to dot. */
  readonly dotEvery: number;
}

/** Everything that is drawn of the trails in one way. */
interface Level {
  readonly group: Group;
  readonly colored: { readonly batch: Lines | Dots; readonly colors: (trail: number) => SampleColors }[];
  readonly placed: (Lines | Dots | KeyMarkers)[];
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
  private whole: readonly DrawnTrail[] | null = null;
  private drawn: readonly DrawnTrail[] | null = null;
  private dots = 0;
  private readonly looks = new Map<number, Look>();
  private dims: ((trail: number) => boolean) | null = null;
  private readonly places = new Map<number, DrawnTrail>();
  private hits: readonly Pickable[] | null = null;
  private readonly levels = new Map<string, Level>();
  private readonly samples = new Map<number, SampleColors>();
  private version = 1;
  /** Since everything was drawn. */
  readonly moves = new MovedTrails();

  constructor(private readonly app: App, private readonly origin: () => Vec3, private readonly colors: () => Colors,
              private readonly ratio: () => number) {}

  /** The visible trails, or what of them lies in the window in time. */
  get trails(): readonly DrawnTrail[] {
    const { app } = this;
    const { state } = app.store;
    this.whole ??= app.motion.trails
      .map((_, index) => index)
      .filter((index) => isVisible(state, index))
      .map((index) => wholeTrail(app, index, this.origin()));
    const { from, to } = windowOf(state);
    if (this.drawn) return this.drawn;
    this.drawn = state.window ? this.whole.map((trail) => between(trail, from, to)) : this.whole;
    for (const trail of this.drawn) this.places.set(trail.index, trail);
    return this.drawn;
  }

  /** Those that are drawn as a line or as dots: without these, keys and marks would be of nothing. */
  get seen(): readonly DrawnTrail[] {
    return this.trails.filter(({ index }) => {
      const { showLine, showDots, lineWidth, pointSize } = styleOf(this.app, index);
      return (showLine && lineWidth > 0) || (showDots && pointSize > 0);
    });
  }

  /** Frames from dot to dot, so that dots do not touch; as before while something moves, so that it stays quick. */
  dotEvery(projection: Projection, moving: boolean): number {
    if (moving && this.dots > 0) return this.dots;
    const dotted = this.trails.filter(({ index }) => this.look(index).showDots && !this.look(index).dim);
    return (this.dots = framesBetweenDots(dotted, (index) => styleOf(this.app, index).pointSize, projection));
  }

  /** Whether dots are drawn at all. */
  hasDots({ plain }: Amount): boolean {
    const styles = this.trails.map(({ index }) => styleOf(this.app, index));
    return styles.some(({ showDots }) => showDots) && (!plain || !styles.some(({ showLine }) => showLine));
  }

  /** What the pointer can hit. */
  get pickable(): readonly Pickable[] {
    return (this.hits ??= this.trails.map((trail) => {
      const { showLine, lineWidth } = styleOf(this.app, trail.index);
      return { trail, lined: showLine && lineWidth > 0 };
    }));
  }

  get sampleCount(): number {
    return this.trails.reduce((sum, trail) => sum + trail.places.length / 3, 0);
  }

  dispose(): void {
    this.dropLevels();
  }

  /** Forget where everything is. */
  moved(): void {
    this.whole = null;
    this.windowMoved();
    this.recolored();
  }

  /** These parts of trails, and their keys, have moved. Says whether it was enough to write them anew in what is drawn now. */
  partsMoved(parts: readonly ChangedPart[]): boolean {
    const { whole, drawn, app } = this;
    const { state } = app.store;
    const { from, to } = windowOf(state);
    if (!whole || !drawn || parts.some(({ index }) => index === app.motion.relation)) return this.moved(), false;
    const at = new Map(whole.map(({ index }, k) => [index, k]));
    const [all, now] = [[...whole], [...drawn]];
    for (const part of parts) {
      const k = at.get(part.index);
      if (k === undefined) continue;
      this.moves.note(now[k]);
      const trail = movedTrail(app, all[k], part, this.origin());
      if (!trail) return this.moved(), false;
      all[k] = trail;
      forgetBoxes(now[k].places);
      this.places.set(part.index, (now[k] = state.window ? between(trail, from, to) : trail));
    }
    [this.whole, this.drawn, this.hits] = [all, now, null];
    this.moveLevels(parts);
    return true;
  }

  /** Which pixels around its places a trail may take. */
  get margin(): number {
    return Math.max(...this.trails.map(({ index }) => Math.max(this.look(index).lineWidth + 3, this.look(index).pointSize + 7)), 10) / 2 + 2;
  }

  /** Draws only these trails; null: all. */
  only(chosen: ReadonlySet<number> | null): void {
    for (const level of this.levels.values())
      for (const batch of level.placed) if (this.group.children[0] === level.group && !(batch instanceof KeyMarkers)) batch.only(chosen);
  }

  /** Others than the one that is drawn are made again when they are needed. */
  private moveLevels(parts: readonly ChangedPart[]): void {
    for (const [name, level] of this.levels) {
      if (this.group.children[0] !== level.group) {
        this.drop(level);
        this.levels.delete(name);
        continue;
      }
      for (const batch of level.placed) {
        if (batch instanceof KeyMarkers) batch.moved();
        else for (const { index, first, count } of parts) batch.moved(index, first - (this.places.get(index)?.first ?? 0), count);
      }
    }
  }

  /** Forget which part of the trails is drawn. */
  windowMoved(): void {
    this.drawn = this.hits = null;
    this.dropLevels();
  }

  /** Forget how everything looks. */
  restyled(): void {
    this.dropLevels();
    this.recolored();
  }

  recolored(): void {
    this.hits = null;
    ++this.version;
    this.samples.clear();
    this.looks.clear();
    this.dims = null;
  }

  /** Puts the trails into the group; returns the number of stretches. */
  show(drawing: Drawing): number {
    const { stride, plain } = drawing;
    const dotEvery = this.hasDots(drawing) ? drawing.dotEvery : 0;
    const name = JSON.stringify({ stride, plain, dotEvery }); // smooth edges are drawn of the same
    let level = this.levels.get(name);
    if (!level) {
      if (this.levels.size >= 3) this.forgetOldest();
      this.levels.set(name, (level = this.build(drawing)));
    }
    if (level.version !== this.version) {
      for (const { batch, colors } of level.colored) batch.recolor(colors);
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
      const color = parseInt(markColor(index, state.selected).slice(1), 16);
      values = new Uint8Array(3 * trail.count);
      for (let i = 0; i < values.length; i += 3)
        [values[i], values[i + 1], values[i + 2]] = [color >> 16, (color >> 8) & 255, color & 255];
    } else {
      values = trailColors(trail, mode, state.frame, state.palette);
    }
    if (this.look(index).dim) values = shaded(values, this.colors().background, () => DIMMED);
    const result: SampleColors = { values, mode: state.colorBy === "object" ? 0 : mode };
    this.samples.set(index, result);
    return result;
  }

  private look(index: number): Look {
    const { looks } = this;
    let look = looks.get(index);
    if (!look) looks.set(index, (look = { ...styleOf(this.app, index), dim: (this.dims ??= dimming(this.app.store.state))(index) }));
    return look;
  }

  /** Colours of what is drawn of a trail: in a window in time they fade away from the current frame. */
  readonly drawnColors = (index: number): SampleColors => {
    const { values, mode } = this.colorsOf(index);
    return this.app.store.state.window ? { values: this.faded(index, (sample) => 3 * sample, values), mode } : { values, mode };
  };

  /** A single colour for all of a trail, fading likewise. */
  private fadingColor(color: string): (index: number) => SampleColors {
    const single = Uint8Array.from(channels(color));
    return (index) => ({ values: this.faded(index, () => 0, single), mode: 0 });
  }

  private faded(index: number, place: (sample: number) => number, values: Uint8Array): Uint8Array {
    const { state } = this.app.store;
    const { first, places, startFrame, frameStep } = this.places.get(index)!;
    const own = new Uint8Array(places.length);
    for (let i = 0; i < own.length; i += 3) own.set(values.subarray(place(first + i / 3), place(first + i / 3) + 3), i);
    return shaded(own, this.colors().background, (i) => windowStrength(state, startFrame + i * frameStep));
  }

  private forgetOldest(): void {
    const [name, level] = [...this.levels][0];
    this.drop(level);
    this.levels.delete(name);
  }

  private dropLevels(): void {
    for (const level of this.levels.values()) this.drop(level);
    this.levels.clear();
  }

  private drop(level: Level): void {
    level.disposables.forEach((each) => each.dispose());
    level.group.removeFromParent();
  }

  private build({ stride, plain, dotEvery }: Drawing): Level {
    const level: Level = { group: new Group(), colored: [], placed: [], disposables: [], stretches: 0, version: 0 };
    const look = ({ index }: DrawnTrail) => this.look(index);
    const lined = this.trails.filter((trail) => look(trail).showLine && look(trail).lineWidth > 0);
    for (const trail of lined) level.stretches += stretchesOf(trail.places, stride).length / 2;
    const wide = new Set(plain ? this.lit(lined, stride) : lined);
    this.addCasings(level, lined, [...wide], stride);
    for (const batch of grouped(lined, (trail) => `${JSON.stringify(look(trail))} ${wide.has(trail)}`)) {
      const { lineWidth, ghost, dim } = look(batch[0]);
      const material = wide.has(batch[0]) ? new FatLineMaterial({ width: lineWidth, ghost }) : thinMaterial(ghost);
      material.depthWrite = !dim;
      this.addLines(level, new Lines(batch, stride, material), material, order(look(batch[0]), 2), this.drawnColors);
    }
    const dotted = this.trails.filter((trail) => look(trail).showDots && look(trail).pointSize > 0);
    // Where there are no lines, dots are all that there is.
    if (!plain || lined.length === 0)
      for (const batch of grouped(dotted, (trail) => JSON.stringify(look(trail))))
        this.addDots(level, batch, Math.max(dotEvery, stride));
    if (this.app.store.state.showKeys && !plain)
      for (const batch of grouped(this.seen, (trail) => JSON.stringify(look(trail)))) this.addKeys(level, batch);
    return level;
  }

  /** The trails that keep their width in plain drawing: the selected ones, if others are dimmed beside them. */
  private lit(lined: readonly DrawnTrail[], stride: number): readonly DrawnTrail[] {
    const lit = lined.filter(({ index }) => !this.look(index).dim);
    let stretches = 0;
    for (const { places } of lit) stretches += places.length / 3 / stride;
    return lit.length < lined.length && stretches <= MOST_LIT ? lit : [];
  }

  /** Casings around the wide lines while all lines are few, and around selected trails unless every trail is selected. */
  private addCasings(level: Level, lined: readonly DrawnTrail[], wide: readonly DrawnTrail[], stride: number): void {
    const { selected } = this.app.store.state;
    const { casing, selected: accent } = this.colors();
    const chosen = wide.filter((trail) => selected.has(trail.index));
    if (lined.length > 1 && chosen.length < lined.length) this.addCasing(level, chosen, stride, 2.8, accent);
    if (level.stretches <= MOST_CASED) this.addCasing(level, wide, stride, 1.6, casing);
  }

  private addCasing(level: Level, trails: readonly DrawnTrail[], stride: number, more: number, color: string): void {
    const fades = this.app.store.state.window;
    for (const batch of grouped(trails, ({ index }) => JSON.stringify(this.look(index)))) {
      const look = this.look(batch[0].index);
      const shown = this.shownColor(color, look.dim);
      const material = new FatLineMaterial({ width: look.lineWidth + more, ghost: look.ghost });
      material.depthWrite = false;
      const lines = new Lines(batch, stride, material, fades ? undefined : shown);
      this.addLines(level, lines, material, order(look, more > 2 ? 0 : 1), fades ? this.fadingColor(shown) : null);
    }
  }

  /** `colors` is null where the lines have theirs. */
  private addLines(level: Level, batch: Lines, material: ShaderMaterial, renderOrder: number,
                   colors: ((trail: number) => SampleColors) | null): void {
    if (colors) level.colored.push({ batch, colors });
    level.placed.push(batch);
    this.add(level, batch.object, renderOrder, [batch, material]);
  }

  private addDots(level: Level, trails: readonly DrawnTrail[], every: number): void {
    const look = this.look(trails[0].index);
    const { pointSize, ghost, dim } = look;
    const rim = level.stretches <= MOST_CASED && pointSize >= 4 && !this.app.store.state.window ? 0.8 : 0;
    const material = dotMaterial({
      size: (pointSize + rim) * this.ratio(), ghost, edge: rim * this.ratio(), rim: this.shownColor(this.colors().casing, dim),
    });
    material.depthWrite = !dim;
    const batch = new Dots(trails, every, material);
    level.colored.push({ batch, colors: this.drawnColors });
    level.placed.push(batch);
    this.add(level, batch.object, order(look, 3), [batch, material]);
  }

  private addKeys(level: Level, trails: readonly DrawnTrail[]): void {
    const look = this.look(trails[0].index);
    const { pointSize, ghost, dim } = look;
    const size = Math.max(9, pointSize + 5) * (dim ? 0.65 : 1) * this.ratio();
    const material = keyMaterial({
      size, ghost, edge: 1.4 * this.ratio(), rim: this.shownColor("#1c2430", dim),
    });
    material.depthWrite = !dim;
    const drawn = new Set(trails.map(({ index }) => index));
    const batch = new KeyMarkers(() => this.trails.filter(({ index }) => drawn.has(index)), this.shownColor("#ffffff", dim), material);
    level.placed.push(batch);
    this.add(level, batch.object, order(look, 4), [batch, material]);
  }

  private shownColor(color: string, dim: boolean): string {
    return dim ? shade(color, this.colors().background, DIMMED) : color;
  }

  private add(level: Level, object: Object3D, renderOrder: number, owned: { dispose(): void }[]): void {
    object.renderOrder = renderOrder;
    level.group.add(object);
    level.disposables.push(...owned);
  }
}
