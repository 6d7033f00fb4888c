// The scene's animation as a file: in which form, and, before it is written, what that does not hold.

import "./save_dialog.css";
import type { App } from "../../model/app";
import { fileNameAs } from "../../model/commands";
import { FORMS, type Form, type Writing, type Written } from "../../source/trail";
import { button, el, freshId, setText } from "../parts/dom";

interface Words {
  readonly title: string;
  readonly about: string;
  readonly ending: string;
  readonly type: string;
}

const WORDS: Readonly<Record<Form, Words>> = {
  ma: { title: "Maya ASCII", ending: ".curves.ma", type: "text/plain",
    about: "The animation curves alone: imported into the scene, they find their objects by name." },
  py: { title: "Script for Maya", ending: ".curves.py", type: "text/x-python",
    about: "Run in the scene, it replaces the keys of these objects." },
  bvh: { title: "BVH", ending: ".bvh", type: "text/plain", about: "The figure and its motion, a line for each frame." },
  glb: { title: "glTF", ending: ".glb", type: "model/gltf-binary", about: "The whole scene, with its animation as it is now." },
};

export interface SaveDialog {
  readonly element: HTMLDialogElement;
  open(): void;
}

/** What the reader is told of a form: what it is, and what it does not hold. */
function report(written: Written): HTMLElement[] {
  if (written.lost.length === 0) return [el("p", {}, "Everything can be written.")];
  const lost = written.lost.map((sentence) => el("li", {}, sentence.replace(/[^.]$/, "$&.")));
  return [el("p", {}, "What cannot be written, or not to the last bit:"), el("ul", {}, ...lost)];
}

export function buildSaveDialog(app: App, writing: Writing): SaveDialog {
  const heading = el("h2", { id: freshId("save") }, "Save the animation");
  const forms = el("div", { class: "segments" });
  const about = el("p", { class: "note" });
  const told = el("div", { class: "save-told", role: "status" });
  let made: { form: Form; written: Written } | null = null;
  const close = () => element.close();
  const save = button({ text: "Save" }, () => {
    if (!made) return;
    const { ending, type } = WORDS[made.form];
    close();
    app.save(fileNameAs(app, ending), new Blob([made.written.bytes], { type }));
  });
  let asked: Form = FORMS[0];
  const choose = async (form: Form) => {
    asked = form;
    made = null;
    save.disabled = true;
    setText(about, WORDS[form].about);
    told.replaceChildren(el("p", {}, "…"));
    const answer = await writing.written(form).catch((error: Error) => error);
    if (form !== asked) return; // another was chosen meanwhile
    if (answer instanceof Error) return told.replaceChildren(el("p", { class: "refused" }, answer.message));
    made = { form, written: answer };
    save.disabled = false;
    told.replaceChildren(...report(answer));
  };
  const group = freshId("form");
  const choices = FORMS.map((form) => {
    const input = el("input", { type: "radio", name: group, value: form });
    input.addEventListener("change", () => void choose(form));
    forms.append(el("label", { class: "segment" }, input, el("span", {}, WORDS[form].title)));
    return input;
  });
  const element = el(
    "dialog", { class: "picture-options save", "aria-labelledby": heading.id }, heading,
    el("fieldset", { class: "setting choice" }, el("legend", {}, "Form"), forms), about, told,
    el("div", { class: "picture-buttons" }, button({ text: "Cancel" }, close), save),
  );
  const open = () => {
    choices[0].checked = true;
    void choose(FORMS[0]);
    element.showModal();
  };
  return { element, open };
}
