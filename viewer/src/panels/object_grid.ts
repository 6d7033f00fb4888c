// The list of objects as a tree: one place takes the focus, the arrow keys move it, clicks and keys select and fold.

import type { App } from "../model/app";
import { distinctNames } from "../model/names";
import { foundTrails, outline, type OutlineRow } from "../model/outline";
import { hierarchyOf, type Hierarchy } from "../model/hierarchy";
import { toggled } from "../model/state";
import { el } from "./parts/dom";
import { buildRow, type ObjectRow } from "./object_row";

const NAME = 0;
const LAST_STOP = 2;

/** The most that the deepest object is moved to the right, and the step from a level to the next, pixels. */
const DEEPEST = 88;
const [LEAST_STEP, MOST_STEP] = [3, 14];

export class ObjectGrid {
  readonly element = el("div", {
    role: "treegrid", class: "objects", "aria-label": "Objects", "aria-multiselectable": "true", "aria-colcount": 3, "data-own-arrows": true,
  });
  /** By trail; made when they are listed for the first time. */
  private rows = new Map<number, ObjectRow>();
  private hierarchy!: Hierarchy;
  private names: readonly string[] = [];
  private kept: readonly number[] = [];
  private listed: readonly OutlineRow[] = [];
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
    store.subscribe(() => this.list(), ["folded"]);
    this.build();
  }

  /** The trails that search and filter leave, also those in what is folded. */
  get found(): readonly number[] {
    return this.kept;
  }

  /** Those from which something hangs that is found. */
  get branches(): readonly number[] {
    return outline(this.hierarchy, this.fits(), () => false).filter(({ open }) => open).map(({ trail }) => trail);
  }

  /** Takes the trails as they are now; filter() lists them. */
  build(): void {
    const { trails } = this.app.motion;
    this.hierarchy = hierarchyOf(trails);
    this.names = distinctNames(trails);
    this.rows.clear();
  }

  /** Lists what search and filter leave now. */
  filter(): void {
    this.kept = foundTrails(this.app);
    this.list();
  }

  private fits(): (trail: number) => boolean {
    const found = new Set(this.kept);
    return (trail) => found.has(trail);
  }

  /** A search opens what it finds, and leaves what is folded as it is for later. */
  private list(): void {
    const { search, folded } = this.app.store.state;
    const opens = search.trim() !== "";
    this.listed = outline(this.hierarchy, this.fits(), (trail) => !opens && folded.has(trail));
    const deepest = this.listed.reduce((most, { depth }) => Math.max(most, depth), 0);
    const step = Math.max(LEAST_STEP, Math.min(MOST_STEP, DEEPEST / Math.max(1, deepest)));
    this.element.style.setProperty("--step", `${step}px`);
    const focused = this.element.contains(document.activeElement);
    const scrolled = this.element.scrollTop;
    this.element.replaceChildren(...this.listed.map((row) => this.placed(row)));
    this.element.scrollTop = scrolled;
    this.element.setAttribute("aria-rowcount", String(this.listed.length));
    this.stay(focused);
  }

  private placed(row: OutlineRow): HTMLElement {
    let made = this.rows.get(row.trail);
    if (!made) this.rows.set(row.trail, (made = buildRow(this.app, row.trail, this.names[row.trail])));
    made.place(row);
    made.update(this.app.store.state);
    return made.element;
  }

  /** The focus stays at its object, goes to the one that was folded over it, or to the first. */
  private stay(focus: boolean): void {
    const listed = new Set(this.listed.map(({ trail }) => trail));
    let goal: number | null | undefined = this.at.row;
    while (goal !== null && goal !== undefined && !listed.has(goal)) goal = this.hierarchy.parents[goal];
    this.moveTo(goal ?? this.listed[0]?.trail ?? 0, goal === this.at.row ? this.at.stop : NAME, focus);
  }

  private update(): void {
    for (const { trail } of this.listed) this.rows.get(trail)!.update(this.app.store.state);
  }

  /** The pointer moves often: only the rows that change are touched. */
  private markHovered(): void {
    const { hover } = this.app.store.state;
    const element = hover ? (this.rows.get(hover.trail)?.element ?? null) : null;
    if (element === this.hovered) return;
    this.hovered?.removeAttribute("data-hovered");
    element?.setAttribute("data-hovered", "");
    this.hovered = element;
  }

  /** Scrolls the list, and not the page, to the one object that was selected, maybe in the viewport. */
  private revealChosen(): void {
    const [chosen, ...more] = this.app.store.state.selected;
    if (chosen === undefined || more.length > 0 || !this.app.motion.trails[chosen]) return;
    this.anchor = chosen;
    this.unfold(chosen);
    const element = this.rows.get(chosen)?.element;
    if (!element?.isConnected) return;
    const [list, row] = [this.element.getBoundingClientRect(), element.getBoundingClientRect()];
    if (row.top < list.top) this.element.scrollTop -= list.top - row.top;
    else if (row.bottom > list.bottom) this.element.scrollTop += row.bottom - list.bottom;
  }

  /** Opens what a trail hangs from. */
  private unfold(trail: number): void {
    const folded = new Set(this.app.store.state.folded);
    const before = folded.size;
    for (let at = this.hierarchy.parents[trail]; at !== null; at = this.hierarchy.parents[at]) folded.delete(at);
    if (folded.size < before) this.app.store.set({ folded });
  }

  private stop({ row, stop } = this.at): HTMLElement | undefined {
    return this.rows.get(row)?.stops[stop];
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
    const stop = this.rows.get(row)!.stops.findIndex((each) => each.contains(target));
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
    if (this.opens(place.row) !== undefined && this.rows.get(place.row)!.twisty.contains(event.target as Element)) this.fold(place.row, event.altKey);
    else if (event.shiftKey) this.selectTo(place.row);
    else if (event.ctrlKey || event.metaKey) this.toggle(place.row);
    else this.selectOnly(place.row);
  }

  /** Whether what hangs from a row is listed; undefined where nothing does. */
  private opens(row: number): boolean | undefined {
    return this.listed.find(({ trail }) => trail === row)?.open;
  }

  /** Folds or opens a row, and with `all` everything below it. */
  private fold(row: number, all = false): void {
    const open = this.opens(row);
    const folded = new Set(this.app.store.state.folded);
    const change = (trail: number) => (open ? folded.add(trail) : folded.delete(trail));
    const waiting = [row];
    for (let next = waiting.pop(); next !== undefined; next = waiting.pop()) {
      if (this.hierarchy.children[next].length > 0) change(next);
      if (all) waiting.push(...this.hierarchy.children[next]);
    }
    this.app.store.set({ folded });
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
    const order = this.listed.map(({ trail }) => trail);
    const [low, high] = [order.indexOf(this.anchor), order.indexOf(row)].sort((a, b) => a - b);
    const between = this.listed.slice(Math.max(0, low), high + 1);
    this.app.store.set({ selected: new Set(between.filter(({ fits }) => fits).map(({ trail }) => trail)) });
  }

  /** True when the key was for the list. */
  private pressed(event: KeyboardEvent): boolean {
    if (event.key === "a" && (event.ctrlKey || event.metaKey)) {
      this.app.store.set({ selected: new Set(this.kept) });
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
    return this.moveAcross(event.key) || this.moveRow(event);
  }

  /** To the right: opens, then goes to the buttons. To the left: back, then folds, then goes to what it hangs from. */
  private moveAcross(key: string): boolean {
    if (key !== "ArrowLeft" && key !== "ArrowRight") return false;
    const { row, stop } = this.at;
    const open = this.opens(row);
    const parent = this.hierarchy.parents[row];
    if (key === "ArrowRight" && open === false) this.fold(row);
    else if (key === "ArrowRight") this.moveTo(row, Math.min(LAST_STOP, stop + 1));
    else if (stop > NAME) this.moveTo(row, stop - 1);
    else if (open && this.app.store.state.search.trim() === "") this.fold(row);
    else if (parent !== null && parent !== undefined) this.moveTo(parent, NAME);
    return true;
  }

  private moveRow(event: KeyboardEvent): boolean {
    const here = this.listed.findIndex(({ trail }) => trail === this.at.row);
    const last = this.listed.length - 1;
    const page = 10;
    const goals: Record<string, number> = {
      ArrowDown: here + 1, ArrowUp: here - 1, PageDown: here + page, PageUp: here - page, Home: 0, End: last,
    };
    const goal = goals[event.key];
    if (goal === undefined) return false;
    const row = this.listed[Math.max(0, Math.min(last, goal))]?.trail;
    if (row === undefined) return true;
    this.moveTo(row, this.at.stop);
    if (event.shiftKey) this.selectTo(row);
    return true;
  }
}
