// The panel with the list of objects.

import type { App } from "../model/app";
import { referenceName } from "../model/names";
import { matcher } from "../model/search";
import { isVisible } from "../model/state";
import { button, commandButton, el, setText } from "./parts/dom";
import { swatchStyle } from "./legend";
import { ObjectGrid } from "./object_grid";

export interface ObjectsPanel {
  readonly element: HTMLElement;
  trailsChanged(): void;
}

function searchField(app: App, changed: () => void): HTMLInputElement {
  const field = el("input", {
    type: "search", class: "search", "aria-label": "Search objects", placeholder: "Search, * for anything", autocomplete: "off",
    spellcheck: "false",
  });
  field.addEventListener("input", () => app.store.set({ search: field.value }));
  field.addEventListener("keydown", (event) => {
    if (event.key !== "Escape" || field.value === "") return;
    event.preventDefault(); // it closes nothing else
    app.store.set({ search: "" });
  });
  app.store.subscribe(({ search }) => {
    if (field.value !== search) field.value = search;
    changed();
  }, ["search"]);
  field.value = app.store.state.search;
  return field;
}

/** Says what positions are relative to, with a button back to the world. */
function referenceLine(app: App): HTMLElement {
  const text = el("span", { class: "reference-name" });
  const back = button({ text: "World", title: "Positions in the world again" }, () => app.store.set({ relativeTo: null, space: "place" }));
  const line = el("div", { class: "reference" }, text, back);
  const update = () => {
    const { relativeTo, space } = app.store.state;
    const name = referenceName(app);
    const path = space === "place" && relativeTo !== null ? app.motion.trails[relativeTo].source : undefined;
    line.hidden = name === null;
    if (name !== null) text.replaceChildren("relative to ", el("strong", { title: path }, name));
  };
  app.store.subscribe(update, ["relativeTo", "space", "through"]);
  update();
  return line;
}

function countLine(app: App, grid: ObjectGrid): { element: HTMLElement; update(): void } {
  const element = el("p", { class: "count", role: "status" });
  const update = () => {
    const { state } = app.store;
    const { length } = app.motion.trails;
    const shown = app.motion.trails.filter((_, i) => isVisible(state, i)).length;
    const found = state.search.trim() !== "" ? `${grid.found.length} found, ` : "";
    setText(element, `${found}${shown} of ${length} shown, ${state.selected.size} selected`);
  };
  app.store.subscribe(update, ["selected", "hidden", "solo"]);
  return { element, update };
}

/** The filter by motion, with how many objects it leaves out. */
function motionFilter(app: App): { element: HTMLElement; update(): void } {
  const { motion, store } = app;
  const box = el("input", { type: "checkbox", "data-setting": "movingOnly" });
  const left = el("span", { class: "left-out" });
  box.addEventListener("change", () => store.set({ movingOnly: box.checked }));
  const update = () => {
    const still = motion.moving.filter((moves) => !moves).length;
    const some = still < motion.trails.length;
    box.checked = store.state.movingOnly && some;
    box.disabled = !some;
    const text = !some ? "nothing moves" : still === 0 ? "all move" : store.state.movingOnly ? `${still} left out` : `${still} do not move`;
    setText(left, motion.trails.length === 0 ? "" : text);
  };
  const element = el("label", { class: "check", title: "List only objects that travel, and what they hang from" }, box, el("span", {}, "Moving only"), left);
  return { element, update };
}

function foldButtons(app: App, grid: ObjectGrid): { element: HTMLElement; update(): void } {
  const { store } = app;
  const element = el(
    "div", { class: "fold-buttons", role: "group", "aria-label": "Folding" },
    button({ icon: "foldAll", name: "Fold all", title: "Fold all branches" }, () => store.set({ folded: new Set([...store.state.folded, ...grid.branches]) })),
    button({ icon: "openAll", name: "Open all", title: "Open all branches" }, () => store.set({ folded: new Set() })),
  );
  const update = () => (element.hidden = grid.branches.length === 0);
  return { element, update };
}

/** Said in place of a list that is empty. */
function emptyText({ motion, store }: App): string {
  const fits = matcher(store.state.search);
  const still = motion.trails.filter((trail, i) => fits(trail) && !motion.moving[i]).length;
  if (!store.state.movingOnly || still === 0) return "No name matches the search.";
  return `Of what moves, no name matches the search. ${still === 1 ? "One object" : `${still} objects`} that ${still === 1 ? "does" : "do"} not move would: turn off “Moving only”.`;
}

export function buildObjects(app: App): ObjectsPanel {
  const { store } = app;
  const grid = new ObjectGrid(app);
  const count = countLine(app, grid);
  const motion = motionFilter(app);
  const folding = foldButtons(app, grid);
  const none = el("p", { class: "none" });
  const filter = () => {
    grid.filter();
    none.hidden = grid.found.length > 0 || app.motion.trails.length === 0;
    setText(none, emptyText(app));
    for (const part of [count, motion, folding]) part.update();
  };
  const search = searchField(app, filter);
  const actions = el(
    "div", { class: "actions", role: "group", "aria-label": "Selection" },
    button({ text: "All", title: "Select all that search and filter leave (Ctrl+A in the list)" }, () => store.set({ selected: new Set(grid.found) })),
    button({ text: "None", title: "Select nothing" }, () => store.set({ selected: new Set() })),
    commandButton(app, "solo", { text: "Solo" }),
    commandButton(app, "show-all", { text: "Show all" }),
    commandButton(app, "relative", { text: "Relative" }),
  );
  const colour = () => {
    grid.element.dataset.colorBy = store.state.colorBy;
    grid.element.toggleAttribute("data-marks", store.state.selected.size > 1); // the graph has a colour for each then
    for (const mode of [0, 1, 2, 3] as const) grid.element.style.setProperty(`--mode-${mode}`, swatchStyle(mode, store.state.palette));
  };
  store.subscribe(colour, ["colorBy", "palette", "selected"]);
  store.subscribe(filter, ["movingOnly", "relativeTo", "seen"]);
  colour();
  filter();
  const element = el(
    "section", { class: "panel list", id: "objects", "aria-label": "Objects" },
    search, el("div", { class: "filters" }, motion.element, folding.element), actions, referenceLine(app), grid.element, none, count.element,
  );
  return { element, trailsChanged: () => (grid.build(), filter()) };
}
