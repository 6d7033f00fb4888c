// Draws the figure: bones and joints at the current frame, and its onion skins. One buffer, filled anew when it moves.

import {
  BufferAttribute, BufferGeometry, Group, InstancedInterleavedBuffer, InterleavedBufferAttribute, LineSegments, Points,
} from "three";
import { LineMaterial } from "three/examples/jsm/lines/LineMaterial.js";
import { LineSegments2 } from "three/examples/jsm/lines/LineSegments2.js";
import { LineSegmentsGeometry } from "three/examples/jsm/lines/LineSegmentsGeometry.js";
import type { App } from "../model/app";
import { bonesOf, onionSkins, type Bone } from "../model/figure";
import { hierarchyOf } from "../model/hierarchy";
import type { Vec3 } from "../source/trail";
import { FIGURE_ORDER } from "./layers";
import { placeIn } from "./places";
import { dotMaterial, thinMaterial } from "./primitives/materials";
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

/** Places and colours that grow as needed. */
class Buffers {
  ends = new Float32Array();
  colors = new Uint8Array();
  count = 0;

  /** Empties them; there is room for so many bones then. */
  begin(bones: number): boolean {
    this.count = 0;
    if (6 * bones <= this.ends.length) return false;
    this.ends = new Float32Array(6 * bones);
    this.colors = new Uint8Array(6 * bones);
    return true;
  }

  add(a: Vec3, b: Vec3, color: readonly number[]): void {
    this.ends.set(a, 6 * this.count);
    this.ends.set(b, 6 * this.count + 3);
    this.colors.set(color, 6 * this.count);
    this.colors.set(color, 6 * this.count + 3);
    ++this.count;
  }
}

export class Skeleton {
  readonly group = new Group();
  private readonly buffers = new Buffers();
  private readonly line = new LineMaterial({ linewidth: BONE_WIDTH, vertexColors: true, depthTest: false });
  private readonly joint;
  private lines = new LineSegments2(new LineSegmentsGeometry(), this.line);
  private readonly thin = thinMaterial(true);
  private points: Points;
  private thinLines = new LineSegments(new BufferGeometry(), this.thin);
  private drawnOf: readonly unknown[] = [];
  private bones: readonly Bone[] = [];
  private members: ReadonlySet<number> = new Set();

  constructor(private readonly app: App, private readonly origin: () => Vec3, private readonly colors: () => Colors, ratio: number) {
    this.joint = dotMaterial({ size: JOINT_SIZE * ratio, ghost: true, edge: 0, rim: "#000000" });
    this.points = new Points(new BufferGeometry(), this.joint);
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
    const { frame, hidden, solo, relativeTo, selected, showBones, onion, onionEvery, onionBefore, onionAfter } = state;
    const of = [app.motion.trails, this.origin(), this.colors(), frame, hidden, solo, relativeTo, selected, showBones, onion,
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
    const { buffers, bones } = this;
    if (buffers.begin(bones.length * poses.length)) this.renew();
    for (const { frame, color } of poses) {
      const shade = channels(color);
      for (const bone of bones) {
        const [a, b] = bone.map((trail) => this.place(trail, frame));
        if (a && b) buffers.add(a, b, shade);
      }
    }
    this.lines.visible = this.points.visible = buffers.count > 0 && buffers.count <= MOST_WIDE;
    this.thinLines.visible = buffers.count > MOST_WIDE;
    this.lines.geometry.instanceCount = buffers.count;
    this.points.geometry.setDrawRange(0, 2 * buffers.count); // also what the thin lines draw
    this.touch();
  }

  private place(trail: number, frame: number): Vec3 | null {
    return placeIn({ app: this.app, origin: this.origin() }, this.app.motion.shownPosition(trail, frame));
  }

  /** New objects around buffers that have grown. */
  private renew(): void {
    this.lines.geometry.dispose();
    this.points.geometry.dispose();
    const { ends, colors } = this.buffers;
    const geometry = new LineSegmentsGeometry();
    const [places, shades] = [new InstancedInterleavedBuffer(ends, 6, 1), new InstancedInterleavedBuffer(colors, 6, 1)];
    geometry.setAttribute("instanceStart", new InterleavedBufferAttribute(places, 3, 0));
    geometry.setAttribute("instanceEnd", new InterleavedBufferAttribute(places, 3, 3));
    geometry.setAttribute("instanceColorStart", new InterleavedBufferAttribute(shades, 3, 0, true));
    geometry.setAttribute("instanceColorEnd", new InterleavedBufferAttribute(shades, 3, 3, true));
    this.lines = new LineSegments2(geometry, this.line);
    const joints = new BufferGeometry();
    joints.setAttribute("position", new BufferAttribute(ends, 3));
    joints.setAttribute("color", new BufferAttribute(colors, 3, true));
    this.points = new Points(joints, this.joint);
    this.thinLines = new LineSegments(joints, this.thin);
    this.line.depthWrite = this.joint.depthWrite = this.thin.depthWrite = false;
    this.group.clear();
    for (const [i, object] of [this.lines, this.points, this.thinLines].entries()) {
      object.frustumCulled = false;
      object.renderOrder = FIGURE_ORDER + i / 10;
      this.group.add(object);
    }
  }

  private touch(): void {
    for (const name of ["instanceStart", "instanceColorStart"]) {
      const attribute = this.lines.geometry.getAttribute(name);
      if (attribute instanceof InterleavedBufferAttribute) attribute.data.needsUpdate = true;
    }
    for (const attribute of Object.values(this.points.geometry.attributes)) (attribute as BufferAttribute).needsUpdate = true;
  }
}
