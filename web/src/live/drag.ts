// A key that is dragged through the world, as one step of undo: its object's own channels follow it, and trails are known
// before the engine has made them again.

import { EngineError } from "../errors";
import type { Scene } from "../scene";
import type { Trails } from "../trails";
import { finitePlaces } from "./numbers";
import type { Dragged } from "./protocol";

export class Drag {
  private edited = false;

  /** Throws EngineError with the reason where the key cannot be moved in space. */
  constructor(private readonly scene: Scene, private readonly trails: Trails, private readonly object: string,
              private readonly frame: number) {
    const { obstacle, text } = scene.placing(object, frame);
    if (obstacle !== null) throw new EngineError(text!, "refused", 0);
    scene.openStep("move key");
  }

  /** Moves the key to a place. Throws EngineError where its channels do not reach that; then it stays where it is. */
  moveTo(wanted: readonly [number, number, number]): Dragged {
    const { scene, trails, object, frame } = this;
    scene.placeKey(object, frame, wanted);
    this.edited = true;
    const matrix = scene.worldMatrices(object, [frame]);
    const [first, last] = scene.feltRange(object, undefined, frame);
    const parts = trails.provisional(object, first, last).map(({ trail, first: sample, points }) =>
      ({ index: trail, first: sample, points: finitePlaces(points) }));
    return { position: [matrix[12], matrix[13], matrix[14]], parts };
  }

  /** Not `kept`: the key goes back. */
  end(kept: boolean): void {
    this.scene.closeStep();
    if (!kept && this.edited) this.scene.undo();
  }
}
