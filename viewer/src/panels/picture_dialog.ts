// What is chosen before a picture is saved. Shift+P saves with the last choice.

import type { App } from "../model/app";
import { command } from "../model/commands";
import { button, el, freshId } from "./parts/dom";
import { checkbox, choice, type Option } from "./parts/fields";

const SCALES: readonly Option<number>[] = [[1, "1 ×"], [2, "2 ×"], [3, "3 ×"], [4, "4 ×"]];

export interface PictureDialog {
  readonly element: HTMLDialogElement;
  open(): void;
}

export function buildPictureDialog(app: App): PictureDialog {
  const heading = el("h2", { id: freshId("picture") }, "Save a picture");
  const close = () => element.close();
  const save = () => {
    close();
    command("png").run(app);
  };
  const element = el(
    "dialog", { class: "picture-options", "aria-labelledby": heading.id }, heading,
    choice(app, "pictureScale", "Size, of that on the screen", SCALES),
    checkbox(app, "pictureTitle", "Title above"),
    checkbox(app, "pictureFrame", "Current frame above"),
    checkbox(app, "pictureLegend", "What the colours mean, below"),
    el("div", { class: "picture-buttons" }, button({ text: "Cancel" }, close), button({ text: "Save" }, save)),
  );
  return { element, open: () => element.showModal() };
}
