// Which boxes hold samples: such a box would hide the motion that is in it.

import { Box3, Matrix4, Vector3 } from "three";
import type { Motion } from "../model/motion";
import type { StaticBox } from "../source/trail";

/** What lies this part of a box's size outside of it still counts as in it. */
const SKIN = 1e-6;

const within = (box: Box3, x: number, y: number, z: number) =>
  x >= box.min.x && x <= box.max.x && y >= box.min.y && y <= box.max.y && z >= box.min.z && z <= box.max.z;

/** Whether a sample of some trail, as it is shown, lies in the box. */
export function holdsSamples({ matrix, low, high }: StaticBox, motion: Motion): boolean {
  const own = new Box3(new Vector3(...low), new Vector3(...high));
  own.expandByScalar(SKIN * own.getSize(new Vector3()).length());
  const toWorld = new Matrix4().fromArray(matrix as number[]);
  const around = own.clone().applyMatrix4(toWorld);
  const e = toWorld.clone().invert().elements;
  return motion.reach.some((reach, index) => {
    if (!new Box3(new Vector3(...reach.low), new Vector3(...reach.high)).intersectsBox(around)) return false;
    const points = motion.shownPoints(index);
    for (let i = 0; i < points.length; i += 3) {
      const [x, y, z] = [points[i], points[i + 1], points[i + 2]];
      if (!within(around, x, y, z)) continue;
      const inBox = [0, 1, 2].map((k) => e[k] * x + e[4 + k] * y + e[8 + k] * z + e[12 + k]);
      if (within(own, inBox[0], inBox[1], inBox[2])) return true;
    }
    return false;
  });
}
