// The measures of the selected objects, as the program's files have them. docs/measures.md explains each.

import type { App } from "../model/app";
import { goTo } from "../model/commands";
import { frameText, lengthText } from "../model/format";
import { measuresOf } from "../model/graphs";
import { distinctNames } from "../model/names";
import { button, el } from "./parts/dom";
import { buildReading } from "./parts/reading";

/** The most objects side by side. */
const MOST_OBJECTS = 6;
const FRAME = "_frame";

const ABBREVIATIONS = new Set(["sparc", "ldlj"]);

/** "Top speed", of top_speed. */
export function measureTitle(name: string): string {
  if (ABBREVIATIONS.has(name)) return name.toUpperCase();
  return name[0].toUpperCase() + name.slice(1).replaceAll("_", " ");
}

export interface MeasuresDialog {
  readonly element: HTMLDialogElement;
  open(): void;
  /** After measures were worked out. */
  refresh(): void;
}

export function buildMeasuresDialog(app: App): MeasuresDialog {
  const { element, body, open } = buildReading("measures", "Measures", "Measures of the selected objects");
  const frameButton = (frame: number) =>
    button({ text: `frame ${frameText(frame)}`, class: "button small" }, () => {
      element.close();
      goTo(app, frame);
    });
  /** A value, with the frame where it is so, if there is one. */
  const cell = (value: number | null, frame: number | null | undefined) => {
    if (value === null) return el("td", {}, "–");
    return el("td", {}, lengthText(value), ...(frame == null ? [] : [" ", frameButton(frame)]));
  };
  const table = (trails: readonly number[]) => {
    const names = distinctNames(app.motion.trails);
    const measures = trails.map((trail) => measuresOf(app, trail));
    const rows = app.scene.measures.filter(({ name }) => !name.endsWith(FRAME)).map(({ name, unit }) =>
      el("tr", {}, el("th", { scope: "row" }, measureTitle(name)),
        ...measures.map((of) => cell(of[name], of[name + FRAME])), el("td", {}, unit === "1" ? "" : unit)));
    const head = ["Measure", ...trails.map((trail) => names[trail]), "Unit"].map((text) => el("th", { scope: "col" }, text));
    return el("table", {}, el("thead", {}, el("tr", {}, ...head)), el("tbody", {}, ...rows));
  };
  const fill = () => {
    const selected = [...app.store.state.selected];
    if (selected.length === 0) return body.replaceChildren(el("p", {}, "Select objects to see their measures."));
    const notes = ["Of the whole range, in the world."];
    if (selected.length > MOST_OBJECTS) notes.push(`The first ${MOST_OBJECTS} of ${selected.length} selected objects.`);
    body.replaceChildren(el("section", {}, el("p", { class: "note" }, notes.join(" ")), table(selected.slice(0, MOST_OBJECTS))));
  };
  const show = () => {
    fill();
    open();
  };
  return { element, open: show, refresh: () => element.open && fill() };
}
