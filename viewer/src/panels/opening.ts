// Opening scenes: files that are dropped on the page or chosen, what the page says before there is any, and how it went.

import { button, el } from "./parts/dom";

export interface Opening {
  /** Fills an element with what to do. */
  invite(root: HTMLElement): void;
  /** Asks the reader for files. */
  choose(): void;
  progress(text: string): void;
  /** Says what went wrong, until it is closed or another scene is opened. */
  fail(error: Error): void;
  clear(): void;
}

const KINDS = ".bvh,.ma,.fbx,.glb,.gltf,.bin,.samples";

function fileField(opened: (files: File[]) => void): HTMLInputElement {
  const field = el("input", { type: "file", accept: KINDS, multiple: true, class: "hidden", tabindex: -1, "aria-label": "Scene files" });
  field.addEventListener("change", () => {
    opened([...(field.files ?? [])]);
    field.value = ""; // so that the same file counts as chosen again
  });
  return field;
}

/** Takes what is dropped anywhere on the page. */
function listenToDrops(opened: (files: File[]) => void): void {
  const shade = (on: boolean) => document.documentElement.classList.toggle("dropping", on);
  document.addEventListener("dragover", (event) => {
    event.preventDefault();
    shade(true);
  });
  document.addEventListener("dragleave", (event) => {
    if (!event.relatedTarget) shade(false);
  });
  document.addEventListener("drop", (event) => {
    event.preventDefault();
    shade(false);
    const files = [...(event.dataTransfer?.files ?? [])];
    if (files.length > 0) opened(files);
  });
}

export function buildOpening(opened: (files: File[]) => void): Opening {
  const field = fileField(opened);
  const progress = el("p", { class: "opening-progress", role: "status", hidden: true });
  const text = el("span", { class: "opening-text" });
  const alert = el("div", { class: "opening-failure", role: "alert", hidden: true }, text,
    button({ icon: "close", name: "Close the message" }, () => (alert.hidden = true)));
  document.body.append(field, progress, alert);
  listenToDrops(opened);
  const say = (what: string) => {
    progress.hidden = what === "";
    progress.textContent = what;
  };
  const choose = () => field.click();
  return {
    choose,
    invite(root) {
      root.classList.remove("page");
      root.replaceChildren(el(
        "main", { class: "invitation" },
        el("h1", {}, "Motion trails"),
        el("p", {}, "Drop a scene here: .bvh, .ma, .fbx, .glb, or a .gltf together with its buffers. It stays on this machine."),
        button({ icon: "open", text: "Choose files…", class: "button small" }, choose),
      ));
    },
    progress(what) {
      alert.hidden = true;
      say(what);
    },
    fail({ message }) {
      say("");
      text.textContent = message;
      alert.hidden = false;
    },
    clear: () => say(""),
  };
}
