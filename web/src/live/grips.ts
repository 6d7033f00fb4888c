// What a drag can take hold of, and what each pull of it does to the scene's keys.

import { EngineError } from "../errors";
import type { Placing } from "../animation";
import type { Scene } from "../scene";
import { isBroken, keysAt, pathVector, roomOf, wholeFrameIn } from "./keys";

export type Side = "in" | "out";

/** Objects by their long paths, channels by their names; the key is the one at the frame. What a pull wants follows. */
export type Grip =
  /** A key on its path: x y z in the world. */
  | { what: "place"; object: string; frame: number }
  /** The keys of objects in time: a frame. */
  | { what: "time"; objects: readonly string[]; frame: number }
  /** A key of a channel: its frame and its value, in degrees on angles. */
  | { what: "key"; object: string; channel: string; frame: number }
  /** A side of a key of a channel: seconds away from the key, and how far the value goes meanwhile. */
  | { what: "tangent"; object: string; channel: string; frame: number; side: Side; unified: boolean }
  /** The end of a side of a key on its path: x y z in the world. */
  | { what: "path tangent"; object: string; frame: number; side: Side; unified: boolean }
  /** An object between two keys: the frame at which its path is where it is wanted. The keys at broken frames turn alone. */
  | { what: "bead"; object: string; frame: number; broken: readonly number[] };

export type Pull = readonly number[];

/** What is held. The frame is that of its key now. */
export interface Held {
  /** The name of the step that its drag is. */
  readonly name: string;
  readonly objects: readonly string[];
  frame: number;
  /** Each pull is of the keys as they were when it was taken hold of, whatever those before it did. */
  readonly afresh?: true;
  /** Throws EngineError where the keys do not go there. */
  pull(to: Pull): void;
}

/** Seconds; a tangent leads forward in time, however little. */
const LEAST_TIME = 1e-3;
const DEGREE = Math.PI / 180;

/** Throws EngineError with the reason where that cannot be dragged. */
export function hold(scene: Scene, grip: Grip): Held {
  if (grip.what === "place") return new HeldPlace(scene, grip.object, grip.frame);
  if (grip.what === "time") return new HeldTime(scene, grip.objects, grip.frame);
  if (grip.what === "key") return new HeldKey(scene, grip.object, grip.channel, grip.frame);
  if (grip.what === "bead") return heldBead(scene, grip.object, grip.frame, grip.broken);
  const { object, frame, side, unified } = grip;
  const pull = grip.what === "tangent"
    ? channelPull(scene, object, grip.channel, frame, side, unified) : pathPull(scene, object, frame, side, unified);
  return { name: "change tangent", objects: [object], frame, pull };
}

function requireNone({ obstacle, text }: Placing): void {
  if (obstacle !== null) throw new EngineError(text!, "refused", 0);
}

class HeldPlace implements Held {
  readonly name = "move key";
  readonly objects: readonly string[];

  constructor(private readonly scene: Scene, object: string, readonly frame: number) {
    requireNone(scene.placing(object, frame));
    this.objects = [object];
  }

  pull([x, y, z]: Pull): void {
    this.scene.placeKey(this.objects[0], this.frame, [x, y, z]);
  }
}

/** Goes to whole frames between its neighbours. */
class HeldTime implements Held {
  readonly name: string = "move key in time";
  private readonly room: readonly [number, number];
  /** The keys that are held, and no others that they meet on the way. */
  private readonly keys: readonly { readonly object: string; readonly attribute: string }[];

  constructor(protected readonly scene: Scene, readonly objects: readonly string[], public frame: number,
              channel?: string) {
    this.room = roomOf(scene, objects, channel, frame);
    this.keys = objects.flatMap((object) => keysAt(scene, object, frame).map(({ attribute }) => ({ object, attribute })))
      .filter(({ attribute }) => channel === undefined || attribute === channel);
    if (this.keys.length === 0) throw new EngineError(`no curve has a key at frame ${frame}`, "refused", 0);
  }

  pull([wanted]: Pull): void {
    const to = wholeFrameIn(this.room, wanted, this.frame);
    if (to === this.frame) return;
    for (const { object, attribute } of this.keys) this.scene.moveKeys(object, attribute, this.frame, to);
    this.frame = to;
  }
}

class HeldKey extends HeldTime {
  override readonly name = "move key";

  constructor(scene: Scene, private readonly object: string, private readonly attribute: string, frame: number) {
    super(scene, [object], frame, attribute);
  }

  override pull(to: Pull): void {
    super.pull(to);
    this.scene.setKey(this.object, this.attribute, this.frame, to[1]);
  }
}

/** Goes along its path as that was at first, where every place has its frame. */
function heldBead(scene: Scene, object: string, frame: number, broken: readonly number[]): Held {
  const sliding = scene.sliding(object, frame);
  requireNone(sliding);
  const alone = { before: broken.includes(sliding.first!), after: broken.includes(sliding.last!) };
  const pull = ([to]: Pull) => {
    if (to !== frame) scene.slideBead(object, frame, to, alone); // else it is where it was, without an edit
  };
  return { name: "change spacing", objects: [object], frame, afresh: true, pull };
}

/** A key whose sides have two slopes already keeps the other one. */
function channelPull(scene: Scene, object: string, channel: string, frame: number, side: Side, unified: boolean) {
  const held = keysAt(scene, object, frame).find(({ attribute }) => attribute === channel);
  const unit = held?.kind === "angular" ? DEGREE : 1;
  const together = unified && !(held && isBroken(held));
  return ([seconds, value]: Pull) =>
    scene.setTangent(object, channel, frame, side, Math.max(seconds, LEAST_TIME), value * unit, together);
}

/** Only where the tangents lead changes: when they do so stays. */
function pathPull(scene: Scene, object: string, frame: number, side: Side, unified: boolean) {
  const path = pathVector(scene, object, frame);
  if (!path) throw new EngineError(`no channel of the position of ${object} has a tangent at this frame`, "refused", 0);
  const together = unified && !path.channels.some(isBroken);
  return ([x, y, z]: Pull) => {
    const sign = side === "out" ? 3 : -3; // a handle is a third of a tangent
    const along = path.toChannels([x, y, z].map((wanted, k) => sign * (wanted - path.place[k])));
    for (const { attribute, axis, tangents } of path.channels) {
      const seconds = side === "out" ? tangents.outX : tangents.inX;
      scene.setTangent(object, attribute, frame, side, Math.max(seconds, LEAST_TIME), along[axis], together);
    }
  };
}
