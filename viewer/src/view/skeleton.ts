// Draws the figure: bones and joints at the current frame, and its onion skins. It is made anew when it moves.

import { BufferAttribute, Group, type LineSegments, type Mesh, type Points } from "three";
import type { App } from "../model/app";
import { bonesOf, onionSkins, type Bone } from "../model/figure";
import { hierarchyOf } from "../model/hierarchy";
import type { Vec3 } from "../source/trail";
import { FIGURE_ORDER } from "./layers";
import { placeIn } from "./places";
import { pointsOf, thinLines } from "./primitives/batch";
import { FatLineMaterial, FatLines } from "./primitives/fat_lines";
import { dotMaterial, thinMaterial } from "./primitives/materials";
import type { MovedArea } from "./primitives/moved";
import { channels, shade } from "./primitives/shades";
import type { Colors } from "./theme";

const BONE_WIDTH = 1.6;
const JOINT_SIZE = 4.5;
/** Of more bones, lines of one pixel are drawn and no joints: software draws these many times faster. */
const MOST_WIDE = 1500;

/** The figure at a frame, in a colour. */
export interface Pose {
  readonly frame: number;
  readonly color: string;
}

/** The colour of a skin. */
export const skinColor = ({ side, strength }: { side: -1 | 1; strength: number }, colors: Colors): string =>
  shade(side < 0 ? colors.before : colors.after, colors.background, strength);

export class Skeleton {
  readonly group = new Group();
  private readonly line = new FatLineMaterial({ width: BONE_WIDTH, ghost: true });
  private readonly thin = thinMaterial(true);
  private readonly joint;
  private drawnOf: readonly unknown[] = [];
  private bones: readonly Bone[] = [];
  private members: ReadonlySet<number> = new Set();
  /** Of the bones, and what they were when all was drawn. */
  private ends = new Float32Array();
  private before = this.ends;

  constructor(private readonly app: App, private readonly origin: () => Vec3, private readonly colors: () => Colors, ratio: number) {
    this.joint = dotMaterial({ size: JOINT_SIZE * ratio, ghost: true, edge: 0, rim: "#000000" });
    this.line.depthWrite = this.joint.depthWrite = this.thin.depthWrite = false;
  }

  /** Whether an object is part of the figure that is drawn. */
  has(trail: number): boolean {
    return this.app.store.state.showBones && this.members.has(trail);
  }

  /** Whether there are bones at all. */
  get exists(): boolean {
    return this.bones.length > 0;
  }

  /** Brings the figure to the state of the moment. */
  update(): void {
    const { app } = this;
    const { state } = app.store;
    const { frame, hidden, solo, relativeTo, seen, selected, showBones, onion, onionEvery, onionBefore, onionAfter } = state;
    const of = [app.motion.trails, this.origin(), this.colors(), frame, hidden, solo, relativeTo, seen, selected, showBones, onion,
      onionEvery, onionBefore, onionAfter];
    if (of.every((each, i) => each === this.drawnOf[i])) return;
    this.drawnOf = of;
    this.bones = bonesOf(hierarchyOf(app.motion.trails), state);
    this.members = new Set(this.bones.flat());
    this.fill(this.poses());
  }

  private poses(): Pose[] {
    const { frame, showBones } = this.app.store.state;
    const colors = this.colors();
    const poses = onionSkins(this.app).map((skin): Pose => ({ frame: skin.frame, color: skinColor(skin, colors) }));
    if (showBones) poses.push({ frame, color: colors.bone });
    return poses;
  }

  private fill(poses: readonly Pose[]): void {
    for (const object of this.group.children as (Mesh | LineSegments | Points)[]) object.geometry.dispose();
    this.group.clear();
    const ends: number[] = [];
    const colors: number[] = [];
    for (const { frame, color } of poses) {
      const shade = channels(color);
      for (const bone of this.bones) {
        const [a, b] = bone.map((trail) => this.place(trail, frame));
        if (!a || !b) continue;
        ends.push(...a, ...b);
        colors.push(...shade, ...shade);
      }
    }
    this.ends = Float32Array.from(ends);
    if (ends.length > 0) this.add(this.ends, Uint8Array.from(colors));
  }

  /** From now on, what has moved since now is what moved. */
  allDrawn(): void {
    this.before = this.ends;
  }

  /** Adds the bones that moved. */
  addMoved(area: MovedArea): void {
    area.addPairs(this.before, this.ends);
  }

  private add(ends: Float32Array, colors: Uint8Array): void {
    if (ends.length > 6 * MOST_WIDE) {
      this.group.add(thinLines(ends, colors, this.thin));
    } else {
      const lines = new FatLines(ends, this.line);
      lines.recolor(colors);
      this.group.add(lines.object, pointsOf(ends, new BufferAttribute(colors, 3, true), this.joint));
    }
    this.group.children.forEach((object, i) => (object.renderOrder = FIGURE_ORDER + i / 10));
  }

  private place(trail: number, frame: number): Vec3 | null {
    return placeIn({ app: this.app, origin: this.origin() }, this.app.motion.shownPosition(trail, frame));
  }
}
