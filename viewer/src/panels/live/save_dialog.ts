// The scene's animation as a file: in which form, and, before it is written, what that does not hold.

import "./save_dialog.css";
import type { App } from "../../model/app";
import { fileNameAs } from "../../model/commands";
import type { Saved, Writing } from "../../source/trail";
import { button, el, freshId, setText } from "../parts/dom";

interface Form {
  readonly title: string;
  readonly about: string;
  readonly ending: string;
  readonly type: string;
}

const FORMS: Readonly<Record<string, Form>> = {
  ma: { title: "Maya ASCII", ending: ".curves.ma", type: "text/plain",
    about: "The animation curves alone: imported into the scene, they find their objects by name." },
  py: { title: "Script for Maya", ending: ".curves.py", type: "text/x-python",
    about: "Run in the scene, it replaces the keys of these objects." },
  bvh: { title: "BVH", ending: ".bvh", type: "text/plain", about: "The figure and its motion, a line for each frame." },
  glb: { title: "glTF", ending: ".glb", type: "model/gltf-binary", about: "The whole scene, with its animation as it is now." },
};

/** One that the engine writes, though this page has no words for it. */
const formOf = (name: string): Form =>
  FORMS[name] ?? { title: name, about: "", ending: `.${name}`, type: "application/octet-stream" };

export interface SaveDialog {
  readonly element: HTMLDialogElement;
  open(): void;
}

/** What the reader is told of a form: what it is, and what it does not hold. */
function report(saved: Saved): HTMLElement[] {
  if (saved.lost.length === 0) return [el("p", {}, "Everything can be written.")];
  const lost = saved.lost.map((sentence) => el("li", {}, sentence.replace(/[^.]$/, "$&.")));
  return [el("p", {}, "What cannot be written, or not to the last bit:"), el("ul", {}, ...lost)];
}

export function buildSaveDialog(app: App, writing: Writing): SaveDialog {
  const heading = el("h2", { id: freshId("save") }, "Save the animation");
  const forms = el("div", { class: "segments" });
  const about = el("p", { class: "note" });
  const told = el("div", { class: "save-told", role: "status" });
  let made: { form: string; saved: Saved } | null = null;
  const close = () => element.close();
  const save = button({ text: "Save" }, () => {
    if (!made) return;
    const { ending, type } = formOf(made.form);
    close();
    app.save(fileNameAs(app, ending), new Blob([made.saved.content as BlobPart], { type }));
  });
  let asked = "";
  const choose = async (form: string) => {
    asked = form;
    made = null;
    save.disabled = true;
    setText(about, formOf(form).about);
    told.replaceChildren(el("p", {}, "…"));
    const answer = await writing.saved(form).catch((error: Error) => error);
    if (form !== asked) return; // another was chosen meanwhile
    if (answer instanceof Error) return told.replaceChildren(el("p", { class: "refused" }, answer.message));
    made = { form, saved: answer };
    save.disabled = false;
    told.replaceChildren(...report(answer));
  };
  const offer = (names: readonly string[]) => {
    const group = freshId("form");
    forms.replaceChildren(...names.map((name, i) => {
      const input = el("input", { type: "radio", name: group, value: name, checked: i === 0 });
      input.addEventListener("change", () => void choose(name));
      return el("label", { class: "segment" }, input, el("span", {}, formOf(name).title));
    }));
  };
  const element = el(
    "dialog", { class: "picture-options save", "aria-labelledby": heading.id }, heading,
    el("fieldset", { class: "setting choice" }, el("legend", {}, "Form"), forms), about, told,
    el("div", { class: "picture-buttons" }, button({ text: "Cancel" }, close), save),
  );
  const open = async () => {
    try {
      const names = await writing.forms();
      offer(names);
      if (names.length > 0) void choose(names[0]);
      element.showModal();
    } catch (error) {
      app.announce((error as Error).message);
    }
  };
  return { element, open: () => void open() };
}
