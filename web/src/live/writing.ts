// A scene's animation out again: the forms that the engine writes, and what each of them does not hold.

import { EngineError } from "../errors";
import type { Scene, Written } from "../scene";

/** All that a page has a name for. */
const FORMS = ["ma", "py", "bvh", "glb"];

/** How the engine begins when it is asked for a form that it does not write. */
const UNKNOWN = "there is no form ";

export interface Saved {
  /** What the file is to hold. */
  content: string | Uint8Array;
  /** What it will not hold, or not to the last bit: a sentence each. */
  lost: string[];
}

export function savedAs(scene: Scene, form: string): Saved {
  const { text, lost, bytes }: Written & { bytes?: Uint8Array } = scene.written(form as Parameters<Scene["written"]>[0]);
  return { content: bytes ?? text, lost };
}

/** Those of the forms that the engine writes, be it not this scene. One object is written in each, to see. */
export function formsOf(scene: Scene): string[] {
  const [object] = scene.objects();
  return object ? FORMS.filter((form) => isWritten(scene, form, object.source)) : [];
}

function isWritten(scene: Scene, form: string, object: string): boolean {
  try {
    scene.written(form as Parameters<Scene["written"]>[0], [object]);
    return true;
  } catch (error) {
    if (!(error instanceof EngineError)) throw error;
    return !error.message.startsWith(UNKNOWN);
  }
}
