// The row at the top: the name of the scene, the views, saving, and what opens the panels.

import type { App } from "../model/app";
import { baseName } from "../model/format";
import type { ViewName } from "../model/state";
import { button, commandButton, el, setAttributes, setText } from "./parts/dom";
import { cameraField } from "./live/space_fields";
import { takeField } from "./live/take_field";
import { icon } from "./parts/icons";
import { nextTheme, THEME_NAMES } from "./parts/theme";

const VIEWS: readonly (readonly [ViewName, string])[] = [
  ["persp", "Persp"], ["front", "Front"], ["side", "Side"], ["top", "Top"],
];

const group = (name: string, ...children: Node[]) =>
  el("div", { class: "group", role: "group", "aria-label": name }, ...children);

function viewButtons(app: App): HTMLElement {
  const names: Record<ViewName, string> = { persp: "Perspective", front: "Front", side: "Side", top: "Top" };
  const buttons = VIEWS.map(([id, text]) => commandButton(app, `view-${id}`, { text, name: names[id] }));
  const update = () =>
    buttons.forEach((each, i) => each.setAttribute("aria-pressed", String(app.store.state.through === null && app.store.state.camera?.view === VIEWS[i][0])));
  app.store.subscribe(update, ["camera", "through"]);
  update();
  const made = group("View", ...buttons);
  made.classList.add("joined");
  return made;
}

function themeButton(app: App): HTMLButtonElement {
  const made = button({ icon: "theme", name: "Theme" }, () =>
    app.store.set({ theme: nextTheme(app.store.state.theme) }));
  const update = () => {
    const name = `Theme: ${THEME_NAMES[app.store.state.theme]}`;
    setAttributes(made, { "aria-label": name, title: name });
  };
  app.store.subscribe(update, ["theme"]);
  update();
  return made;
}

/** Opening scenes and undoing edits, where the page can; with how far the engine is. */
function editGroup(app: App, openSave: () => void): Node[] {
  const { editing, chooseFiles } = app;
  if (!editing || !chooseFiles) return [];
  const steps = (["undo", "redo"] as const).map((id) => commandButton(app, id, { icon: id }));
  const compare = commandButton(app, "compare", { text: "Compare" });
  const follow = () => compare.setAttribute("aria-pressed", String(app.store.state.showCompared));
  app.store.subscribe(follow, ["showCompared"]);
  follow();
  const tangents = [commandButton(app, "break-tangents", { icon: "breakTangents" }), commandButton(app, "unify-tangents", { icon: "unifyTangents" })];
  const state = el("span", { class: "working note", role: "status" });
  const update = () => {
    steps[0].disabled = editing.undoes === null;
    steps[1].disabled = editing.redoes === null;
    const { working } = editing;
    setText(state, working ? `trails: ${working.done} of ${working.of}` : "");
  };
  editing.subscribe(update);
  update();
  return [group("Scene", button({ icon: "open", text: "Open…", title: "Open a scene in place of this one" }, chooseFiles),
    button({ text: "Save as…", title: "Save the animation with its edits: Maya, and other formats" }, openSave)),
    group("Edits", ...steps, compare), group("Tangents", ...tangents), state];
}

export interface ToolbarParts {
  listButton: HTMLButtonElement;
  settingsButton: HTMLButtonElement;
  openHelp(): void;
  openPicture(): void;
  openSave(): void;
}

export function buildToolbar(app: App, parts: ToolbarParts): HTMLElement {
  const title = el("h1", { class: "scene", title: app.scene.name }, baseName(app.scene.name));
  const help = button({ icon: "help", name: "Help", title: "Help (?)" }, parts.openHelp);
  return el(
    "header", { class: app.editing ? "toolbar live" : "toolbar" },
    el("div", { class: "brand" }, icon("trail"), title),
    ...editGroup(app, parts.openSave),
    parts.listButton,
    viewButtons(app),
    ...takeField(app),
    ...cameraField(app),
    group("Frame", commandButton(app, "frame-all", { icon: "frameAll" }), commandButton(app, "frame-selected", { icon: "frameSelected" })),
    el("span", { class: "space" }),
    group("Save", commandButton(app, "png", { icon: "picture", text: "PNG" }),
      button({ text: "…", name: "Picture options" }, parts.openPicture), commandButton(app, "csv", { icon: "table", text: "CSV" })),
    themeButton(app),
    help,
    parts.settingsButton,
  );
}
