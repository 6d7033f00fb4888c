// What every part of the page is given.

import type { Editing, Scene, Spaces, Writing } from "../source/trail";
import type { Motion } from "./motion";
import type { Store } from "./state";

export interface App {
  readonly scene: Scene;
  readonly motion: Motion;
  readonly store: Store;
  /** Ends when the page shows another scene: with it go all listeners outside of what was shown. */
  readonly life: AbortSignal;
  /** Where keys can be edited. */
  readonly editing?: Editing;
  /** Where animation can be written. */
  readonly writing?: Writing;
  /** Where more is known than positions. */
  readonly spaces?: Spaces;
  /** Where scenes can be opened: asks the reader for files. */
  chooseFiles?(): void;
  /** Tells people who do not see the page what happened. */
  announce(text: string): void;
  /** A picture of the viewport as it is now. */
  picture(): Promise<Blob>;
  /** Hands the reader a file to keep. */
  save(name: string, content: Blob): void;
}
