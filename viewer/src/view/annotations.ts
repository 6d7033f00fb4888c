// Draws the overlay: where objects are now, key frames, names, axes, and what the picture does not show by itself.

import type { Camera } from "three";
import type { App } from "../model/app";
import { markColor, rgbText } from "../model/colors";
import { dimming } from "../model/emphasis";
import { onionSkins } from "../model/figure";
import { frameText, numberText, unitName } from "../model/format";
import { nearestSample } from "../model/motion";
import { distinctNames, referenceName } from "../model/names";
import { yUp } from "../model/pose";
import { hasGround, type Hover } from "../model/state";
import type { Vec3 } from "../source/trail";
import type { DrawnTrail } from "./primitives/batch";
import { comparedNote, drawCompared } from "./compare_lines";
import type { Grid } from "./ground";
import type { Drawing, TrailLayers } from "./layers";
import { hasDenseKeys, spotOf } from "./places";
import type { Label, Mark, Overlay } from "./overlay";
import type { Projection, Spot } from "./primitives/projection";
import { skinColor, type Skeleton } from "./skeleton";
import { drawGate } from "./through";
import type { Colors } from "./theme";

/** Up to this many trails, every object has its name in the picture. */
const MOST_NAMED = 12;
/** The most markers of current positions that are drawn, and in a plain drawing. */
const MOST_MARKS = 2000;
const MOST_PLAIN_MARKS = 100;

export interface Picture {
  readonly app: App;
  readonly layers: TrailLayers;
  readonly projection: Projection;
  readonly camera: Camera;
  readonly origin: Vec3;
  readonly grid: Grid;
  readonly drawing: Drawing;
  readonly skeleton: Skeleton;
  readonly colors: Colors;
  /** Whether only the trails are drawn, without what stands around them. */
  readonly flat: boolean;
}

type Pointed = Pick<Picture, "app" | "layers" | "projection">;

function sampleSpot({ projection }: Pointed, { places, first }: DrawnTrail, sample: number): Spot | null {
  const [x, y, z] = sample < first ? [NaN] : places.subarray(3 * (sample - first), 3 * (sample - first) + 3);
  return Number.isFinite(x) ? projection.spot(x, y, z) : null;
}

/** The trails whose current position is marked: if not all, then those that are selected and some more. */
function marked({ app, layers, drawing }: Picture): readonly DrawnTrail[] {
  const most = drawing.plain ? MOST_PLAIN_MARKS : MOST_MARKS;
  const { seen } = layers;
  if (seen.length <= most) return seen;
  const chosen = ({ index }: DrawnTrail) => app.store.state.selected.has(index);
  return [...seen.filter(chosen), ...seen.filter((trail) => !chosen(trail))].slice(0, most);
}

/** Whether a ring tells something: of selected trails which they are, of a few where they are. */
function kindOf({ app, layers }: Picture, index: number, dim: boolean): Mark["kind"] {
  const few = layers.trails.length <= MOST_NAMED;
  const all = layers.trails.length === app.store.state.selected.size;
  if (dim) return "dot";
  if (app.store.state.selected.has(index) && (few || !all)) return "selected";
  return few ? "ring" : "dot";
}

function drawMarks(overlay: Overlay, picture: Picture): Label[] {
  const { app, layers, skeleton } = picture;
  const { frame, selected } = app.store.state;
  const dimmed = dimming(app.store.state);
  const text = distinctNames(app.motion.trails);
  const names: Label[] = [];
  const few = layers.trails.length <= MOST_NAMED;
  for (const { index } of marked(picture)) {
    const kind = kindOf(picture, index, dimmed(index));
    if (kind === "dot" && skeleton.has(index)) continue;
    const at = spotOf(picture, app.motion.shownPosition(index, frame));
    if (!at) continue;
    const { values } = layers.colorsOf(index);
    const color = rgbText(values, nearestSample(app.motion.trails[index], frame));
    overlay.mark({ at, color, kind, ring: selected.size > 1 ? markColor(index, selected) : undefined });
    if ((few || kind === "selected")) names.push({ at, text: text[index], strong: !dimmed(index) });
  }
  return names.sort((a, b) => Number(b.strong) - Number(a.strong));
}

/** Where there is no figure: the selected objects, before and after. */
function drawGhosts(overlay: Overlay, picture: Picture): void {
  const { app, layers, skeleton, colors } = picture;
  if (skeleton.exists) return;
  const dimmed = dimming(app.store.state);
  const lit = layers.trails.filter(({ index }) => !dimmed(index)).slice(0, MOST_NAMED);
  for (const skin of onionSkins(app))
    for (const { index } of lit) {
      const at = spotOf(picture, app.motion.shownPosition(index, skin.frame));
      if (at) overlay.ghost(at, skinColor(skin, colors));
    }
}

/** Of the lit trails: the numbers of others would only hide what is selected. */
function drawKeyLabels(overlay: Overlay, { app, layers, projection }: Picture): void {
  const dimmed = dimming(app.store.state);
  for (const { index, keyPlaces, keyTimes } of layers.seen) {
    if (dimmed(index)) continue;
    for (let i = 0; 3 * i < keyPlaces.length; ++i) {
      if (!Number.isFinite(keyPlaces[3 * i])) continue;
      const at = projection.spot(keyPlaces[3 * i], keyPlaces[3 * i + 1], keyPlaces[3 * i + 2]);
      if (at) overlay.label({ at, text: numberText(keyTimes[i], 7) });
    }
  }
}

function drawAxes(overlay: Overlay, { app, camera, projection }: Picture): void {
  const m = camera.matrixWorld.elements;
  const names = ["x", "y", "z"] as const;
  const units: Vec3[] = [[1, 0, 0], [0, 1, 0], [0, 0, 1]];
  overlay.axes(52, projection.height - 52, names.map((name, i) => {
    const [x, y, z] = yUp(units[i], app.scene.upAxis);
    return [name, { x: m[0] * x + m[1] * y + m[2] * z, y: -(m[4] * x + m[5] * y + m[6] * z) }] as const;
  }));
}

/** Said of trails of which none moves; empty for others. */
function nothingMoves({ motion }: App, trails: readonly number[]): string {
  if (trails.length === 0 || trails.some((trail) => motion.moving[trail])) return "";
  return trails.some((trail) => motion.trails[trail].keyTimes.length > 0) ? "nothing travels: what has keys may only turn" : "nothing moves";
}

function notes(picture: Picture): string[] {
  const { app, layers, grid, drawing, flat } = picture;
  const { showKeys, frame, window, windowBefore, windowAfter } = app.store.state;
  const parts = [...(flat || !hasGround(app.store.state) ? [] : [`squares of ${numberText(grid.step, 6)} ${unitName(app.scene.unit)}`]), `${app.scene.upAxis} is up`];
  const nothing = nothingMoves(app, layers.trails.map(({ index }) => index));
  if (nothing) parts.push(nothing);
  const reference = referenceName(app);
  if (reference) parts.push(`relative to ${reference}`);
  if (showKeys && layers.trails.some(({ index }) => hasDenseKeys(app.motion.trails[index])))
    parts.push("keys at nearly every frame are not marked");
  const compared = comparedNote(picture);
  if (compared) parts.push(compared);
  const { plain, stride, dotEvery } = drawing;
  if (dotEvery > 1 && layers.hasDots(drawing)) parts.push(`a dot every ${dotEvery} frames`);
  if (window) parts.push(`frames ${frameText(frame - windowBefore)} to ${frameText(frame + windowAfter)}`);
  if (plain) parts.push(`simple drawing, to be quick${stride > 1 ? `: one sample in ${stride}` : ""}`);
  const [marks, all] = [marked(picture).length, layers.seen.length];
  if (marks < all) parts.push(`current positions of ${marks} of ${all} objects`);
  return parts;
}

/** The sample that is pointed at, and where it is; null when it is not to be seen. */
export function hoveredSpot(picture: Pointed): { hover: Hover; at: Spot } | null {
  const { hover } = picture.app.store.state;
  const trail = hover && picture.layers.trails.find(({ index }) => index === hover.trail);
  const at = trail && sampleSpot(picture, trail, hover.sample);
  return at ? { hover, at } : null;
}

export function annotate(overlay: Overlay, picture: Picture): void {
  const { app, projection } = picture;
  const { showKeys, showLabels } = app.store.state;
  drawGate(overlay, app, projection, picture.origin);
  drawAxes(overlay, picture);
  overlay.note(notes(picture), 100, projection.height - 12);
  drawCompared(overlay, picture);
  drawGhosts(overlay, picture);
  const names = drawMarks(overlay, picture);
  if (showLabels) names.forEach((name) => overlay.label(name));
  if (showKeys && showLabels && !picture.drawing.plain) drawKeyLabels(overlay, picture);
}
