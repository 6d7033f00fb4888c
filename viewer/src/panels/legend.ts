// What the colours mean. Every colour comes from the functions that colour the trails.

import type { Palette } from "../model/colors";
import { legendColors, legendItems } from "../model/legend";
import { COLOR_MODES, type ColorMode } from "../source/trail";
import type { App } from "../model/app";
import { isInWorld } from "../model/state";
import { el } from "./parts/dom";

/** Where the ramp has a trail's typical speed. */
const TYPICAL = 0.4;

const halves = (a: string, b: string) => `linear-gradient(90deg, ${a} 50%, ${b} 50%)`;

/** A CSS background that stands for a mode. */
export function swatchStyle(mode: ColorMode, palette: Palette): string {
  const colors = legendColors(mode, palette);
  if (mode === 0) return `linear-gradient(${colors[0]}, ${colors[0]})`;
  if (mode === 1) return `linear-gradient(90deg, ${colors.join(", ")})`;
  return halves(colors[0], colors[colors.length - 1]);
}

const swatch = (background: string) => {
  const made = el("span", { class: "legend-swatch", "aria-hidden": "true" });
  made.style.background = background;
  return made;
};

const item = (color: string, text: string) => el("li", {}, swatch(color), el("span", {}, text));

function ramp(palette: Palette): HTMLElement {
  const bar = swatch(swatchStyle(1, palette));
  bar.classList.add("ramp");
  const typical = el("span", { class: "typical" }, "typical");
  typical.style.left = `${100 * TYPICAL}%`;
  return el("div", { class: "ramp-box" }, bar, el("div", { class: "ramp-text" }, el("span", {}, "slow"), typical, el("span", {}, "fast")));
}

const explain = (mode: ColorMode, palette: Palette): HTMLElement =>
  mode === 1 ? ramp(palette) : el("ul", {}, ...legendItems(mode, palette).map(([color, text]) => item(color, text)));

/** Explains the colours that are on the page now. */
export function buildLegend(app: App): { element: HTMLElement; update(): void } {
  const element = el("div", { class: "legend", role: "group", "aria-label": "What the colours mean" });
  const update = () => {
    const { colorBy, mode, palette } = app.store.state;
    if (colorBy === "object") {
      element.replaceChildren(el("p", {}, "Each object has its own colour, as in the list."));
      return;
    }
    const modes = mode === null ? [...new Set(app.motion.trails.map((trail) => trail.colorMode))].sort() : [mode];
    element.replaceChildren(...modes.map((each) =>
      el("div", { class: "legend-mode" }, el("h3", {}, COLOR_MODES[each]), explain(each, palette))));
    if (!isInWorld(app.store.state) && modes.includes(1)) element.append(el("p", { class: "note" }, "Spacing colours show the motion in the world."));
    if (palette === "safe") element.append(el("p", { class: "note" }, "These are not the engine's own colours."));
  };
  app.store.subscribe(update, ["colorBy", "mode", "palette", "relativeTo", "space"]);
  update();
  return { element, update };
}
