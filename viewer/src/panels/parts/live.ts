// Messages about what just happened, for readers who see the page and for those who hear it.

import { el } from "./dom";

const SECONDS_SHOWN = 4;

export interface Live {
  readonly element: HTMLElement;
  announce(text: string): void;
}

export function buildLive(): Live {
  const element = el("div", { class: "message", role: "status", "aria-live": "polite" });
  let timer = 0;
  return {
    element,
    announce(text) {
      // Screen readers repeat a text only if it is a new node.
      element.replaceChildren(el("span", {}, text));
      window.clearTimeout(timer);
      timer = window.setTimeout(() => element.replaceChildren(), SECONDS_SHOWN * 1000);
    },
  };
}
