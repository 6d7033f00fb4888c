// The takes of the file, of which one is shown.

import type { App } from "../../model/app";
import { el, labelled } from "../parts/dom";

/** A list of them; nothing where there is one alone. */
export function takeField({ scene: { takes }, store }: App): HTMLElement[] {
  if (!takes) return [];
  const { names, shown, usual } = takes;
  const list = el("select", { title: "The take that is shown; edits of this one are lost when another is chosen" },
    ...names.map((name, index) => el("option", { value: index }, name)));
  list.addEventListener("change", () => store.set({ take: list.selectedIndex === usual ? null : names[list.selectedIndex] }));
  store.subscribe(({ take }) => (list.selectedIndex = take === null ? usual : names.indexOf(take)), ["take"]);
  list.selectedIndex = shown;
  return [labelled("Take", list)];
}
