// What the colours mean. Every colour comes from the functions that colour the trails.

import { rampColor, rgbText, trailColors, type Palette } from "../model/colors";
import { COLOR_MODES, type ColorMode, type Trail } from "../source/trail";
import type { App } from "../model/app";
import { el } from "./dom";

const STEPS = 40;

/** Where the ramp has a trail's typical speed. */
const TYPICAL = 0.4;

/** A trail whose samples have all colours of every mode: slow to fast, past and future of frame 0, two beats. */
const samples: Trail = {
  viz: "", source: "", name: "", parent: null, samplesPerFrame: 1, colorMode: 1, startFrame: 0, frameStep: 1, lineWidth: 1, pointSize: 1,
  showLine: true, showDots: true, ghost: false, count: STEPS + 1, points: new Float64Array(3 * (STEPS + 1)),
  colors: Uint8Array.from({ length: 3 * (STEPS + 1) }, (_, i) => Math.round(255 * rampColor(Math.floor(i / 3) / STEPS)[i % 3])),
  keyTimes: Float64Array.of(0, STEPS / 2), keyPoints: new Float64Array(6), warnings: [],
};

function colorsOf(mode: ColorMode, palette: Palette): string[] {
  const bytes = trailColors(samples, mode, STEPS / 2, palette);
  return Array.from({ length: samples.count }, (_, i) => rgbText(bytes, i));
}

const halves = (a: string, b: string) => `linear-gradient(90deg, ${a} 50%, ${b} 50%)`;

/** A CSS background that stands for a mode. */
export function swatchStyle(mode: ColorMode, palette: Palette): string {
  const colors = colorsOf(mode, palette);
  if (mode === 0) return `linear-gradient(${colors[0]}, ${colors[0]})`;
  if (mode === 1) return `linear-gradient(90deg, ${colors.join(", ")})`;
  return halves(colors[0], colors[samples.count - 1]);
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

function explain(mode: ColorMode, palette: Palette): HTMLElement {
  const colors = colorsOf(mode, palette);
  const last = colors[samples.count - 1];
  switch (mode) {
    case 0:
      return el("ul", {}, item(colors[0], "every trail"));
    case 1:
      return ramp(palette);
    case 2:
      return el("ul", {}, item(colors[0], "up to the current frame"), item(last, "after it"));
    case 3:
      return el("ul", {}, item(colors[0], "from an odd key on: first, third, …"), item(last, "from an even key on, and before the first"));
  }
}

/** Explains the colours that are on the page now. */
export function buildLegend(app: App): { element: HTMLElement; update(): void } {
  const element = el("div", { class: "legend", role: "group", "aria-label": "What the colours mean" });
  const update = () => {
    const { colorBy, mode, palette, relativeTo } = app.store.state;
    if (colorBy === "object") {
      element.replaceChildren(el("p", {}, "Each object has its own colour, as in the list."));
      return;
    }
    const modes = mode === null ? [...new Set(app.motion.trails.map((trail) => trail.colorMode))].sort() : [mode];
    element.replaceChildren(...modes.map((each) =>
      el("div", { class: "legend-mode" }, el("h3", {}, COLOR_MODES[each]), explain(each, palette))));
    if (relativeTo !== null && modes.includes(1)) element.append(el("p", { class: "note" }, "Spacing colours show the motion in the world."));
    if (palette === "safe") element.append(el("p", { class: "note" }, "These are not the engine's own colours."));
  };
  app.store.subscribe(update, ["colorBy", "mode", "palette", "relativeTo"]);
  update();
  return { element, update };
}
