// The view through a camera of the scene: where that stands in the viewport's space, and its gate in the picture.

import type { App } from "../model/app";
import { gateOf, PICTURE_WIDTH, type Gate } from "../model/camera/film";
import { shownCamera } from "../model/camera/space";
import { numberText } from "../model/format";
import { yUp } from "../model/pose";
import type { Vec3 } from "../source/trail";
import type { Overlay } from "./overlay";
import { filmArea, type Standing } from "./primitives/film_camera";
import type { Projection } from "./primitives/projection";

export interface Through {
  readonly standing: Standing;
  readonly gate: Gate;
}

/** Null where nothing is seen through a camera, or not yet. */
export function throughCamera({ scene, motion, store }: App, origin: Vec3): Through | null {
  const { through, seen, frame } = store.state;
  if (through === null || !seen?.film) return null;
  const { x, y, z, at } = shownCamera(seen.film, seen, frame, scene.upAxis, (place) => motion.shownPlace(place, frame));
  const turned = (d: Vec3) => yUp(d, scene.upAxis);
  const [px, py, pz] = turned(at);
  const standing = { x: turned(x), y: turned(y), z: turned(z), at: [px - origin[0], py - origin[1], pz - origin[2]] as const };
  return { standing, gate: gateOf(seen.film.lens.at(seen.lensFrame ?? frame)) };
}

/** The film's edge, with what is beside it veiled, and what it is. */
export function drawGate(overlay: Overlay, app: App, projection: Projection, origin: Vec3): void {
  const view = throughCamera(app, origin);
  if (!view) return;
  const { film, lensFrame } = app.store.state.seen!;
  const { focalLength, width } = film!.lens.at(lensFrame ?? app.store.state.frame);
  const lens = width === null ? `${numberText(focalLength, 4)} mm` : "parallel";
  const [across, up] = [PICTURE_WIDTH, Math.round(PICTURE_WIDTH / view.gate.aspect)];
  overlay.gate(filmArea(view.gate, projection.width, projection.height), `${film!.name}, ${lens}, ${across} × ${up} pixels`);
}
