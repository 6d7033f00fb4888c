// What is drawn wherever the camera looks.

import { Sphere, type LineSegments, type Mesh, type Points } from "three";

/** The same object, about which three asks no more whether it is in sight: it would look for that in all samples. */
export function unculled<T extends LineSegments | Mesh | Points>(object: T): T {
  object.frustumCulled = false;
  object.geometry.boundingSphere = new Sphere(); // of use to nobody, but three works it out where there is none
  return object;
}
