// What is known of the sample under the pointer.

import type { App } from "../model/app";
import { distanceText, secondName, shownComparison } from "../model/compare";
import { numberText, unitName } from "../model/format";
import { sampleFrame, triple } from "../model/motion";
import type { Hover } from "../model/state";
import type { Spot } from "./projection";

const short = (value: number) => numberText(value, 6);

/** Object, frame, position, speed; a line each. */
export function describe(app: App, { trail: index, sample }: Hover): string {
  const trail = app.motion.trails[index];
  const unit = unitName(app.scene.unit);
  const place = triple(app.motion.shownPoints(index), sample).map(short).join(", ");
  const spacing = app.motion.speed(index, sample);
  const { relativeTo } = app.store.state;
  const comparison = shownComparison(app);
  const apart = comparison?.has(index) ? [`Distance to ${secondName(app)} ${distanceText(app, comparison.apart(index)[sample])}`] : [];
  return [
    trail.name,
    `Frame ${short(sampleFrame(trail, sample))}`,
    `${relativeTo === null ? "Position" : `From ${app.motion.trails[relativeTo].name}`} ${place} ${unit}`,
    `Speed ${short(spacing * app.scene.fps)} ${unit} per second, ${short(spacing)} per frame`,
    ...apart,
  ].join("\n");
}

export class Tooltip {
  readonly element = document.createElement("div");

  constructor() {
    this.element.className = "tooltip";
    this.element.setAttribute("role", "tooltip");
    this.element.hidden = true;
  }

  show(text: string, at: Spot, width: number, height: number): void {
    const { element } = this;
    element.textContent = text;
    element.hidden = false;
    const right = at.x + 16 + element.offsetWidth < width;
    const below = at.y + 16 + element.offsetHeight < height;
    element.style.left = `${Math.max(4, right ? at.x + 16 : at.x - 16 - element.offsetWidth)}px`;
    element.style.top = `${Math.max(4, below ? at.y + 16 : at.y - 16 - element.offsetHeight)}px`;
  }

  hide(): void {
    this.element.hidden = true;
  }
}
