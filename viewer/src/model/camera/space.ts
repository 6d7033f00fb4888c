// Spaces that positions are shown in besides the world: an object's own, turning with it, a camera's own, and its picture.

import type { Vec3 } from "../../source/trail";
import { gateOf, throughGate, type Film, type Track } from "./film";
import { seenFrom, type Rigid } from "./rigid";

export interface Space {
  /** Where a place of the world at a frame is in it, in the scene's own axes. */
  place(point: Vec3, frame: number): Vec3;
}

/** A place with y up in the scene's axes. */
const inAxes = ([x, y, z]: Vec3, upAxis: "y" | "z"): Vec3 => (upAxis === "z" ? [x, -z, y] : [x, y, z]);

/** In the object's own axes, whatever is up in the scene. */
export const objectSpace = (object: Track<Rigid>): Space => ({ place: (point, frame) => seenFrom(object.at(frame), point) });

export const cameraSpace = ({ camera }: Film, upAxis: "y" | "z"): Space => ({
  place: (point, frame) => inAxes(seenFrom(camera.at(frame), point), upAxis),
});

/** The camera's own space, with all places where they are in its picture when that is taken with the lens of one frame. */
export function pictureSpace({ camera, lens }: Film, frameOfLens: number, upAxis: "y" | "z"): Space {
  const standard = gateOf(lens.at(frameOfLens));
  return {
    place: (point, frame) => inAxes(throughGate(gateOf(lens.at(frame)), standard, seenFrom(camera.at(frame), point)), upAxis),
  };
}

/** What was loaded of the scene for the space and the camera that are chosen. */
export interface Seen {
  readonly space: Space | null;
  readonly film: Film | null;
  /** The frame whose lens the picture is taken with; null: each its own. */
  readonly lensFrame: number | null;
  /** The same for the same choice, also when its numbers are others after an edit. */
  readonly choice: string;
}

/** Where the camera is, in the space that is shown. */
export function shownCamera(film: Film, { space, lensFrame }: Seen, frame: number, upAxis: "y" | "z", relative: (place: Vec3) => Vec3): Rigid {
  const own = lensFrame === null ? space : cameraSpace(film, upAxis); // a picture bends
  return moved(film.camera.at(frame), own ? (place) => own.place(place, frame) : relative);
}

/** Moved by what moves places without bending. */
function moved({ x, y, z, at }: Rigid, by: (place: Vec3) => Vec3): Rigid {
  const origin = by(at);
  const axis = (d: Vec3): Vec3 => {
    const end = by([at[0] + d[0], at[1] + d[1], at[2] + d[2]]);
    return [end[0] - origin[0], end[1] - origin[1], end[2] - origin[2]];
  };
  return { x: axis(x), y: axis(y), z: axis(z), at: origin };
}
