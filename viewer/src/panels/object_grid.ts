// The list of objects as a grid: one place takes the focus, the arrow keys move it, clicks and keys select.

import type { App } from "../model/app";
import { toggled } from "../model/state";
import { el } from "./dom";
import { buildRow, type ObjectRow } from "./object_row";

const NAME = 2;

export class ObjectGrid {
  readonly element = el("div", {
    role: "grid", class: "objects", "aria-label": "Objects", "aria-multiselectable": "true", "aria-colcount": 3, "data-own-arrows": true,
  });
  private rows: ObjectRow[] = [];
  /** Indices of the trails that the search leaves, in order. */
  private listed: number[] = [];
  private at = { row: 0, stop: NAME };
  private hovered: HTMLElement | null = null;
  /** Where a selection with Shift begins. */
  private anchor = 0;

  constructor(private readonly app: App) {
    this.element.addEventListener("click", (event) => this.clicked(event));
    this.element.addEventListener("focusin", (event) => this.focused(event.target as Element));
    this.element.addEventListener("keydown", (event) => {
      if (this.pressed(event)) event.preventDefault();
    });
    const { store } = app;
    store.subscribe(() => this.update(), ["selected", "hidden", "solo", "relativeTo", "mode"]);
    store.subscribe(() => this.markHovered(), ["hover"]);
    store.subscribe(() => this.revealChosen(), ["selected"]);
    this.build();
  }

  get found(): readonly number[] {
    return this.listed;
  }

  build(): void {
    this.rows = this.app.motion.trails.map((_, i) => buildRow(this.app, i));
    this.element.replaceChildren(...this.rows.map((row) => row.element));
    this.filter(() => true);
  }

  filter(keep: (index: number) => boolean): void {
    this.listed = this.rows.map((_, i) => i).filter(keep);
    const kept = new Set(this.listed);
    this.rows.forEach((row, i) => (row.element.hidden = !kept.has(i)));
    this.element.setAttribute("aria-rowcount", String(this.listed.length));
    if (!kept.has(this.at.row)) this.moveTo(this.listed[0] ?? 0, NAME, false);
    else this.moveTo(this.at.row, this.at.stop, false);
  }

  private update(): void {
    for (const row of this.rows) row.update(this.app.store.state);
  }

  /** The pointer moves often: only the rows that change are touched. */
  private markHovered(): void {
    const { hover } = this.app.store.state;
    const element = hover ? (this.rows[hover.trail]?.element ?? null) : null;
    if (element === this.hovered) return;
    this.hovered?.removeAttribute("data-hovered");
    element?.setAttribute("data-hovered", "");
    this.hovered = element;
  }

  /** Scrolls the list, and not the page, to the one object that was selected, maybe in the viewport. */
  private revealChosen(): void {
    const [chosen, ...more] = this.app.store.state.selected;
    const element = this.rows[chosen]?.element;
    if (!element || more.length > 0) return;
    this.anchor = chosen;
    const [list, row] = [this.element.getBoundingClientRect(), element.getBoundingClientRect()];
    if (row.top < list.top) this.element.scrollTop -= list.top - row.top;
    else if (row.bottom > list.bottom) this.element.scrollTop += row.bottom - list.bottom;
  }

  private stop({ row, stop } = this.at): HTMLElement | undefined {
    return this.rows[row]?.stops[stop];
  }

  private moveTo(row: number, stop: number, focus = true): void {
    this.stop()?.setAttribute("tabindex", "-1");
    this.at = { row, stop };
    const target = this.stop();
    target?.setAttribute("tabindex", "0");
    if (!focus) return;
    target?.focus({ preventScroll: true });
    target?.scrollIntoView({ block: "nearest" });
  }

  private place(target: Element): { row: number; stop: number } | null {
    const element = target.closest<HTMLElement>("[data-trail]");
    if (!element) return null;
    const row = Number(element.dataset.trail);
    const stop = this.rows[row].stops.findIndex((each) => each.contains(target));
    return { row, stop: stop < 0 ? NAME : stop };
  }

  private focused(target: Element): void {
    const place = this.place(target);
    if (place) this.moveTo(place.row, place.stop, false);
  }

  private clicked(event: MouseEvent): void {
    const place = this.place(event.target as Element);
    if (place?.stop !== NAME) return; // a button, which does its own
    this.moveTo(place.row, NAME);
    if (event.shiftKey) this.selectTo(place.row);
    else if (event.ctrlKey || event.metaKey) this.toggle(place.row);
    else this.selectOnly(place.row);
  }

  private selectOnly(row: number): void {
    this.anchor = row;
    this.app.store.set({ selected: new Set([row]) });
  }

  private toggle(row: number): void {
    this.anchor = row;
    this.app.store.set({ selected: toggled(this.app.store.state.selected, row) });
  }

  private selectTo(row: number): void {
    const [low, high] = [Math.min(this.anchor, row), Math.max(this.anchor, row)];
    this.app.store.set({ selected: new Set(this.listed.filter((i) => i >= low && i <= high)) });
  }

  /** True when the key was for the list. */
  private pressed(event: KeyboardEvent): boolean {
    if (event.key === "a" && (event.ctrlKey || event.metaKey)) {
      this.app.store.set({ selected: new Set(this.listed) });
      return true;
    }
    if (event.altKey || event.metaKey) return false;
    const { row, stop } = this.at;
    if (event.key === " " || event.key === "Enter") {
      if (stop !== NAME) return false; // the button's own
      if (event.shiftKey) this.selectTo(row);
      else if (event.ctrlKey || event.key === " ") this.toggle(row);
      else this.selectOnly(row);
      return true;
    }
    if (event.key === "ArrowLeft" || event.key === "ArrowRight") {
      this.moveTo(row, Math.max(0, Math.min(NAME, stop + (event.key === "ArrowRight" ? 1 : -1))));
      return true;
    }
    return this.moveRow(event);
  }

  private moveRow(event: KeyboardEvent): boolean {
    const here = this.listed.indexOf(this.at.row);
    const last = this.listed.length - 1;
    const page = 10;
    const goals: Record<string, number> = {
      ArrowDown: here + 1, ArrowUp: here - 1, PageDown: here + page, PageUp: here - page, Home: 0, End: last,
    };
    const goal = goals[event.key];
    if (goal === undefined) return false;
    const row = this.listed[Math.max(0, Math.min(last, goal))];
    if (row === undefined) return true;
    this.moveTo(row, this.at.stop);
    if (event.shiftKey) this.selectTo(row);
    return true;
  }
}
