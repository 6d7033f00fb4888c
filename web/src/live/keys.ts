// What the page is told of keys: where they can go in time, and where their tangents lead.

import { Tangent, type Curve, type Key, type KeyTangents } from "../animation";
import type { Scene } from "../scene";
import { kindOf, type TangentKind } from "./tangent_kinds";

/** A key of a channel, with what is beside it. */
export interface KeyAt extends Pick<Curve, "attribute" | "kind" | "weighted"> {
  readonly key: Key;
  readonly before: Key | undefined;
  readonly after: Key | undefined;
  readonly tangents: KeyTangents;
}

/** The keys that an object's channels have at a frame. */
export function keysAt(scene: Scene, object: string, frame: number): KeyAt[] {
  return scene.curves(object).flatMap(({ attribute, kind, weighted }) => {
    const keys = scene.keys(object, attribute);
    const at = keys.findIndex((key) => key.frame === frame);
    if (at < 0) return [];
    return [{ attribute, kind, weighted, key: keys[at], before: keys[at - 1], after: keys[at + 1],
      tangents: scene.tangents(object, attribute)[at] }];
  });
}

/** The frames between which the keys at a frame can move without a meeting; of one channel, or of all. */
export function roomOf(scene: Scene, objects: readonly string[], channel: string | undefined, frame: number): [number, number] {
  const keys = objects.flatMap((object) => keysAt(scene, object, frame))
    .filter(({ attribute }) => channel === undefined || attribute === channel);
  return [Math.max(-Infinity, ...keys.flatMap(({ before }) => before?.frame ?? [])),
    Math.min(Infinity, ...keys.flatMap(({ after }) => after?.frame ?? []))];
}

/** The whole frame in a room that is nearest to what is wanted; `now` where there is none. */
export function wholeFrameIn([low, high]: readonly [number, number], wanted: number, now: number): number {
  const [first, last] = [Math.floor(low) + 1, Math.ceil(high) - 1];
  return first <= last && Number.isFinite(wanted) ? Math.max(first, Math.min(last, Math.round(wanted))) : now;
}

const steps = (sort: Tangent) => sort === Tangent.step || sort === Tangent.stepNext;

/** Slopes that differ by less, in parts of the steeper one, are the same. */
const SAME = 1e-9;

/** Whether the two sides of a key have two slopes. */
export function isBroken({ key, before, after, tangents: { inX, inY, outX, outY } }: KeyAt): boolean {
  if (!before || !after || steps(key.out) || !(inX > 0) || !(outX > 0)) return false;
  const [into, from] = [inY / inX, outY / outX];
  return Math.abs(into - from) > SAME * Math.max(Math.abs(into), Math.abs(from));
}

/** Lets the side that enters each key go on in the slope of the one that leaves it. */
export function unify(scene: Scene, object: string, frame: number): void {
  for (const at of keysAt(scene, object, frame))
    if (isBroken(at)) scene.setTangent(object, at.attribute, frame, "out", at.tangents.outX, at.tangents.outY, true);
}

/** A key of an object's position, and how its tangents lie in the world. */
interface PathVector {
  /** In the world. */
  readonly place: readonly number[];
  readonly channels: readonly (KeyAt & { readonly axis: number })[];
  /** From vectors in the channels to the world, and back. */
  toWorld(vector: readonly number[]): number[];
  toChannels(vector: readonly number[]): number[];
}

const AXES = ["translateX", "translateY", "translateZ"];

/** Null where no channel of its position has a key then, or what is above it is flat. */
export function pathVector(scene: Scene, object: string, frame: number): PathVector | null {
  const channels = keysAt(scene, object, frame).map((each) => ({ ...each, axis: AXES.indexOf(each.attribute) }))
    .filter(({ axis }) => axis >= 0);
  const m = scene.matricesAbove(object, [frame]);
  const rows = [0, 1, 2].map((i) => [m[4 * i], m[4 * i + 1], m[4 * i + 2]]);
  const back = inverse(rows);
  if (channels.length === 0 || !back) return null;
  return { place: scene.worldMatrices(object, [frame]).slice(12, 15) as unknown as number[], channels,
    toWorld: (vector) => times(vector, rows), toChannels: (vector) => times(vector, back) };
}

const times = (v: readonly number[], m: readonly (readonly number[])[]) =>
  [0, 1, 2].map((k) => v[0] * m[0][k] + v[1] * m[1][k] + v[2] * m[2][k]);

const cross = (a: readonly number[], b: readonly number[]) =>
  [a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]];

function inverse([a, b, c]: readonly (readonly number[])[]): number[][] | null {
  const columns = [cross(b, c), cross(c, a), cross(a, b)];
  const size = a[0] * columns[0][0] + a[1] * columns[0][1] + a[2] * columns[0][2];
  if (!Number.isFinite(1 / size)) return null;
  return [0, 1, 2].map((k) => columns.map((column) => column[k] / size));
}

/** The ends of the handles of a key on its path, in the world: a third of the tangents; null where a side leads nowhere. */
export interface PathTangents {
  place: number[];
  in: number[] | null;
  out: number[] | null;
  broken: boolean;
}

/** How fast a channel without a key there goes, a second: its part of where the path leads. */
function speedAt(scene: Scene, object: string, attribute: string, frame: number): number {
  const near = 1 / 64; // frames
  const [before, after] = scene.channelValues(object, attribute, [frame - near, frame + near]);
  return ((after - before) / (2 * near)) * scene.describe().fps;
}

/** Null where the object has no key of its position at the frame. */
export function pathTangents(scene: Scene, object: string, frame: number): PathTangents | null {
  const path = pathVector(scene, object, frame);
  if (!path) return null;
  const { channels } = path;
  const end = (side: "in" | "out") => {
    const sign = side === "out" ? 1 / 3 : -1 / 3;
    const seconds = channels[0].tangents[`${side}X`];
    const vector = AXES.map((attribute, axis) => {
      const keyed = channels.find((at) => at.axis === axis);
      return sign * (keyed ? keyed.tangents[`${side}Y`] : seconds * speedAt(scene, object, attribute, frame));
    });
    return path.toWorld(vector).map((by, k) => path.place[k] + by);
  };
  return {
    place: [...path.place], broken: channels.some(isBroken),
    in: channels.some(({ before }) => before) ? end("in") : null,
    out: channels.some(({ after, key }) => after && !steps(key.out)) ? end("out") : null,
  };
}

/** The curve of a channel, for a graph: in degrees on angles. */
export interface ChannelCurve {
  channel: string;
  angle: boolean;
  /** Whether the lengths of its tangents count. */
  weighted: boolean;
  keys: { frame: number; value: number; in: boolean; out: boolean; broken: boolean; kind: TangentKind | null; tangents: KeyTangents }[];
  /** At the frames that were asked for. */
  values: Float64Array;
}

/** All channels of an object that have keys. */
export function channelCurves(scene: Scene, object: string, frames: ArrayLike<number>): ChannelCurve[] {
  return scene.curves(object).map((curve) => {
    const { attribute } = curve;
    const angle = curve.kind === "angular";
    const unit = angle ? 180 / Math.PI : 1;
    const [keys, tangents] = [scene.keys(object, attribute), scene.tangents(object, attribute)];
    return {
      channel: attribute, angle, weighted: curve.weighted, values: scene.channelValues(object, attribute, frames).map((value) => value * unit),
      keys: keys.map((key, k) => {
        const [before, after, { inX, inY, outX, outY }] = [keys[k - 1], keys[k + 1], tangents[k]];
        return { frame: key.frame, value: key.value * unit, in: before !== undefined, out: after !== undefined && !steps(key.out),
          broken: isBroken({ ...curve, key, before, after, tangents: tangents[k] }), kind: kindOf(key),
          tangents: { inX, inY: inY * unit, outX, outY: outY * unit } };
      }),
    };
  });
}
