// What tangents keys have: their kind, and whether lengths count on their curves.

import type { App } from "../../model/app";
import { newest } from "../../model/editing/newest";
import { TANGENT_KINDS, type KeyKind, type TangentKind } from "../../source/trail";
import { el, labelled } from "../parts/dom";

/** The most objects of whose keys they are told. */
const MOST = 50;

const NAMES: Readonly<Record<TangentKind, string>> = {
  auto: "Auto", spline: "Spline", clamped: "Clamped", plateau: "Plateau", linear: "Linear", flat: "Flat", slow: "Slow",
  fast: "Fast", fixed: "Fixed", stepped: "Stepped", "stepped next": "Stepped next",
};

export interface TangentFields {
  readonly element: HTMLElement;
  /** What the keys have that are asked about; without any there is nothing to choose. */
  show(keys: readonly KeyKind[]): void;
}

interface Chosen {
  kind(kind: TangentKind): Promise<void>;
  weighted(weighted: boolean): Promise<void>;
}

/** `which` says of which keys they are. */
export function tangentFields(app: App, which: string, { kind, weighted }: Chosen): TangentFields {
  const refused = (error: Error) => app.announce(error.message);
  const various = el("option", { value: "", disabled: true, hidden: true }, "–");
  const list = el("select", { title: `The kind of the tangents ${which}` },
    various, ...TANGENT_KINDS.map((each) => el("option", { value: each }, NAMES[each])));
  list.addEventListener("change", () => void kind(list.value as TangentKind).catch(refused));
  const box = el("input", { type: "checkbox" });
  box.addEventListener("change", () => void weighted(box.checked).catch(refused));
  const weights = el("label", { class: "check", title: `Whether the lengths of tangents count on the curves ${which}` }, box, el("span", {}, "Weighted"));
  const element = el("div", { class: "tangent-fields", role: "group", "aria-label": `Tangents ${which}` }, labelled("Tangents", list), weights);
  return {
    element,
    show(keys) {
      list.disabled = box.disabled = keys.length === 0;
      const kinds = new Set(keys.map((key) => key.kind ?? ""));
      list.value = kinds.size === 1 ? [...kinds][0] : "";
      box.checked = keys.length > 0 && keys.every((key) => key.weighted);
      box.indeterminate = !box.checked && keys.some((key) => key.weighted);
    },
  };
}

/** Of the keys that the selected objects have at the current frame. */
export function selectedTangents(app: App): HTMLElement {
  const { motion, store, life } = app;
  const editing = app.editing!;
  const keyed = () => [...store.state.selected].filter((trail) => motion.trails[trail]?.keyTimes.includes(store.state.frame)).slice(0, MOST);
  const fields = tangentFields(app, "of the selected keys", {
    kind: (kind) => editing.setTangentKind(keyed(), store.state.frame, kind),
    weighted: (weighted) => editing.setWeighted(keyed(), store.state.frame, weighted),
  });
  const ask = newest(async () => {
    const trails = store.state.playing || life.aborted ? [] : keyed();
    fields.show(trails.length === 0 ? [] : await editing.tangentKinds(trails, store.state.frame));
  });
  store.subscribe(ask, ["selected", "frame", "playing"]);
  life.addEventListener("abort", editing.subscribe(ask));
  ask();
  return fields.element;
}
