// Elements, made with text and attributes only: whatever stands in a scene file stays text.

import { command, keyLabel } from "../../model/commands";
import type { App } from "../../model/app";
import { icon, type IconName } from "./icons";

export type Attributes = Readonly<Record<string, string | number | boolean | undefined>>;

/** An attribute that is true is there, one that is false or undefined is not. */
export function setAttributes(element: Element, attributes: Attributes): void {
  for (const [name, value] of Object.entries(attributes))
    if (value === false || value === undefined) element.removeAttribute(name);
    else element.setAttribute(name, value === true ? "" : String(value));
}

export function el<K extends keyof HTMLElementTagNameMap>(
  tag: K, attributes: Attributes = {}, ...children: (Node | string)[]
): HTMLElementTagNameMap[K] {
  const element = document.createElement(tag);
  setAttributes(element, attributes);
  element.append(...children);
  return element;
}

/** Writes only what changes: text that stays does not make the browser lay the page out again. */
export function setText(element: Element, text: string): void {
  if (element.textContent !== text) element.textContent = text;
}

export interface ButtonParts {
  icon?: IconName;
  text?: string;
  /** Its name for screen readers; its text where there is none. */
  name?: string;
  /** Its tooltip; its name where there is none. */
  title?: string;
  class?: string;
}

export function button(parts: ButtonParts, run: () => void): HTMLButtonElement {
  const made = el("button", {
    type: "button", class: parts.class ?? "button", title: parts.title ?? parts.name, "aria-label": parts.name,
  });
  if (parts.icon) made.append(icon(parts.icon));
  if (parts.text !== undefined) made.append(el("span", {}, parts.text));
  made.addEventListener("click", run);
  return made;
}

/** A command's title and its keys. */
export function commandTitle(id: string): string {
  const { title, keys } = command(id);
  return keys.length > 0 ? `${title} (${keys.map(keyLabel).join(", ")})` : title;
}

/** A button that runs a command. Its name is the text that it shows, or the command's title if it shows an icon. */
export function commandButton(app: App, id: string, parts: ButtonParts): HTMLButtonElement {
  const found = command(id);
  const name = parts.name ?? (parts.text === undefined ? found.title : undefined);
  const made = button({ ...parts, name, title: commandTitle(id) }, () => found.run(app));
  made.dataset.command = id;
  return made;
}

let labels = 0;

/** An id that no other element of the page has. */
export const freshId = (stem: string): string => `${stem}-${++labels}`;

/** A label with its control beside it. */
export function labelled(text: string, control: HTMLElement, ...more: Node[]): HTMLDivElement {
  control.id ||= freshId("control");
  return el("div", { class: "setting" }, el("label", { for: control.id }, text), el("span", { class: "value" }, control, ...more));
}
