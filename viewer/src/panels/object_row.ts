// One object of the list: what hangs from it, its colour, its name and its warnings, whether it is shown and solo.

import type { App } from "../model/app";
import { markColor, objectColor } from "../model/colors";
import type { OutlineRow } from "../model/outline";
import { isVisible, toggled, type ViewState } from "../model/state";
import type { Trail } from "../source/trail";
import { el, setAttributes, setText } from "./parts/dom";
import { icon } from "./parts/icons";

export interface ObjectRow {
  readonly element: HTMLElement;
  /** What the arrow keys reach, from left to right; the first one is the name. */
  readonly stops: readonly HTMLElement[];
  /** What folds and opens, for the pointer; keys do it on the name. */
  readonly twisty: HTMLElement;
  update(state: ViewState): void;
  place(row: OutlineRow): void;
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

/** Why a trail has no extent, in words; empty for one that moves. */
export function stillness(app: App, index: number): string {
  if (app.motion.moving[index]) return "";
  return app.motion.trails[index].keyTimes.length > 0 ? "has keys but does not travel: it may only turn" : "does not move";
}

const cell = (attributes: Record<string, string | number>, ...children: Node[]) =>
  el("div", { role: "gridcell", ...attributes }, ...children);

/** `called` is a name that no other object has. It shows nothing of the state before update() and place(). */
export function buildRow(app: App, index: number, called: string): ObjectRow {
  const trail = app.motion.trails[index];
  const { store } = app;
  const shown = toggle(`Show ${called}`, icon("eye"), () => store.set({ hidden: toggled(store.state.hidden, index) }));
  const alone = toggle(`Solo ${called}`, "S", () => store.set({ solo: toggled(store.state.solo, index) }));
  const twisty = el("span", { class: "twisty", "aria-hidden": "true" }, icon("fold"));
  const swatch = el("span", { class: "swatch", "aria-hidden": "true" });
  const still = el("span", { class: "still" });
  const name = cell({ "aria-colindex": 1, class: "name-cell", tabindex: -1 }, twisty, swatch,
    el("span", { class: "name" }, trail.name), still, ...warningMark(trail));
  const element = el("div", { role: "row", class: "object", "data-trail": index }, name, cell({ "aria-colindex": 2 }, shown), cell({ "aria-colindex": 3 }, alone));
  const update = (state: ViewState) => {
    shown.setAttribute("aria-pressed", String(!state.hidden.has(index)));
    alone.setAttribute("aria-pressed", String(state.solo.has(index)));
    setAttributes(element, {
      "aria-selected": String(state.selected.has(index)),
      "data-off": !isVisible(state, index),
      "data-reference": state.relativeTo === index,
    });
    swatch.dataset.mode = String(state.mode ?? trail.colorMode);
    swatch.style.setProperty("--object", state.selected.has(index) ? markColor(index, state.selected) : objectColor(index));
    const why = stillness(app, index);
    setAttributes(name, { title: why ? `${trail.source}\n${why}` : trail.source });
    setAttributes(element, { "data-still": why !== "" });
    setText(still, why && (trail.keyTimes.length > 0 ? "turns?" : "still"));
    setAttributes(still, { "aria-label": why || undefined, role: why ? "img" : undefined });
  };
  const place = ({ depth, fits, open, place: at, siblings }: OutlineRow) => {
    setAttributes(element, {
      "aria-level": depth + 1, "aria-posinset": at, "aria-setsize": siblings,
      "aria-expanded": open === undefined ? undefined : String(open), "data-path": !fits,
    });
    name.style.setProperty("--depth", String(depth));
  };
  return { element, stops: [name, shown, alone], twisty, update, place };
}
