// One object of the list: what hangs from it, its colour, its name and its warnings, whether it is shown and solo.

import type { App } from "../model/app";
import { markColor, objectColor } from "../model/colors";
import type { OutlineRow } from "../model/outline";
import { isVisible, toggled, type ViewState } from "../model/state";
import type { Trail } from "../source/trail";
import { el, setAttributes, setText, type Attributes } from "./parts/dom";
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

const cell = (column: number, attributes: Attributes, ...children: Node[]) =>
  el("div", { role: "gridcell", "aria-colindex": column, ...attributes }, ...children);

const toggle = (content: Node | string) => el("button", { type: "button", class: "toggle", tabindex: -1 }, content);

/** What all rows have. A copy of it takes a third of the time of making it. */
const blank = (() => {
  let made: HTMLElement | null = null;
  const make = () =>
    el("div", { role: "row", class: "object" },
      cell(1, { class: "name-cell", tabindex: -1 },
        el("span", { class: "twisty", "aria-hidden": "true" }, icon("fold")), el("span", { class: "swatch", "aria-hidden": "true" }),
        el("span", { class: "name" }), el("span", { class: "still" })),
      cell(2, {}, toggle(icon("eye"))), cell(3, {}, toggle("S")));
  return () => (made ??= make()).cloneNode(true) as HTMLElement;
})();

function setToggle(button: Element, label: string, run: () => void): void {
  setAttributes(button, { "aria-label": label, title: label });
  button.addEventListener("click", run);
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

/** `called` is a name that no other object has. It shows nothing of the state before update() and place(). */
export function buildRow(app: App, index: number, called: string): ObjectRow {
  const trail = app.motion.trails[index];
  const { store } = app;
  const element = blank();
  const [name, shown, alone] = [...element.children].map((each, i) => (i === 0 ? each : each.firstElementChild!) as HTMLElement);
  const [twisty, swatch, text, still] = [...name.children] as HTMLElement[];
  element.dataset.trail = String(index);
  text.textContent = trail.name;
  name.append(...warningMark(trail));
  setToggle(shown, `Show ${called}`, () => store.set({ hidden: toggled(store.state.hidden, index) }));
  setToggle(alone, `Solo ${called}`, () => store.set({ solo: toggled(store.state.solo, index) }));
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
