// The page around the viewport.

import type { App } from "../model/app";

export interface Page {
  /** The element that the viewport fills. */
  readonly viewport: HTMLElement;
  announce(text: string): void;
  trailsChanged(): void;
}

export function buildPage(_app: App, root: HTMLElement): Page {
  const viewport = document.createElement("div");
  viewport.className = "viewport";
  root.append(viewport);
  return { viewport, announce: () => {}, trailsChanged: () => {} };
}
