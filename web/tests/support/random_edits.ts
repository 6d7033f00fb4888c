// Edits of all sorts, one after the other, each of the scene as those before it have left it.

import { Tangent, type Key, type Scene } from "../../src/index";
import { numbersOf, questions, type Command } from "./commands";
import { randomFrom } from "./random";

/** After so many edits everything is asked for. */
export const EDITS_BETWEEN = 50;

const SORTS = [Tangent.automatic, Tangent.spline, Tangent.linear, Tangent.flat, Tangent.fixed, Tangent.step, Tangent.clamped];

class RandomEdits {
  private readonly next: () => number;
  private readonly objects: string[];

  constructor(private readonly scene: Scene, seed: number) {
    this.next = randomFrom(seed);
    const keyed = scene.objects().filter(({ source }) => scene.curves(source).length > 0);
    this.objects = (keyed.length > 0 ? keyed : scene.objects()).map(({ source }) => source);
  }

  edit(): Command {
    const dice = this.next();
    if (dice < 0.12) return ["undo"];
    if (dice < 0.2) return ["redo"];
    const source = this.one(this.objects), curves = this.scene.curves(source);
    const attribute = curves.length > 0 ? this.one(curves).attribute : "translateX";
    const keys = this.scene.keys(source, attribute);
    if (dice < 0.3 || keys.length < 3) return ["set", source, attribute, this.frame(), this.number(50)];
    return this.editOfKey(source, attribute, this.one(keys), dice);
  }

  private editOfKey(source: string, attribute: string, key: Key, dice: number): Command {
    const channels = this.next() < 0.5 ? attribute : "";
    if (dice < 0.42) return ["place", source, key.frame, this.number(20), this.number(20), this.number(20)];
    if (dice < 0.5) return ["slide", source, key.frame + this.next() + 0.01, key.frame + 3 * this.next(), this.bit(), this.bit()];
    if (dice < 0.62) return ["moveKeys", source, channels, key.frame, key.frame + this.number(1.5)];
    if (dice < 0.72) return ["insertKeys", source, channels, this.frame()];
    if (dice < 0.8) return ["removeKeys", source, channels, key.frame];
    if (dice < 0.92)
      return ["setTangent", source, attribute, key.frame, this.next() + 0.01, this.number(9), this.bit(), this.bit()];
    if (dice < 0.95) return ["setWeighted", source, attribute, this.bit()];
    const turned = { ...key, in: this.one(SORTS), out: this.one(SORTS), outX: this.next() + 0.01, outY: this.number(9) };
    return ["put", source, attribute, ...numbersOf(turned)];
  }

  private one<T>(list: readonly T[]): T {
    return list[Math.floor(this.next() * list.length)];
  }

  private bit() {
    return this.next() < 0.5 ? 0 : 1;
  }

  private number(size: number) {
    return (2 * this.next() - 1) * size;
  }

  /** In quarters, so that some are where keys are. */
  private frame() {
    const [first, last] = this.scene.describe().range;
    return first + Math.floor(4 * this.next() * (last - first)) / 4;
  }
}

/** What is the same as long as the scene is. */
const lasting = (scene: Scene) => questions(scene).filter(([what]) => what !== "history");

/** So many edits, with everything asked before, now and then, and after all of them have been undone. */
export function* randomEdits(scene: Scene, count: number, seed: number): Generator<Command> {
  const asked = lasting(scene), edits = new RandomEdits(scene, seed);
  yield* asked;
  for (let k = 1; k <= count; ++k) {
    yield edits.edit();
    if (k % EDITS_BETWEEN === 0) yield* [["follow"] satisfies Command, ...asked];
  }
  for (let left = scene.history().undo.length; left > 0; --left) yield ["undo"];
  yield* [["follow"] satisfies Command, ...asked];
}
