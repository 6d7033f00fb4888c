// What every part of the page is given.

import type { Scene } from "../source/trail";
import type { Motion } from "./motion";
import type { Store } from "./state";

export interface App {
  readonly scene: Scene;
  readonly motion: Motion;
  readonly store: Store;
  /** Tells people who do not see the page what happened. */
  announce(text: string): void;
  /** A picture of the viewport as it is now. */
  picture(): Promise<Blob>;
  /** Hands the reader a file to keep. */
  save(name: string, content: Blob): void;
}
