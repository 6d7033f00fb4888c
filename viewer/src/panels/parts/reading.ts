// A dialog to read: a heading, a body that scrolls, and a button that closes it, as a click beside it does.

import { button, el, freshId } from "./dom";

export interface Reading {
  readonly element: HTMLDialogElement;
  readonly body: HTMLElement;
  open(): void;
}

/** `label` names the body, which can be focused so that keys scroll it. */
export function buildReading(name: string, title: string, label: string, ...content: Node[]): Reading {
  const heading = el("h2", { id: freshId(name) }, title);
  const body = el("div", { class: "reading-body", tabindex: 0, role: "region", "aria-label": label }, ...content);
  const close = button({ icon: "close", name: "Close" }, () => element.close());
  const element = el(
    "dialog", { class: `reading ${name}`, "aria-labelledby": heading.id },
    el("div", { class: "reading-head" }, heading, close), body,
  );
  element.addEventListener("click", (event) => {
    if (event.target === element) element.close(); // beside the dialog
  });
  const open = () => {
    if (!element.open) element.showModal();
  };
  return { element, body, open };
}
