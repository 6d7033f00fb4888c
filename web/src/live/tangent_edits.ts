// The kinds of the tangents that keys have at a frame, and whether lengths count on their curves.

import type { Scene } from "../scene";
import { keysAt, type KeyAt } from "./keys";
import { kindOf, SORTS, steps, type TangentKind } from "./tangent_kinds";

/** Of what keys, at a frame: all channels of the objects where none are named. */
export interface Keys {
  readonly objects: readonly string[];
  readonly channels?: readonly string[];
  readonly frame: number;
}

export interface KeyKind {
  kind: TangentKind | null;
  weighted: boolean;
}

/** A key of one of the objects. */
export interface OwnKey extends KeyAt {
  readonly object: string;
}

/** Those that there are. */
export const keysOf = (scene: Scene, { objects, channels, frame }: Keys): OwnKey[] =>
  objects.flatMap((object) => keysAt(scene, object, frame).map((at) => ({ ...at, object })))
    .filter(({ attribute }) => !channels || channels.includes(attribute));

export const tangentKinds = (scene: Scene, keys: Keys): KeyKind[] =>
  keysOf(scene, keys).map(({ key, weighted }) => ({ kind: kindOf(key), weighted }));

/** Fixed ones are those that it has now. */
export function setTangentKind(scene: Scene, { object, attribute, key, tangents }: OwnKey, kind: TangentKind): void {
  const sort = SORTS[kind];
  if (kindOf(key) === kind) return;
  const sides = { in: steps(kind) ? key.in : sort, out: sort };
  scene.putKey(object, attribute, { ...key, ...(kind === "fixed" ? tangents : {}), ...sides });
}

/** Of the curve on which it is. */
export function setWeighted(scene: Scene, { object, attribute, weighted: now }: OwnKey, weighted: boolean): void {
  if (now !== weighted) scene.setWeighted(object, attribute, weighted);
}
