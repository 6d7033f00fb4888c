// One object of the list: whether it is shown, whether it is solo, its colour, its name and its warnings.

import type { App } from "../model/app";
import { objectColor } from "../model/colors";
import { isVisible, toggled, type ViewState } from "../model/state";
import type { Trail } from "../source/trail";
import { el, setAttributes } from "./dom";
import { icon } from "./icons";

export interface ObjectRow {
  readonly element: HTMLElement;
  /** What the arrow keys reach, from left to right; the last one is the name. */
  readonly stops: readonly HTMLElement[];
  update(state: ViewState): void;
}

function toggle(label: string, content: Node | string, run: () => void): HTMLButtonElement {
  const made = el("button", { type: "button", class: "toggle", tabindex: -1, "aria-label": label, title: label }, content);
  made.addEventListener("click", run);
  return made;
}

function warningMark(trail: Trail): Node[] {
  if (trail.warnings.length === 0) return [];
  const text = trail.warnings.join("\n");
  const mark = el("span", { class: "warning", role: "img", "aria-label": `Warning: ${text}`, title: text });
  mark.append(icon("warning"));
  return [mark];
}

const cell = (attributes: Record<string, string | number>, ...children: Node[]) =>
  el("div", { role: "gridcell", ...attributes }, ...children);

export function buildRow(app: App, index: number): ObjectRow {
  const trail = app.motion.trails[index];
  const { store } = app;
  const shown = toggle(`Show ${trail.name}`, icon("eye"), () => store.set({ hidden: toggled(store.state.hidden, index) }));
  const alone = toggle(`Solo ${trail.name}`, "S", () => store.set({ solo: toggled(store.state.solo, index) }));
  const swatch = el("span", { class: "swatch", "aria-hidden": "true" });
  swatch.style.setProperty("--object", objectColor(index));
  const text = el("span", { class: "name" }, trail.name);
  const name = cell({ "aria-colindex": 3, class: "name-cell", tabindex: -1, title: trail.source }, swatch, text, ...warningMark(trail));
  const element = el("div", { role: "row", class: "object", "data-trail": index }, cell({ "aria-colindex": 1 }, shown), cell({ "aria-colindex": 2 }, alone), name);
  const update = (state: ViewState) => {
    shown.setAttribute("aria-pressed", String(!state.hidden.has(index)));
    alone.setAttribute("aria-pressed", String(state.solo.has(index)));
    setAttributes(element, {
      "aria-selected": String(state.selected.has(index)),
      "data-off": !isVisible(state, index),
      "data-reference": state.relativeTo === index,
    });
    swatch.dataset.mode = String(state.mode ?? trail.colorMode);
  };
  update(store.state);
  return { element, stops: [shown, alone, name], update };
}
