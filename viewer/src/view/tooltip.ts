// What is known of the sample under the pointer.

import type { App } from "../model/app";
import { distanceText, secondName, shownComparison } from "../model/compare";
import { numberText, unitName } from "../model/format";
import { sampleFrame, triple } from "../model/motion";
import { referenceName } from "../model/names";
import type { Hover } from "../model/state";
import type { Spot } from "./primitives/projection";

const short = (value: number) => numberText(value, 6);

/** Object, frame, position, speed; a line each. */
export function describe(app: App, { trail: index, sample }: Hover): string {
  const trail = app.motion.trails[index];
  const unit = unitName(app.scene.unit);
  const place = triple(app.motion.shownPoints(index), sample).map(short).join(", ");
  const spacing = app.motion.speed(index, sample);
  const reference = referenceName(app);
  const comparison = shownComparison(app);
  const apart = comparison?.has(index) ? [`Distance to ${secondName(app)} ${distanceText(app, comparison.apart(index)[sample])}`] : [];
  return [
    trail.name,
    `Frame ${short(sampleFrame(trail, sample))}`,
    `${reference === null ? "Position" : `From ${reference}`} ${place} ${unit}`,
    `Speed ${short(spacing * app.scene.fps)} ${unit} per second, ${short(spacing)} per frame`,
    ...apart,
  ].join("\n");
}

/**
 * The text, a ring around the sample, and a mark on the bead that can be dragged. They are elements, so that pointing at a
 * sample draws nothing again.
 */
export class Tooltip {
  readonly element = document.createElement("div");
  readonly ring = document.createElement("div");
  readonly bead = document.createElement("div");

  constructor() {
    this.ring.className = "pointed-at";
    this.bead.className = "bead";
    this.ring.hidden = this.bead.hidden = true;
    this.element.className = "tooltip";
    this.element.setAttribute("role", "tooltip");
    this.element.hidden = true;
  }

  show(text: string, at: Spot, width: number, height: number): void {
    const { element, ring } = this;
    element.textContent = text;
    element.hidden = ring.hidden = false;
    ring.style.left = `${at.x}px`;
    ring.style.top = `${at.y}px`;
    const right = at.x + 16 + element.offsetWidth < width;
    const below = at.y + 16 + element.offsetHeight < height;
    const inside = (place: number, most: number) => `${Math.max(4, Math.min(place, most - 4))}px`;
    element.style.left = inside(right ? at.x + 16 : at.x - 16 - element.offsetWidth, width - element.offsetWidth);
    element.style.top = inside(below ? at.y + 16 : at.y - 16 - element.offsetHeight, height - element.offsetHeight);
  }

  showBead(at: Spot | null): void {
    this.bead.hidden = !at;
    if (at) Object.assign(this.bead.style, { left: `${at.x}px`, top: `${at.y}px` });
  }

  hide(): void {
    this.element.hidden = this.ring.hidden = true;
  }
}
