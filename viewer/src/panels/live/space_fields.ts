// The camera through which the scene is seen, and the space that positions are shown in.

import type { App } from "../../model/app";
import type { ViewState } from "../../model/state";
import { select, type Option } from "../parts/fields";

/** A list of the scene's cameras; nothing where it has none. */
export function cameraField(app: App): HTMLElement[] {
  const cameras = app.spaces?.cameras ?? [];
  if (cameras.length === 0) return [];
  return [select(app, "through", "Camera", [[null, "Free"], ...cameras.map(({ name }, i): Option<number | null> => [i, name])])];
}

/** Nothing where only positions are known. */
export function spaceFields(app: App): HTMLElement[] {
  if (!app.spaces) return [];
  const options: Option<ViewState["space"]>[] = [["place", "As in the list"], ["turning", "With the object's rotation"]];
  if (app.spaces.cameras.length > 0) options.push(["camera", "Relative to the camera"], ["screen", "On the camera's screen"]);
  return [select(app, "space", "Positions", options)];
}
