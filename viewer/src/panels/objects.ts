// The panel with the list of objects.

import type { App } from "../model/app";
import { isVisible } from "../model/state";
import { button, commandButton, el, setText } from "./dom";
import { swatchStyle } from "./legend";
import { ObjectGrid } from "./object_grid";
import { matcher } from "./search";

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
    if (event.key === "Escape") app.store.set({ search: "" });
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
  const back = button({ text: "World", title: "Positions in the world again" }, () => app.store.set({ relativeTo: null }));
  const line = el("div", { class: "reference" }, text, back);
  const update = () => {
    const { relativeTo } = app.store.state;
    const trail = relativeTo === null ? undefined : app.motion.trails[relativeTo];
    line.hidden = !trail;
    if (trail) text.replaceChildren("relative to ", el("strong", { title: trail.source }, trail.name));
  };
  app.store.subscribe(update, ["relativeTo"]);
  update();
  return line;
}

function countLine(app: App, grid: ObjectGrid): { element: HTMLElement; update(): void } {
  const element = el("p", { class: "count", role: "status" });
  const update = () => {
    const { state } = app.store;
    const { length } = app.motion.trails;
    const shown = app.motion.trails.filter((_, i) => isVisible(state, i)).length;
    const found = grid.found.length < length ? `${grid.found.length} found, ` : "";
    setText(element, `${found}${shown} of ${length} shown, ${state.selected.size} selected`);
  };
  app.store.subscribe(update, ["selected", "hidden", "solo"]);
  return { element, update };
}

export function buildObjects(app: App): ObjectsPanel {
  const { store } = app;
  const grid = new ObjectGrid(app);
  const count = countLine(app, grid);
  const none = el("p", { class: "none" }, "No name matches the search.");
  const filter = () => {
    const fits = matcher(store.state.search);
    grid.filter((i) => fits(app.motion.trails[i]));
    none.hidden = grid.found.length > 0 || app.motion.trails.length === 0;
    count.update();
  };
  const search = searchField(app, filter);
  const actions = el(
    "div", { class: "actions", role: "group", "aria-label": "Selection" },
    button({ text: "All", title: "Select all that are listed (Ctrl+A in the list)" }, () => store.set({ selected: new Set(grid.found) })),
    button({ text: "None", title: "Select nothing" }, () => store.set({ selected: new Set() })),
    commandButton(app, "solo", { text: "Solo" }),
    commandButton(app, "show-all", { text: "Show all" }),
    commandButton(app, "relative", { text: "Relative" }),
  );
  const colour = () => {
    grid.element.dataset.colorBy = store.state.colorBy;
    for (const mode of [0, 1, 2, 3] as const) grid.element.style.setProperty(`--mode-${mode}`, swatchStyle(mode, store.state.palette));
  };
  store.subscribe(colour, ["colorBy", "palette"]);
  colour();
  filter();
  const element = el(
    "section", { class: "panel list", id: "objects", "aria-label": "Objects" },
    search, actions, referenceLine(app), grid.element, none, count.element,
  );
  return { element, trailsChanged: () => (grid.build(), filter()) };
}
