// The kinds of controls that the settings are made of. Each shows a part of the state, and changes it.

import type { App } from "../../model/app";
import type { ViewState } from "../../model/state";
import { button, el, freshId, labelled } from "./dom";

type Key = keyof ViewState;
type KeysOf<T> = { [K in Key]: T extends ViewState[K] ? K : never }[Key];

/** Keeps a control in step with the state. */
function follow<K extends Key>(app: App, key: K, show: (value: ViewState[K]) => void): void {
  app.store.subscribe((state) => show(state[key]), [key]);
  show(app.store.state[key]);
}

const patch = <K extends Key>(key: K, value: ViewState[K]) => ({ [key]: value }) as Pick<ViewState, K>;

type Flag =
  | "showKeys" | "showLabels" | "showStatics" | "showBones" | "showCompared" | "showChannels" | "window" | "letterKeys"
  | "pictureTitle" | "pictureLegend" | "pictureFrame";

export function checkbox(app: App, key: Flag, text: string): HTMLElement {
  const box = el("input", { type: "checkbox", "data-setting": key });
  box.addEventListener("change", () => app.store.set(patch(key, box.checked)));
  follow(app, key, (value) => (box.checked = value));
  return el("label", { class: "check" }, box, el("span", {}, text));
}

export type Option<T> = readonly [value: T, text: string];

/** One of a few, side by side. */
export function choice<K extends Key>(app: App, key: K, legend: string, options: readonly Option<ViewState[K]>[]): HTMLElement {
  const name = freshId("choice");
  const inputs = options.map(([value, text], i) => {
    const input = el("input", { type: "radio", name, value: i, "data-setting": `${key}:${value}` });
    input.addEventListener("change", () => {
      if (input.checked) app.store.set(patch(key, value));
    });
    return { input, label: el("label", { class: "segment" }, input, el("span", {}, text)) };
  });
  follow(app, key, (value) => inputs.forEach(({ input }, i) => (input.checked = Object.is(options[i][0], value))));
  return el(
    "fieldset", { class: "setting choice" }, el("legend", {}, legend),
    el("div", { class: "segments" }, ...inputs.map(({ label }) => label)),
  );
}

/** One of a few, in a list that opens. */
export function select<K extends Key>(app: App, key: K, text: string, options: readonly Option<ViewState[K]>[]): HTMLElement {
  const list = el("select", { "data-setting": key }, ...options.map(([, label], i) => el("option", { value: i }, label)));
  list.addEventListener("change", () => app.store.set(patch(key, options[list.selectedIndex][0])));
  follow(app, key, (value) => (list.selectedIndex = options.findIndex(([option]) => Object.is(option, value))));
  return labelled(text, list);
}

export interface Size {
  key: KeysOf<number> & KeysOf<null>;
  text: string;
  largest: number;
  /** What the scene has; several trails may differ. */
  ofScene(): readonly number[];
}

/** A whole number, with what it counts. */
export interface Count {
  key: "windowBefore" | "windowAfter" | "onionEvery" | "onionBefore" | "onionAfter";
  text: string;
  least: number;
  most: number;
  of: string;
}

export function count(app: App, { key, text, least, most, of }: Count): HTMLElement {
  const slider = el("input", { type: "range", min: least, max: most, step: 1, "data-setting": key });
  const number = el("output", { class: "number" });
  slider.addEventListener("input", () => app.store.set(patch(key, Number(slider.value))));
  follow(app, key, (value) => {
    slider.value = String(value);
    number.textContent = `${value} ${of}`;
    slider.setAttribute("aria-valuetext", number.textContent);
  });
  return labelled(text, slider, number);
}

const STEP = 0.5;

/** A size of its own, or the scene's. */
export function size(app: App, { key, text, largest, ofScene }: Size): HTMLElement {
  const slider = el("input", { type: "range", min: STEP, max: largest, step: STEP, "data-setting": key });
  const number = el("output", { class: "number" });
  const own = button({ text: "Scene", name: `${text} as in the scene`, class: "button small" }, () => app.store.set(patch(key, null)));
  slider.addEventListener("input", () => app.store.set(patch(key, Number(slider.value))));
  follow(app, key, (value) => {
    const sizes = [...new Set(ofScene())];
    slider.value = String(value ?? sizes[0] ?? STEP);
    const shown = value === null ? (sizes.length > 1 ? "various" : `${sizes[0] ?? "–"}`) : String(value);
    number.textContent = `${shown} px`;
    slider.setAttribute("aria-valuetext", value === null ? `${number.textContent}, as in the scene` : number.textContent);
    own.setAttribute("aria-pressed", String(value === null));
  });
  return labelled(text, slider, number, own);
}
