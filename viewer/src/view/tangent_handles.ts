// The tangents of selected keys, those of selected objects at the current frame, as handles on their paths.

import { newest } from "../model/editing/newest";
import type { App } from "../model/app";
import { isInWorld, isVisible } from "../model/state";
import type { ChangedPart, Grip, PathTangents, Side, Vec3 } from "../source/trail";
import type { Overlay } from "./overlay";
import { hasDenseKeys, placeIn } from "./places";
import type { Projection, Spot } from "./primitives/projection";

/** The most objects whose tangents are shown. */
const MOST = 8;
/** Pixels from its key within which a handle is none: the key is hit there. */
const NEAR = 10;

export interface TangentEnd {
  readonly grip: Grip;
  /** In the viewport's space: the key, and the end of the handle. */
  readonly key: Vec3;
  readonly end: Vec3;
  readonly broken: boolean;
}

export class TangentHandles {
  private known: readonly { trail: number; tangents: PathTangents }[] = [];
  /** The frame that these are of. */
  private frame = NaN;
  private readonly ask = newest(() => this.learn());

  constructor(private readonly app: App, private readonly origin: () => Vec3, private readonly changed: () => void) {
    const { store, editing } = app;
    if (!editing) return;
    store.subscribe(() => this.refresh(), ["selected", "frame", "hidden", "solo", "relativeTo", "space", "showKeys", "playing"]);
    const stop = editing.subscribe(() => this.refresh());
    app.life.addEventListener("abort", stop);
    this.refresh();
  }

  /** After the trails have changed, too; where only some did, which these are. */
  refresh(moved?: readonly ChangedPart[]): void {
    if (!this.app.editing || this.app.life.aborted) return;
    const of = moved && new Set(this.keyed());
    if (!of || moved!.some(({ index }) => of.has(index))) this.ask();
  }

  private keyed(): number[] {
    const { motion, store: { state } } = this.app;
    if (!state.showKeys || !isInWorld(state) || state.playing) return [];
    return [...state.selected].filter((index) => {
      const trail = motion.trails[index];
      return trail && isVisible(state, index) && !hasDenseKeys(trail) && trail.keyTimes.includes(state.frame);
    }).slice(0, MOST);
  }

  private async learn(): Promise<void> {
    const trails = this.keyed();
    const { frame } = this.app.store.state;
    const all = trails.length === 0 ? [] : await this.app.editing!.pathTangents(trails, frame);
    const before = this.known.length;
    this.known = all.flatMap((tangents, k) => (tangents ? [{ trail: trails[k], tangents }] : []));
    this.frame = frame;
    if (before + this.known.length > 0) this.changed();
  }

  private get ends(): TangentEnd[] {
    const { app } = this;
    const { frame } = app.store.state;
    if (this.frame !== frame) return [];
    const at = (place: readonly number[] | null) => place && placeIn({ app, origin: this.origin() }, place as unknown as Vec3);
    return this.known.flatMap(({ trail, tangents }) => (["in", "out"] as const).flatMap((side: Side) => {
      const [key, end] = [at(tangents.place), at(tangents[side])];
      return key && end ? [{ grip: { what: "path tangent", trail, frame, side }, key, end, broken: tangents.broken }] : [];
    }));
  }

  /** The handle within so many pixels, the nearest of them. */
  at(projection: Projection, { x, y }: Spot, within: number): TangentEnd | null {
    let [best, least]: [TangentEnd | null, number] = [null, within];
    for (const end of this.ends) {
      const [spot, key] = [projection.spot(...end.end), projection.spot(...end.key)];
      const away = spot && key && Math.hypot(spot.x - key.x, spot.y - key.y) > NEAR ? Math.hypot(spot.x - x, spot.y - y) : Infinity;
      if (away <= least) [best, least] = [end, away];
    }
    return best;
  }

  draw(overlay: Overlay, projection: Projection): void {
    for (const { key, end, broken } of this.ends) {
      const [from, to] = [projection.spot(...key), projection.spot(...end)];
      if (from && to) overlay.handle(from, to, broken);
    }
  }
}
