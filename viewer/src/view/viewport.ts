// The view of the trails in space. It draws only when something has changed.

import "./viewport.css";
import { ColorManagement, Group, Scene } from "three";
import type { App } from "../model/app";
import { boundsOf, type Bounds } from "../model/framing";
import { hasGround, isInWorld, type Change, type Hover, type ViewState } from "../model/state";
import { onPreferenceChange } from "../model/theme";
import type { ChangedPart, TrailChange, Vec3 } from "../source/trail";
import { annotate, hoveredSpot, type Picture } from "./annotations";
import { CameraRig } from "./camera";
import { Detail } from "./detail";
import { FlatSurface } from "./flat_surface";
import { acrossOf, buildStage, disposeAll, gridFor, type Grid, type Stage } from "./ground";
import { listenToHandles, type Key } from "./handles";
import { holdsSamples } from "./held";
import { TrailLayers, type Drawing } from "./layers";
import { Overlay } from "./overlay";
import { mayPass, passing, pick } from "./picking";
import { blobOf, framed } from "./picture";
import { spotOf } from "./places";
import { listenToPointer } from "./pointer";
import { around, isEmpty, MovedArea, within } from "./primitives/moved";
import { Projection, type Area, type Spot } from "./primitives/projection";
import { Skeleton } from "./skeleton";
import { GlSurface, type Surface, type View } from "./surface";
import { colorsOf } from "./theme";
import { TangentHandles } from "./tangent_handles";
import { throughCamera } from "./through";
import { describe, Tooltip } from "./tooltip";

// Colours are the engine's own numbers, and reach the screen unchanged.
ColorManagement.enabled = false;

/** Milliseconds without a change after which all is still. */
const SETTLED = 200;

const NO_BOX: Bounds = { low: [-1, -1, -1], high: [1, 1, 1] };

/** The same box; where it is a point, with room for a ground around it. */
const withRoom = ({ low, high }: Bounds): Bounds =>
  low.some((l, k) => l < high[k]) ? { low, high } : { low: [low[0] - 1, low[1], low[2] - 1], high: [low[0] + 1, low[1], low[2] + 1] };

const MOVES: readonly (keyof ViewState)[] = ["hidden", "solo"];
const STYLES: readonly (keyof ViewState)[] = [
  "lineWidth", "pointSize", "showLine", "showDots", "ghost", "showKeys", "selected", "theme",
];
const WINDOW: readonly (keyof ViewState)[] = ["window", "windowBefore", "windowAfter"];
const COLORS: readonly (keyof ViewState)[] = ["colorBy", "mode", "palette"];

const touches = (changed: Change, keys: readonly (keyof ViewState)[]) => keys.some((key) => changed.has(key));

export class Viewport {
  private surface: Surface;
  private readonly three = new Scene();
  private readonly stage = new Group();
  private readonly overlay = new Overlay();
  private readonly tooltip = new Tooltip();
  private readonly tangents: TangentHandles;
  private readonly layers: TrailLayers;
  private readonly skeleton: Skeleton;
  private readonly rig: CameraRig;
  private readonly detail: Detail;
  /** Around all trails as they are shown, and its middle. */
  private box = NO_BOX;
  private origin: Vec3 = [0, 0, 0];
  private grid!: Grid;
  /** What stands still, where it can be shown. */
  private boxes: Stage["boxes"] = [];
  private width = 1;
  private height = 1;
  private frameAsked = 0;
  private settleTimer = 0;
  private moving = true; // the first picture is a quick one
  /** What is drawn, where that has smooth edges and only places of trails may have changed since. */
  private still: Drawing | null = null;
  /** Of it, what was drawn anew. */
  private redrawn: Area | null = null;
  /** A drag moves too much for that. */
  private tooMuch = false;
  private gesture = false;
  private gone = false;
  /** Frames from one drawn dot to the next, 0 without dots; and the dot that the pointer would drag. */
  private dotEvery = 0;
  private bead: Key | null = null;
  /** Above 1 while a larger picture is drawn. */
  private scale = 1;

  constructor(private readonly app: App, private readonly host: HTMLElement) {
    const { canvas } = this.overlay;
    canvas.className = "overlay";
    canvas.setAttribute("aria-hidden", "true");
    this.layers = new TrailLayers(app, () => this.origin, () => this.colors, () => this.ratio);
    this.skeleton = new Skeleton(app, () => this.origin, () => this.colors, this.ratio);
    this.tangents = new TangentHandles(app, () => this.origin, () => this.partsChanged());
    host.append(canvas, this.tooltip.bead, this.tooltip.ring, this.tooltip.element);
    this.surface = this.makeSurface();
    host.prepend(this.surface.canvas);
    this.detail = new Detail(() => this.layers.sampleCount);
    this.rig = new CameraRig(canvas, app.store.state.camera, () => this.origin,
      (camera) => app.store.set({ camera }));
    this.rig.onGesture(() => this.setGesture(true), () => this.setGesture(false));
    this.three.add(this.stage, this.layers.group, this.skeleton.group);
    this.rebuild();
    this.listen();
  }

  trailsChanged(how: TrailChange = "final", parts: readonly ChangedPart[] = []): void {
    this.tangents.refresh(how === "final" ? undefined : parts);
    if (how === "final") {
      this.rebuild();
      this.changed();
    } else if (this.layers.partsMoved(parts)) {
      this.partsChanged(); // what stands around them stays
    } else {
      this.changed();
    }
  }

  /** Gives back what the browser lent it. */
  dispose(): void {
    this.gone = true;
    clearTimeout(this.settleTimer);
    cancelAnimationFrame(this.frameAsked);
    this.layers.dispose();
    disposeAll(this.stage);
    this.surface.dispose();
    this.rig.dispose();
  }

  /** What is seen now, labels included, as large and with what around it as is chosen. */
  async picture(): Promise<Blob> {
    const { pictureScale } = this.app.store.state;
    try {
      this.enlarge(pictureScale);
      const layers = [this.surface.canvas, this.overlay.canvas];
      return await blobOf(framed(this.app, this.layers.trails.map(({ index }) => index), layers, this.ratio, this.colors));
    } finally {
      if (pictureScale !== 1) this.enlarge(1);
    }
  }

  /** Draws everything so many times as large. */
  private enlarge(scale: number): void {
    const changes = scale !== this.scale;
    this.scale = scale;
    if (changes) {
      this.layers.restyled();
      this.surface.resize(this.width, this.height, this.ratio);
    }
    this.draw(false);
  }

  private get colors() {
    return colorsOf(this.app.store.state.theme);
  }

  private get ratio(): number {
    return this.scale * Math.min(window.devicePixelRatio || 1, 2);
  }

  private makeSurface(): Surface {
    try {
      return new GlSurface(this.three, this.layers, () => this.trailsChanged(), () => this.drawFlat());
    } catch {
      return this.flatSurface();
    }
  }

  private flatSurface(): Surface {
    const line = document.createElement("p");
    line.className = "without-webgl";
    line.textContent = "This browser draws without WebGL: lines in the order of the list, no depth, ground or boxes.";
    this.host.append(line);
    return new FlatSurface(this.app, this.layers, () => this.colors);
  }

  /** WebGL was there and is gone. */
  private drawFlat(): void {
    const { canvas } = this.surface;
    this.surface = this.flatSurface();
    canvas.replaceWith(this.surface.canvas);
    this.surface.resize(this.width, this.height, this.ratio);
    this.changed();
  }

  private listen(): void {
    this.app.store.subscribe((state, changed) => this.take(state, changed));
    onPreferenceChange(() => {
      this.layers.restyled();
      this.rebuildStage();
      this.changed();
    }, this.app.life);
    const sizes = new ResizeObserver(() => this.resize());
    sizes.observe(this.host);
    this.app.life.addEventListener("abort", () => {
      sizes.disconnect();
      this.dispose();
    });
    this.measure();
    this.changed();
    const under = {
      pick: (at: Spot) => pick(this.layers.pickable, this.projection(), at),
      passing: (area: Area) => passing(this.layers.pickable, this.projection(), area),
    };
    listenToPointer(this.host, this.overlay.canvas, this.app, under);
    if (this.app.editing) this.listenToHandles(under.pick);
  }

  /** Keys and their tangents are handles where they are drawn, in the world. */
  private listenToHandles(under: (at: Spot) => Hover | null): void {
    const { app, layers, tangents } = this;
    const sight = () => ({ projection: this.projection(), camera: this.rig.camera, upAxis: app.scene.upAxis });
    const point = (bead: Key | null) => {
      this.bead = bead;
      this.showHover();
    };
    listenToHandles(app, this.host, { layers, tangents, under, sight, point, origin: () => this.origin, dotEvery: () => this.dotEvery });
  }

  private take(state: ViewState, changed: Change): void {
    if (changed.has("relativeTo") || changed.has("seen")) this.rebuild();
    else if (touches(changed, MOVES)) this.layers.moved();
    else if (touches(changed, STYLES)) this.layers.restyled();
    if (touches(changed, WINDOW) || (changed.has("frame") && state.window)) this.layers.windowMoved();
    if (touches(changed, COLORS) || (changed.has("frame") && this.followsFrame(state))) this.layers.recolored();
    if (changed.has("theme") || changed.has("showStatics")) this.rebuildStage();
    if (changed.has("camera")) {
      if (acrossOf(state.camera.view) !== this.grid.across) this.rebuildStage();
      this.rig.show(state.camera);
    }
    this.aim();
    if (changed.has("hover") && changed.size === 1) this.showHover(); // without drawing anything again
    else this.changed();
  }

  private followsFrame(state: ViewState): boolean {
    return state.colorBy === "mode" &&
      (state.mode === 2 || (state.mode === null && this.app.motion.trails.some((trail) => trail.colorMode === 2)));
  }

  private rebuild(): void {
    const { motion, scene, store } = this.app;
    const statics = isInWorld(store.state) ? scene.statics : [];
    this.boxes = statics.map((each) => ({ ...each, holds: holdsSamples(each, motion) }));
    const box = (this.box = withRoom(boundsOf(motion, motion.thatMove(motion.trails.map((_, index) => index)), scene.upAxis) ?? NO_BOX));
    this.origin = box.low.map((low, k) => low + (box.high[k] - low) / 2) as unknown as Vec3;
    this.layers.moved();
    this.rebuildStage();
    this.rig.show(this.app.store.state.camera);
    this.aim();
  }

  /** Looks through a camera of the scene, where one is chosen. */
  private aim(): void {
    this.rig.lookThrough(throughCamera(this.app, this.origin));
  }

  private rebuildStage(): void {
    const { scene, store } = this.app;
    const { box } = this;
    this.grid = gridFor(box, store.state.camera.view);
    disposeAll(this.stage);
    this.stage.visible = hasGround(store.state);
    const boxes = store.state.showStatics ? this.boxes : [];
    this.stage.add(buildStage({ grid: this.grid, boxes, upAxis: scene.upAxis, origin: this.origin }, this.colors));
    const size = Math.hypot(...box.high.map((high, k) => high - box.low[k]));
    const away = boxes.map(({ matrix }) => Math.hypot(matrix[12] - this.origin[0], matrix[13] - this.origin[1], matrix[14] - this.origin[2]));
    this.rig.setReach(Math.max(4 * size, 1e-6, ...away.map((distance) => 2 * distance)));
  }

  /** Takes the host's size; the picture is empty then. Says whether the size is a new one. */
  private measure(): boolean {
    const [width, height] = [Math.max(1, this.host.clientWidth), Math.max(1, this.host.clientHeight)];
    if (width === this.width && height === this.height) return false;
    [this.width, this.height] = [width, height];
    this.surface.resize(width, height, this.ratio);
    this.rig.resize(width, height);
    this.aim();
    this.app.store.set({ aspect: width / height });
    return true;
  }

  private resize(): void {
    if (this.measure()) this.draw(this.moving); // at once, because it is empty
  }

  private setGesture(on: boolean): void {
    this.gesture = on;
    this.changed();
  }

  /** Something moves: draw soon and quickly, and once more when all is still. */
  private changed(): void {
    this.still = null;
    this.tooMuch = false;
    this.unsettle();
  }

  private unsettle(): void {
    this.moving = true;
    this.host.dataset.drawn = "moving";
    clearTimeout(this.settleTimer);
    this.settleTimer = window.setTimeout(() => this.settle(), SETTLED);
    this.ask();
  }

  /** Places of trails have changed, or what is drawn over them: of a picture that is still, the rest stays. */
  private partsChanged(): void {
    if (this.tooMuch) return this.unsettle();
    this.host.dataset.drawn = "moving";
    this.ask(); // a picture that is not still will soon be
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
    if (this.gone) return;
    this.frameAsked ||= requestAnimationFrame(() => {
      this.frameAsked = 0;
      if (!this.still) this.draw(this.moving);
      else if (!this.drawParts(this.still)) {
        this.still = null;
        this.tooMuch = true;
        this.unsettle();
      }
    });
  }

  private projection(): Projection {
    return new Projection(this.rig.camera, this.width, this.height);
  }

  private draw(moving: boolean): void {
    const { detail, surface, layers, skeleton } = this;
    const drawing = { ...detail.drawing(moving), dotEvery: layers.dotEvery(this.projection(), moving) };
    this.dotEvery = layers.hasDots(drawing) ? Math.max(drawing.dotEvery, drawing.stride) : 0;
    const timed = detail.timed(moving);
    skeleton.update();
    const start = performance.now();
    const stretches = surface.draw(this.viewOf(drawing));
    if (timed) {
      surface.finish();
      detail.learn(drawing, stretches, performance.now() - start);
    }
    layers.moves.forget();
    skeleton.allDrawn();
    this.still = drawing.smooth && !moving ? drawing : null;
    this.redrawn = null;
    this.drawOver(drawing);
    this.host.dataset.drawn = moving ? "moving" : "still";
  }

  /** Draws again where something moved in a picture that is still. False where that would take long. */
  private drawParts(still: Drawing): boolean {
    const { layers, skeleton } = this;
    const view = this.viewOf(still);
    const { projection } = view;
    const moved = new MovedArea(projection, layers.margin);
    skeleton.update();
    skeleton.addMoved(moved);
    layers.moves.addTo(moved, layers.trails, still.stride);
    const inSight = within(moved.area, { left: 0, top: 0, right: projection.width, bottom: projection.height });
    const area = this.redrawn ? around(inSight, this.redrawn) : inSight;
    if ((!isEmpty(area) || this.redrawn) && !this.drawArea(view, area)) return false;
    this.redrawn = isEmpty(inSight) ? null : inSight;
    this.drawOver(still);
    this.host.dataset.drawn = "still";
    return true;
  }

  private drawArea(view: View, area: Area): boolean {
    const { layers, surface, detail } = this;
    const { width, height } = view.projection;
    const { margin } = layers;
    const trails = mayPass(layers.trails, view.projection, { left: area.left - margin, top: area.top - margin, right: area.right + margin, bottom: area.bottom + margin });
    const samples = trails.reduce((sum, { places }) => sum + places.length / 3, 0);
    const ofPicture = (area.right - area.left) * (area.bottom - area.top) / (width * height);
    if (!detail.isQuick(view.drawing, samples / view.drawing.stride, samples / layers.sampleCount, ofPicture)) return false;
    return surface.drawArea(view, area, new Set(trails.map(({ index }) => index)));
  }

  private viewOf(drawing: Drawing): View {
    return { drawing, camera: this.rig.camera, projection: this.projection(), background: this.colors.background };
  }

  /** What stands over the trails. */
  private drawOver(drawing: Drawing): void {
    this.overlay.begin(this.width, this.height, this.ratio, this.colors);
    annotate(this.overlay, this.pictured(drawing));
    this.tangents.draw(this.overlay, this.projection());
    this.showHover();
    this.host.dataset.stride = String(drawing.stride);
  }

  private pictured(drawing: Drawing): Picture {
    const { app, layers, origin, grid, skeleton, colors } = this;
    const flat = this.surface instanceof FlatSurface;
    return { app, layers, skeleton, colors, projection: this.projection(), camera: this.rig.camera, origin, grid, drawing, flat };
  }

  private showHover(): void {
    const hovered = hoveredSpot({ app: this.app, layers: this.layers, projection: this.projection() });
    if (hovered) this.tooltip.show(describe(this.app, hovered.hover), hovered.at, this.width, this.height);
    else this.tooltip.hide();
    this.tooltip.showBead(this.bead && this.spotAt(this.bead));
  }

  private spotAt({ trail, frame }: Key): Spot | null {
    const { app, origin } = this;
    return spotOf({ app, origin, projection: this.projection() }, app.motion.shownPosition(trail, frame));
  }
}
