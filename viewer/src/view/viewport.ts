// The view of the trails in space. It draws only when something has changed.

import "./viewport.css";
import { ColorManagement, Group, LinearSRGBColorSpace, Scene, WebGLRenderer } from "three";
import type { App } from "../model/app";
import { boundsOf, type Bounds } from "../model/framing";
import type { Change, ViewState } from "../model/state";
import { onPreferenceChange } from "../model/theme";
import type { Vec3 } from "../source/trail";
import { annotate, type Picture } from "./annotations";
import { CameraRig } from "./camera";
import { Detail } from "./detail";
import { acrossOf, buildStage, disposeAll, gridFor, type Grid } from "./ground";
import { holdsSamples } from "./held";
import { TrailLayers, type Drawing } from "./layers";
import { Overlay } from "./overlay";
import { pick } from "./picking";
import { Projection } from "./projection";
import { Skeleton } from "./skeleton";
import { colorsOf } from "./theme";
import { describe, Tooltip } from "./tooltip";

// Colours are the engine's own numbers, and reach the screen unchanged.
ColorManagement.enabled = false;

/** Milliseconds without a change after which all is still. */
const SETTLED = 200;

const NO_BOX: Bounds = { low: [-1, -1, -1], high: [1, 1, 1] };

const MOVES: readonly (keyof ViewState)[] = ["relativeTo", "hidden", "solo"];
const STYLES: readonly (keyof ViewState)[] = [
  "lineWidth", "pointSize", "showLine", "showDots", "ghost", "showKeys", "selected", "theme",
];
const WINDOW: readonly (keyof ViewState)[] = ["window", "windowBefore", "windowAfter"];
const COLORS: readonly (keyof ViewState)[] = ["colorBy", "mode", "palette"];

const touches = (changed: Change, keys: readonly (keyof ViewState)[]) => keys.some((key) => changed.has(key));

export class Viewport {
  private readonly renderer: WebGLRenderer;
  private readonly three = new Scene();
  private readonly stage = new Group();
  private readonly overlay = new Overlay();
  private readonly tooltip = new Tooltip();
  private readonly layers: TrailLayers;
  private readonly skeleton: Skeleton;
  private readonly rig: CameraRig;
  private readonly detail: Detail;
  /** Around all trails as they are shown, and its middle. */
  private box = NO_BOX;
  private origin: Vec3 = [0, 0, 0];
  private grid!: Grid;
  private width = 1;
  private height = 1;
  private frameAsked = 0;
  private settleTimer = 0;
  private moving = true; // the first picture is a quick one
  private gesture = false;
  private pointer: { x: number; y: number } | null = null;

  /** Throws an Error with a text for the reader if the browser cannot draw in 3D. */
  constructor(private readonly app: App, private readonly host: HTMLElement) {
    this.renderer = makeRenderer();
    const { canvas } = this.overlay;
    canvas.className = "overlay";
    canvas.setAttribute("aria-hidden", "true");
    this.renderer.domElement.setAttribute("aria-hidden", "true");
    host.append(this.renderer.domElement, canvas, this.tooltip.element);
    this.layers = new TrailLayers(app, () => this.origin, () => this.colors, () => this.ratio);
    this.skeleton = new Skeleton(app, () => this.origin, () => this.colors, this.ratio);
    this.detail = new Detail(() => this.layers.sampleCount);
    this.rig = new CameraRig(this.renderer.domElement, app.store.state.camera, () => this.origin,
      (camera) => app.store.set({ camera }));
    this.rig.onGesture(() => this.setGesture(true), () => this.setGesture(false));
    this.three.add(this.stage, this.layers.group, this.skeleton.group);
    this.rebuild();
    this.listen();
  }

  trailsChanged(): void {
    this.rebuild();
    this.changed();
  }

  /** What is seen now, labels included. */
  picture(): Promise<Blob> {
    this.draw(false);
    const canvas = document.createElement("canvas");
    [canvas.width, canvas.height] = [this.renderer.domElement.width, this.renderer.domElement.height];
    const context = canvas.getContext("2d")!;
    context.drawImage(this.renderer.domElement, 0, 0);
    context.drawImage(this.overlay.canvas, 0, 0);
    return new Promise((resolve, reject) =>
      canvas.toBlob((blob) => (blob ? resolve(blob) : reject(new Error("The picture could not be made: make the window smaller and try again")))));
  }

  private get colors() {
    return colorsOf(this.app.store.state.theme);
  }

  private get ratio(): number {
    return Math.min(window.devicePixelRatio || 1, 2);
  }

  private listen(): void {
    this.app.store.subscribe((state, changed) => this.take(state, changed));
    onPreferenceChange(() => {
      this.layers.restyled();
      this.rebuildStage();
      this.changed();
    });
    new ResizeObserver(() => this.resize()).observe(this.host);
    this.resize();
    this.changed();
    const canvas = this.renderer.domElement;
    canvas.addEventListener("pointermove", (event) => {
      this.pointer = event.buttons === 0 ? { x: event.offsetX, y: event.offsetY } : null;
      this.ask();
    });
    canvas.addEventListener("pointerleave", () => {
      this.pointer = null;
      this.app.store.set({ hover: null });
    });
    this.listenToClicks(canvas);
    canvas.addEventListener("webglcontextrestored", () => this.trailsChanged());
  }

  /** A click without a drag selects what is under it; with Ctrl or Shift it adds or takes away. */
  private listenToClicks(canvas: HTMLElement): void {
    let down: { x: number; y: number } | null = null;
    canvas.addEventListener("pointerdown", (event) => (down = { x: event.offsetX, y: event.offsetY }));
    canvas.addEventListener("pointerup", (event) => {
      const still = down && Math.hypot(event.offsetX - down.x, event.offsetY - down.y) < 4;
      down = null;
      if (!still || event.button !== 0) return;
      const hit = pick(this.layers.trails, this.projection(), { x: event.offsetX, y: event.offsetY });
      if (!hit) return;
      const add = event.ctrlKey || event.metaKey || event.shiftKey;
      const { selected } = this.app.store.state;
      const next = new Set(add ? selected : []);
      if (!add || !next.delete(hit.trail)) next.add(hit.trail);
      this.app.store.set({ selected: next, hover: hit });
    });
  }

  private take(state: ViewState, changed: Change): void {
    if (changed.has("relativeTo")) this.rebuild();
    else if (touches(changed, MOVES)) this.layers.moved();
    else if (touches(changed, STYLES)) this.layers.restyled();
    if (touches(changed, WINDOW) || (changed.has("frame") && state.window)) this.layers.windowMoved();
    if (touches(changed, COLORS) || (changed.has("frame") && this.followsFrame(state))) this.layers.recolored();
    if (changed.has("theme") || changed.has("showStatics")) this.rebuildStage();
    if (changed.has("camera")) {
      if (acrossOf(state.camera.view) !== this.grid.across) this.rebuildStage();
      this.rig.show(state.camera);
    }
    if (changed.has("hover") && changed.size === 1) this.ask();
    else this.changed();
  }

  private followsFrame(state: ViewState): boolean {
    return state.colorBy === "mode" &&
      (state.mode === 2 || (state.mode === null && this.app.motion.trails.some((trail) => trail.colorMode === 2)));
  }

  private rebuild(): void {
    const { motion, scene } = this.app;
    const box = (this.box = boundsOf(motion, motion.thatMove(motion.trails.map((_, index) => index)), scene.upAxis) ?? NO_BOX);
    this.origin = box.low.map((low, k) => low + (box.high[k] - low) / 2) as unknown as Vec3;
    this.layers.moved();
    this.rebuildStage();
    this.rig.show(this.app.store.state.camera);
  }

  private rebuildStage(): void {
    const { scene, store } = this.app;
    const { box } = this;
    this.grid = gridFor(box, store.state.camera.view);
    disposeAll(this.stage);
    const statics = store.state.showStatics && store.state.relativeTo === null ? scene.statics : [];
    const boxes = statics.map((each) => ({ ...each, holds: holdsSamples(each, this.app.motion) }));
    this.stage.add(buildStage({ grid: this.grid, boxes, upAxis: scene.upAxis, origin: this.origin }, this.colors));
    const size = Math.hypot(...box.high.map((high, k) => high - box.low[k]));
    const away = boxes.map(({ matrix }) => Math.hypot(matrix[12] - this.origin[0], matrix[13] - this.origin[1], matrix[14] - this.origin[2]));
    this.rig.setReach(Math.max(4 * size, 1e-6, ...away.map((distance) => 2 * distance)));
  }

  private resize(): void {
    this.width = Math.max(1, this.host.clientWidth);
    this.height = Math.max(1, this.host.clientHeight);
    this.renderer.setPixelRatio(this.ratio);
    this.renderer.setSize(this.width, this.height, false);
    this.rig.resize(this.width, this.height);
    this.app.store.set({ aspect: this.width / this.height });
    this.draw(this.moving); // at once: setting the size has cleared the picture
  }

  private setGesture(on: boolean): void {
    this.gesture = on;
    this.changed();
  }

  /** Something moves: draw soon and quickly, and once more when all is still. */
  private changed(): void {
    this.moving = true;
    this.host.dataset.drawn = "moving";
    clearTimeout(this.settleTimer);
    this.settleTimer = window.setTimeout(() => this.settle(), SETTLED);
    this.ask();
  }

  private settle(): void {
    if (this.gesture || this.app.store.state.playing) {
      this.settleTimer = window.setTimeout(() => this.settle(), SETTLED);
      return;
    }
    this.moving = false;
    this.ask();
  }

  private ask(): void {
    this.frameAsked ||= requestAnimationFrame(() => {
      this.frameAsked = 0;
      this.pickUnderPointer();
      this.draw(this.moving);
    });
  }

  private pickUnderPointer(): void {
    if (!this.pointer) return;
    const hover = pick(this.layers.trails, this.projection(), this.pointer);
    const old = this.app.store.state.hover;
    this.pointer = null;
    if (hover?.trail !== old?.trail || hover?.sample !== old?.sample) this.app.store.set({ hover });
  }

  private projection(): Projection {
    return new Projection(this.rig.camera, this.width, this.height);
  }

  private draw(moving: boolean): void {
    const drawing = { ...this.detail.drawing(moving), dotEvery: this.layers.dotEvery(this.projection(), moving) };
    const stretches = this.layers.show(drawing);
    this.skeleton.update();
    const start = performance.now();
    this.renderer.setClearColor(this.colors.background);
    this.renderer.render(this.three, this.rig.camera);
    if (this.detail.learns) {
      waitFor(this.renderer);
      this.detail.learn(drawing, stretches, performance.now() - start);
    }
    this.drawOverlay(drawing);
    this.host.dataset.stride = String(drawing.stride);
    this.host.dataset.drawn = moving ? "moving" : "still";
  }

  private drawOverlay(drawing: Drawing): void {
    const { app, layers, origin, grid, skeleton, colors } = this;
    const picture: Picture = {
      app, layers, skeleton, colors, projection: this.projection(), camera: this.rig.camera, origin, grid, drawing,
    };
    this.overlay.begin(this.width, this.height, this.ratio, this.colors);
    const hovered = annotate(this.overlay, picture);
    if (hovered) this.tooltip.show(describe(app, hovered.hover), hovered.at, this.width, this.height);
    else this.tooltip.hide();
  }
}

function makeRenderer(): WebGLRenderer {
  try {
    const renderer = new WebGLRenderer({ antialias: true, stencil: true });
    renderer.outputColorSpace = LinearSRGBColorSpace;
    return renderer;
  } catch {
    throw new Error("This browser cannot draw in 3D, because WebGL 2 is off: turn on hardware acceleration, or try another browser.");
  }
}

/** Returns when everything is drawn. */
function waitFor(renderer: WebGLRenderer): void {
  const gl = renderer.getContext();
  gl.readPixels(0, 0, 1, 1, gl.RGBA, gl.UNSIGNED_BYTE, new Uint8Array(4));
}
