// Draws the overlay: where objects are now, key frames, names, axes, and what the picture does not show by itself.

import type { Camera } from "three";
import type { App } from "../model/app";
import { objectColor, rgbText } from "../model/colors";
import { numberText, unitName } from "../model/format";
import { isFinitePoint, nearestSample } from "../model/motion";
import { yUp } from "../model/pose";
import type { Hover } from "../model/state";
import type { Vec3 } from "../source/trail";
import type { DrawnTrail } from "./batch";
import type { Grid } from "./ground";
import { hasDenseKeys, type Drawing, type TrailLayers } from "./layers";
import type { Label, Overlay } from "./overlay";
import type { Projection, Spot } from "./projection";

/** Up to this many trails, every object has its name in the picture. */
const MOST_NAMED = 12;
/** The most markers of current positions that are drawn. */
const MOST_MARKS = 2000;

export interface Picture {
  readonly app: App;
  readonly layers: TrailLayers;
  readonly projection: Projection;
  readonly camera: Camera;
  readonly origin: Vec3;
  readonly grid: Grid;
  readonly drawing: Drawing;
}

function spotOf({ app, projection, origin }: Picture, place: Vec3): Spot | null {
  if (!isFinitePoint(place)) return null;
  const turned = yUp(place, app.scene.upAxis);
  return projection.spot(turned[0] - origin[0], turned[1] - origin[1], turned[2] - origin[2]);
}

function sampleSpot({ projection }: Picture, { places }: DrawnTrail, sample: number): Spot | null {
  const [x, y, z] = places.subarray(3 * sample, 3 * sample + 3);
  return Number.isFinite(x) ? projection.spot(x, y, z) : null;
}

function drawMarks(overlay: Overlay, picture: Picture): Label[] {
  const { app, layers } = picture;
  const { frame, selected, colorBy, showLabels } = app.store.state;
  const names: Label[] = [];
  const few = layers.trails.length <= MOST_NAMED;
  for (const { index } of layers.trails.slice(0, MOST_MARKS)) {
    const at = spotOf(picture, app.motion.shownPosition(index, frame));
    if (!at) continue;
    const trail = app.motion.trails[index];
    const strong = selected.has(index);
    const color = colorBy === "object" ? objectColor(index) : rgbText(layers.colorsOf(index).values, nearestSample(trail, frame));
    overlay.mark({ at, color, strong });
    if (showLabels && (few || strong)) names.push({ at, text: trail.name, strong: true });
  }
  return names;
}

function drawKeyLabels(overlay: Overlay, picture: Picture): void {
  const { app, layers, projection } = picture;
  const { selected } = app.store.state;
  const first = [...layers.trails].sort((a, b) => Number(selected.has(b.index)) - Number(selected.has(a.index)));
  for (const { index, keyPlaces } of first) {
    const times = app.motion.trails[index].keyTimes;
    for (let i = 0; 3 * i < keyPlaces.length; ++i) {
      if (!Number.isFinite(keyPlaces[3 * i])) continue;
      const at = projection.spot(keyPlaces[3 * i], keyPlaces[3 * i + 1], keyPlaces[3 * i + 2]);
      if (at) overlay.label({ at, text: numberText(times[i], 7) });
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

function notes({ app, layers, grid, drawing }: Picture): string {
  const { relativeTo, showKeys } = app.store.state;
  const parts = [`squares of ${numberText(grid.step, 6)} ${unitName(app.scene.unit)}`, `${app.scene.upAxis} is up`];
  if (relativeTo !== null) parts.push(`relative to ${app.motion.trails[relativeTo].name}`);
  if (showKeys && layers.trails.some(({ index }) => hasDenseKeys(app.motion.trails[index])))
    parts.push("keys at nearly every frame are not marked");
  const { plain, stride } = drawing;
  if (plain) parts.push(`simple drawing, to be quick${stride > 1 ? `: one sample in ${stride}` : ""}`);
  return parts.join(" · ");
}

/** The sample that is pointed at, and where it is; null when it is not to be seen. */
function hoveredSpot(picture: Picture): { hover: Hover; at: Spot } | null {
  const { hover } = picture.app.store.state;
  const trail = hover && picture.layers.trails.find(({ index }) => index === hover.trail);
  const at = trail && sampleSpot(picture, trail, hover.sample);
  return at ? { hover, at } : null;
}

/** Gives back the sample that is pointed at, with a ring around it now. */
export function annotate(overlay: Overlay, picture: Picture): ReturnType<typeof hoveredSpot> {
  const { app, projection } = picture;
  const { showKeys, showLabels } = app.store.state;
  const names = drawMarks(overlay, picture);
  names.forEach((name) => overlay.label(name));
  if (showKeys && showLabels) drawKeyLabels(overlay, picture);
  const hovered = hoveredSpot(picture);
  if (hovered) overlay.ring(hovered.at);
  drawAxes(overlay, picture);
  overlay.note(notes(picture), 100, projection.height - 12);
  return hovered;
}
