// The panels at the sides: which are open. Where there is no room beside the viewport they are sheets that lie over the
// page, one at a time, and closed at first.

import type { App } from "../model/app";
import { button, el } from "./parts/dom";

export type PanelKey = "showList" | "showSettings";

/** As the style sheet has it. */
const narrow = () => window.matchMedia("(max-width: 860px)");

const isOpen = (app: App, key: PanelKey): boolean => {
  const { state } = app.store;
  if (!narrow().matches) return state[key] ?? true;
  return state[key] === true && !(key === "showSettings" && state.showList === true);
};

/** Opens or closes a panel. A choice that is the page's own anyway is none: a link leaves it to the other screen. */
function show(app: App, key: PanelKey, open: boolean): void {
  const usual = !narrow().matches;
  const other: PanelKey = key === "showList" ? "showSettings" : "showList";
  app.store.set({ [key]: open === usual ? null : open, ...(narrow().matches && open ? { [other]: null } : {}) });
}

const covers = (a: DOMRect, b: DOMRect) => a.left < b.right && b.left < a.right && a.top < b.bottom && b.top < a.bottom;

export interface Panel {
  readonly key: PanelKey;
  readonly name: string;
  readonly icon: "list" | "settings";
  readonly element: HTMLElement;
}

/** The head of a sheet, with a button that closes it. */
function sheetHead(app: App, { key, name }: Panel, opener: HTMLElement): HTMLElement {
  const close = button({ icon: "close", name: `Close ${name}` }, () => {
    show(app, key, false);
    opener.focus();
  });
  return el("div", { class: "sheet-head" }, el("strong", {}, name), close);
}

/** A sheet closes with Escape, and when the focus goes to something that it covers. */
function closesItself(app: App, { key, element }: Panel, opener: HTMLElement): void {
  element.addEventListener("keydown", (event) => {
    if (event.key !== "Escape" || event.defaultPrevented || !narrow().matches) return;
    event.preventDefault();
    show(app, key, false);
    opener.focus();
  });
  document.addEventListener("focusin", (event) => {
    const target = event.target as Element;
    if (!narrow().matches || element.hidden || element.contains(target) || target.closest(".viewport, dialog")) return;
    if (covers(target.getBoundingClientRect(), element.getBoundingClientRect())) show(app, key, false);
  }, { signal: app.life });
}

/** The button in the toolbar that opens and closes a panel. */
export function panelButton(app: App, panel: Panel): HTMLButtonElement {
  const { key, name, element } = panel;
  const made = button({ icon: panel.icon, text: name, title: `Show or hide the panel ${name}`, class: "button panel-button" }, () => {
    show(app, key, element.hidden);
    if (narrow().matches && !element.hidden) element.querySelector<HTMLElement>(".sheet-head button")!.focus();
  });
  made.setAttribute("aria-controls", element.id);
  element.prepend(sheetHead(app, panel, made));
  closesItself(app, panel, made);
  const update = () => {
    element.hidden = !isOpen(app, key);
    made.setAttribute("aria-expanded", String(!element.hidden));
  };
  app.store.subscribe(update, ["showList", "showSettings"]);
  narrow().addEventListener("change", update, { signal: app.life });
  update();
  return made;
}
