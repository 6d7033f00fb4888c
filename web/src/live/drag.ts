// What is dragged, as one step of undo; trails are known before the engine has made them again.

import type { Scene } from "../scene";
import type { Trails } from "../trails";
import { hold, type Grip, type Held, type Pull } from "./grips";
import { finitePlaces } from "./numbers";
import type { Dragged, MovedPart } from "./protocol";

type Range = readonly [first: number, last: number];

export class Drag {
  private readonly held: Held;
  private readonly steps: number;

  /** Throws EngineError with the reason where that cannot be dragged. */
  constructor(private readonly scene: Scene, private readonly trails: Trails, grip: Grip) {
    this.held = hold(scene, grip);
    this.steps = scene.history().undo.length;
    scene.openStep(this.held.name);
  }

  /** Throws EngineError where what is held does not go there. */
  pull(to: Pull): Dragged {
    const { scene, held } = this;
    const [from, before] = [held.frame, this.felt()];
    if (held.afresh) this.putBack();
    held.pull(to);
    const after = this.felt();
    const parts = held.objects.flatMap((object, k) => this.moved(object, before[k], after[k]));
    const keys = held.objects.map((object) => {
      const matrix = scene.worldMatrices(object, [held.frame]);
      return { object, position: [matrix[12], matrix[13], matrix[14]] as [number, number, number] };
    });
    return { from, frame: held.frame, keys, parts };
  }

  /** Not `kept`: all is as before. */
  end(kept: boolean): void {
    const { scene } = this;
    scene.closeStep();
    if (!kept && scene.history().undo.length > this.steps) scene.undo();
  }

  private putBack() {
    this.end(false);
    this.scene.openStep(this.held.name);
  }

  private felt(): Range[] {
    return this.held.objects.map((object) => this.scene.feltRange(object, undefined, this.held.frame));
  }

  private moved(object: string, before: Range, after: Range): MovedPart[] {
    const [first, last] = [Math.min(before[0], after[0]), Math.max(before[1], after[1])];
    return this.trails.provisional(object, first, last).map(({ trail, first: sample, points }) =>
      ({ index: trail, first: sample, points: finitePlaces(points) }));
  }
}
