// The panel with the settings: those of the trails, which the page can override, and those of the page itself.

import type { App } from "../model/app";
import { secondName } from "../model/compare";
import { KEPT } from "../model/hash";
import { initialState, type ViewState } from "../model/state";
import { COLOR_MODES, type ColorMode } from "../source/trail";
import { button, el } from "./parts/dom";
import { checkbox, choice, count, select, size, type Option } from "./parts/fields";
import { buildLegend } from "./legend";
import { spaceFields } from "./live/space_fields";

const AS_IN_SCENE: readonly Option<boolean | null>[] = [[null, "Scene"], [true, "On"], [false, "Off"]];

/** What is not a setting, and stays when the settings are reset. */
const STAY: readonly (keyof ViewState)[] = [
  "take", "frame", "playFirst", "playLast", "camera", "selected", "hidden", "solo", "relativeTo", "space", "through", "theme",
  "search", "movingOnly", "folded", "timeSpan", "showList", "showSettings",
];

function reset(app: App): void {
  const initial = initialState(app.scene, app.motion, app.store.state.camera);
  app.store.set(Object.fromEntries(KEPT.filter((key) => !STAY.includes(key)).map((key) => [key, initial[key]])));
  app.announce("All settings are as at first; what is selected, listed and seen stays");
}

const part = (title: string, ...content: Node[]) =>
  el("section", { class: "settings-part", "aria-label": title }, el("h2", {}, title), ...content);

function colours(app: App, legend: HTMLElement): HTMLElement {
  const modes: Option<ColorMode | null>[] = [
    [null, "As in the scene"],
    ...([0, 1, 2, 3] as const).map((mode): Option<ColorMode> => [mode, COLOR_MODES[mode]]),
  ];
  return part(
    "Colour",
    choice(app, "colorBy", "Colour by", [["mode", "Mode"], ["object", "Object"]]),
    select(app, "mode", "Mode", modes),
    choice(app, "palette", "Palette", [["engine", "Engine"], ["safe", "Colour-blind safe"]]),
    el("p", { class: "note" }, "Colour-blind safe: not the engine's own colours."),
    legend,
  );
}

function spacePart(app: App): HTMLElement[] {
  const fields = spaceFields(app);
  return fields.length > 0 ? [part("Space", ...fields)] : [];
}

export interface SettingsPanel {
  readonly element: HTMLElement;
  trailsChanged(): void;
}

export function buildSettings(app: App): SettingsPanel {
  const legend = buildLegend(app);
  const trails = () => app.motion.trails;
  const element = el(
    "section", { class: "panel settings", id: "settings", "aria-label": "Settings" },
    colours(app, legend.element),
    part(
      "Lines and dots",
      size(app, { key: "lineWidth", text: "Line width", largest: 12, ofScene: () => trails().map((t) => t.lineWidth) }),
      size(app, { key: "pointSize", text: "Dot size", largest: 20, ofScene: () => trails().map((t) => t.pointSize) }),
      choice(app, "showLine", "Lines", AS_IN_SCENE),
      choice(app, "showDots", "Dots", AS_IN_SCENE),
      choice(app, "ghost", "Ghost", AS_IN_SCENE),
    ),
    part(
      "Also show",
      checkbox(app, "showKeys", "Keys"),
      checkbox(app, "showLabels", "Frame numbers and names"),
      checkbox(app, "showStatics", "Boxes of what does not move"),
      checkbox(app, "showBones", "Bones"),
      ...(app.scene.compared ? [checkbox(app, "showCompared", app.scene.compared.opened ? "The scene as it was opened" : `The second scene: ${secondName(app)}`)] : []),
    ),
    ...spacePart(app),
    part(
      "Window in time",
      checkbox(app, "window", "Only around the current frame"),
      count(app, { key: "windowBefore", text: "Before", least: 0, most: 120, of: "frames" }),
      count(app, { key: "windowAfter", text: "After", least: 0, most: 120, of: "frames" }),
    ),
    part(
      "Onion skins",
      choice(app, "onion", "Onion skins", [["off", "Off"], ["frames", "Frames"], ["keys", "Keys"]]),
      count(app, { key: "onionEvery", text: "Every", least: 1, most: 60, of: "frames" }),
      count(app, { key: "onionBefore", text: "Skins before", least: 0, most: 12, of: "skins" }),
      count(app, { key: "onionAfter", text: "Skins after", least: 0, most: 12, of: "skins" }),
    ),
    part("Keyboard", checkbox(app, "letterKeys", "Shortcuts of one letter, digit or sign")),
    button({ text: "Reset settings", title: "Colours, sizes, marks and keys as at first; what is selected, listed and seen stays", class: "button reset" }, () => reset(app)),
  );
  return { element, trailsChanged: legend.update };
}
