// The curves of the first selected object's channels, under the graph: their keys and tangents are handles.

import type { App } from "../../model/app";
import { goTo } from "../../model/commands";
import { listenToGrips } from "../../model/editing/gripping";
import { newest } from "../../model/editing/newest";
import { distinctNames } from "../../model/names";
import { seenTime } from "../../model/time_span";
import type { ChannelCurve } from "../../source/trail";
import { frameAt } from "../timeline";
import { button, el, setAttributes, setText } from "../parts/dom";
import { tangentFields, type TangentFields } from "../live/tangent_fields";
import { Layer, onDrag } from "../parts/layer";
import { zoomsTime } from "../time_zoom";
import { channelColor, drawChannels } from "./channel_drawing";
import { channelGrip, channelPlace, rangeOf, type Range } from "./channel_place";

/** The samples of a curve across the graph. */
const SAMPLES = 500;

/** Of an object that is shown for the first time: its position where it has one, else all of its first kind. */
function firstChosen(curves: readonly ChannelCurve[]): Set<string> {
  const position = curves.filter(({ channel }) => channel.startsWith("translate"));
  const chosen = position.length > 0 ? position : curves.filter(({ angle }) => angle === curves[0].angle);
  return new Set(chosen.map(({ channel }) => channel));
}

export class ChannelGraph {
  readonly element: HTMLElement;
  private readonly list = el("div", { class: "channels", role: "group", "aria-label": "Channels" });
  private readonly none = el("p", { class: "none" });
  private readonly tangents: TangentFields;
  private readonly plot: HTMLElement;
  private readonly layer: Layer;
  private readonly ask = newest(() => this.learn());
  private curves: readonly ChannelCurve[] = [];
  private frames = new Float64Array();
  private trail = -1;
  /** The channels that are drawn, by the object's path. */
  private readonly chosen = new Map<string, Set<string>>();
  /** Kept while something is dragged. */
  private range: Range = [-1, 1];
  private held = false;

  constructor(private readonly app: App) {
    const { store } = app;
    this.layer = new Layer("channel-curves", (context, width, height) =>
      drawChannels(context, app, this.drawn, this.frames, channelPlace(app, this.range, width, height), width, height));
    this.plot = el("div", { class: "plot channel-plot", role: "img" }, this.layer.canvas);
    const channels = () => this.drawn.map(({ channel }) => channel);
    this.tangents = tangentFields(app, "of the channels that are drawn", {
      kind: (kind) => app.editing!.setTangentKind([this.trail], store.state.frame, kind, channels()),
      weighted: (weighted) => app.editing!.setWeighted([this.trail], store.state.frame, weighted, channels()),
    });
    this.element = el("section", { class: "graph", "aria-label": "Channel graph" },
      el("div", { class: "graph-head" }, this.list, this.tangents.element), this.plot, this.none);
    this.listen();
    store.subscribe(() => this.redraw(), ["selected", "showChannels", "timeSpan"]);
    store.subscribe(() => this.layer.invalidate(), ["frame", "theme"]);
    store.subscribe(() => this.showTangents(), ["frame"]);
    app.life.addEventListener("abort", app.editing!.subscribe(() => this.redraw()));
    this.redraw();
  }

  /** Asks for the curves anew. */
  redraw(): void {
    const { showChannels } = this.app.store.state;
    this.element.hidden = !showChannels;
    if (showChannels && !this.app.life.aborted) this.ask();
  }

  private get drawn(): readonly ChannelCurve[] {
    const chosen = this.chosen.get(this.app.motion.trails[this.trail]?.source);
    return this.curves.filter(({ channel }) => chosen?.has(channel));
  }

  private listen(): void {
    const { app, plot } = this;
    const place = () => channelPlace(app, this.range, plot.clientWidth, plot.clientHeight);
    listenToGrips(app, plot, {
      gripAt: (at) => channelGrip(app, this.trail, this.drawn, place(), at),
      clicked: (_at, { grip }) => goTo(app, grip.frame),
      moved: ({ grip }) => {
        this.held = true;
        const { draggedTo } = app.editing!;
        if (grip.what === "key" && draggedTo !== null) goTo(app, draggedTo);
      },
    });
    for (const end of ["pointerup", "pointercancel"] as const)
      plot.addEventListener(end, () => {
        this.held = false;
        this.redraw();
      });
    zoomsTime(app, plot);
    onDrag(plot, (x) => goTo(app, frameAt(app, place().scale, x)));
  }

  private async learn(): Promise<void> {
    const { motion, store, editing } = this.app;
    const [trail] = [...store.state.selected].filter((index) => index < motion.trails.length);
    const [first, last] = seenTime(this.app);
    const frames = Float64Array.from({ length: SAMPLES }, (_, i) => first + ((last - first) * i) / (SAMPLES - 1));
    this.curves = trail === undefined ? [] : await editing!.channelCurves(trail, frames);
    [this.trail, this.frames] = [trail ?? -1, frames];
    this.show();
  }

  private show(): void {
    const { curves, app } = this;
    const source = app.motion.trails[this.trail]?.source;
    if (source !== undefined && curves.length > 0 && !this.chosen.has(source)) this.chosen.set(source, firstChosen(curves));
    if (!this.held) this.range = rangeOf(this.drawn);
    this.showList(this.chosen.get(source) ?? new Set());
    const name = source === undefined ? "" : distinctNames(app.motion.trails)[this.trail];
    setText(this.none, source === undefined ? "Select an object to see its channels." : curves.length === 0 ? `${name} has no curves.` : "");
    const words = this.drawn.map(({ channel, keys }) => `${channel}, keys at frames ${keys.map(({ frame }) => frame).join(", ")}`);
    setAttributes(this.plot, { "aria-label": `Channels of ${name || "nothing"}. ${words.join("; ")}` });
    this.showTangents();
    this.layer.invalidate();
  }

  /** Of the keys at the current frame. */
  private showTangents(): void {
    const { frame } = this.app.store.state;
    this.tangents.show(this.drawn.flatMap(({ keys, weighted }) =>
      keys.filter((key) => key.frame === frame).map(({ kind }) => ({ kind, weighted }))));
  }

  private showList(chosen: Set<string>): void {
    const names = this.curves.map(({ channel }) => channel);
    if (this.list.dataset.of !== names.join()) {
      this.list.dataset.of = names.join();
      this.list.replaceChildren(...names.map((name) => this.toggle(name)));
    }
    for (const each of this.list.children) each.setAttribute("aria-pressed", String(chosen.has(each.textContent ?? "")));
  }

  private toggle(name: string): HTMLElement {
    const made = button({ text: name, title: `Draw ${name}, or not`, class: "button small" }, () => {
      const chosen = this.chosen.get(this.app.motion.trails[this.trail]?.source);
      if (chosen && !chosen.delete(name)) chosen.add(name);
      this.show();
    });
    made.style.borderBottomColor = channelColor(name, "");
    return made;
  }
}
