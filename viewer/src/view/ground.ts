// What stands still: a grid in the scene's unit, the ground, and boxes for nodes that do not move.

import {
  BoxGeometry, CustomBlending, EdgesGeometry, Group, LineSegments, Matrix4, Mesh, NotEqualStencilFunc, OneFactor, PlaneGeometry,
  ReplaceStencilOp, ZeroFactor, type BufferGeometry, type ShaderMaterial,
} from "three";
import type { StaticBox, Vec3 } from "../source/trail";
import type { Bounds } from "../model/framing";
import type { ViewName } from "../model/state";
import { BOX_ORDER } from "./layers";
import { thinLines } from "./primitives/batch";
import { flatMaterial, oneColor } from "./primitives/materials";
import { isDrawable } from "./primitives/projection";
import { channels } from "./primitives/shades";
import type { Colors } from "./theme";

/** How much of what lies behind boxes they cover. */
const VEIL = 0.4;

/** The largest of 1, 2, 5 times a power of ten that is at most `size`, which is above 0. */
function stepUpTo(size: number): number {
  const power = 10 ** Math.floor(Math.log10(size));
  const head = size / power;
  return power * (head >= 5 ? 5 : head >= 2 ? 2 : 1);
}

/** A rectangle of squares; axes by number, y up. `across` is the axis at a right angle to it, `height` its place there. */
export interface Grid {
  readonly step: number;
  readonly across: 0 | 1 | 2;
  readonly height: number;
  readonly low: readonly [number, number];
  readonly high: readonly [number, number];
}

const AXES = { 0: [2, 1], 1: [0, 2], 2: [0, 1] } as const;

/** The axis at a right angle to the grid of a view. */
export const acrossOf = (view: ViewName): 0 | 1 | 2 => (view === "front" ? 2 : view === "side" ? 0 : 1);

/** Below the box like a floor; seen from the front or the side, behind it like ruled paper. */
export function gridFor(box: Bounds, view: ViewName): Grid {
  const across = acrossOf(view);
  const [u, v] = AXES[across];
  const size = box.high.map((h, k) => h - box.low[k]);
  const extent = Math.max(...size) || 1;
  const half = [u, v].map((k) => Math.max(size[k], 0.25 * extent) / 2);
  const centre = [u, v].map((k) => box.low[k] + size[k] / 2);
  const step = stepUpTo(Math.max(...half) / 4);
  const edge = (sign: 1 | -1) =>
    [0, 1].map((i) => sign * Math.ceil((sign * centre[i] + half[i]) / step + 0.3) * step) as [number, number];
  const nearZero = box.low[across] > -0.1 * extent && box.low[across] < 0.6 * extent;
  const below = nearZero ? 0 : Math.floor(box.low[across] / step) * step;
  return { step, across, height: across === 1 ? below : box.low[across] - 0.1 * extent, low: edge(-1), high: edge(1) };
}

function gridLines(grid: Grid, origin: Vec3, colors: Colors): LineSegments {
  const [u, v] = AXES[grid.across];
  const places: number[] = [];
  const shades: number[] = [];
  const plain = channels(colors.grid);
  const axis = channels(colors.axis);
  const end = (along: number, other: number, value: number, at: number) => {
    const p = [0, 0, 0];
    p[grid.across] = grid.height - origin[grid.across];
    p[along] = value - origin[along];
    p[other] = at - origin[other];
    places.push(...p);
  };
  for (const [along, other, i] of [[u, v, 0], [v, u, 1]] as const) {
    const count = Math.min(400, Math.round((grid.high[i] - grid.low[i]) / grid.step));
    for (let line = 0; line <= count; ++line) {
      const value = grid.low[i] + line * grid.step;
      end(along, other, value, grid.low[1 - i]);
      end(along, other, value, grid.high[1 - i]);
      const shade = Math.abs(value) < 1e-6 * grid.step ? axis : plain;
      shades.push(...shade, ...shade);
    }
  }
  const lines = thinLines(Float32Array.from(places), Uint8Array.from(shades), flatMaterial({ depthWrite: false }));
  lines.renderOrder = -8;
  return lines;
}

function painted(geometry: BufferGeometry, color: string): BufferGeometry {
  geometry.setAttribute("color", oneColor(color));
  return geometry;
}

/** The ground. It hides nothing that is below it. */
function plane(grid: Grid, origin: Vec3, colors: Colors): Mesh {
  const [width, depth] = [grid.high[0] - grid.low[0], grid.high[1] - grid.low[1]];
  const mesh = new Mesh(painted(new PlaneGeometry(width, depth), colors.ground), flatMaterial({ depthWrite: false }));
  mesh.rotation.x = -Math.PI / 2;
  mesh.position.set(grid.low[0] + width / 2 - origin[0], grid.height - origin[1], grid.low[1] + depth / 2 - origin[2]);
  mesh.renderOrder = -9;
  return mesh;
}

/** The faces of a box, through which everything is seen: all boxes together veil a pixel once. */
function veil(geometry: BoxGeometry, colors: Colors): Mesh {
  const material = flatMaterial({
    depthWrite: false, blending: CustomBlending, blendSrcAlpha: ZeroFactor, blendDstAlpha: OneFactor, // the picture stays opaque
    stencilWrite: true, stencilRef: 1, stencilFunc: NotEqualStencilFunc, stencilZPass: ReplaceStencilOp,
  }, VEIL);
  const mesh = new Mesh(painted(geometry, colors.box), material);
  mesh.renderOrder = BOX_ORDER;
  return mesh;
}

/** The edges lie below every trail; a box that holds samples is nothing else. */
function box(node: StagedBox, turn: Matrix4, colors: Colors): Group {
  const size = node.high.map((h, k) => Math.max(h - node.low[k], 1e-9));
  const geometry = new BoxGeometry(...(size as [number, number, number]));
  geometry.translate(...(node.low.map((l, k) => l + size[k] / 2) as [number, number, number]));
  const group = new Group();
  const edges = new LineSegments(painted(new EdgesGeometry(geometry), colors.boxEdge), flatMaterial({ depthWrite: false }));
  edges.renderOrder = -7;
  group.add(edges);
  if (!node.holds) group.add(veil(geometry, colors));
  // A matrix for row vectors, row by row, is the same list of numbers as that for column vectors, column by column.
  group.matrixAutoUpdate = false;
  group.matrix.fromArray(node.matrix as number[]).premultiply(turn);
  return group;
}

export interface StagedBox extends StaticBox {
  /** Whether samples lie in it. */
  readonly holds: boolean;
}

export interface Stage {
  readonly grid: Grid;
  readonly boxes: readonly StagedBox[];
  readonly upAxis: "y" | "z";
  /** Subtracted from everything. */
  readonly origin: Vec3;
}

export function buildStage({ grid, boxes, upAxis, origin }: Stage, colors: Colors): Group {
  const group = new Group();
  if (!isDrawable(grid.step)) return group;
  if (grid.across === 1) group.add(plane(grid, origin, colors));
  group.add(gridLines(grid, origin, colors));
  const turn = new Matrix4().makeTranslation(-origin[0], -origin[1], -origin[2]);
  if (upAxis === "z") turn.multiply(new Matrix4().makeRotationX(-Math.PI / 2));
  for (const node of boxes) group.add(box(node, turn, colors));
  return group;
}

export function disposeAll(group: Group): void {
  group.traverse((object) => {
    if (!(object instanceof Mesh || object instanceof LineSegments)) return;
    object.geometry.dispose();
    (object.material as ShaderMaterial).dispose();
  });
  group.clear();
}
