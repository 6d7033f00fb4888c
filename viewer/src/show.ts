// Shows one source's trails: its state, the panels, the viewport, and what listens to the reader.

import type { Scene, TrailSource } from "./source/trail";
import type { App } from "./model/app";
import { comparisonOf, movingIn } from "./model/compare";
import { listenToKeys } from "./model/commands";
import { baseName } from "./model/format";
import { bestDirection, framing } from "./model/framing";
import { KEPT, readHash, writeHash } from "./model/hash";
import { Motion } from "./model/motion";
import { runPlayer } from "./model/player";
import { initialState, Store, type CameraPose, type ViewState } from "./model/state";
import { ChannelGraph } from "./panels/channels/channel_graph";
import { buildPage } from "./panels/page";
import { followSpaces } from "./live/spaces";
import { Viewport } from "./view/viewport";

declare global {
  interface Window {
    /** For the browser's console, and for tests. */
    vantorelixViewer: App;
  }
}

function keepStateInHash(store: Store, initial: typeof store.state, trailCount: number, life: AbortSignal): void {
  let timer = 0;
  const write = () => {
    const text = writeHash(store.state, initial);
    if (!life.aborted && text !== location.hash.slice(1)) history.replaceState(null, "", `#${text}`);
  };
  store.subscribe(() => {
    clearTimeout(timer);
    if (!store.state.playing) timer = window.setTimeout(write, 150);
  }, [...KEPT, "playing"]);
  window.addEventListener("hashchange", () =>
    store.set({ ...Object.fromEntries(KEPT.map((key) => [key, initial[key]])), ...readHash(location.hash, initial, trailCount) }),
  { signal: life });
}

/** The camera with which a page opens, for the aspect of its viewport. Looks at all samples once. */
function opening(scene: Scene, motion: Motion): (aspect: number) => CameraPose {
  const second = scene.compared?.opened ? null : comparisonOf({ scene, motion });
  const [shown, trails] = movingIn(motion, second, motion.trails.map((_, index) => index));
  const direction = bestDirection(shown, trails, scene.upAxis);
  return (aspect) => framing(shown, trails, scene.upAxis, "persp", aspect, direction);
}

function save(name: string, content: Blob): void {
  const link = document.createElement("a");
  link.href = URL.createObjectURL(content);
  link.download = name;
  link.click();
  setTimeout(() => URL.revokeObjectURL(link.href), 10_000);
}

export interface Showing {
  /** Ends when something else is shown. */
  readonly life: AbortSignal;
  /** What the page's address says about its state. */
  readonly hash: string;
  chooseFiles?(): void;
}

/** The state of a page, and what keeps its motion in step with it. */
function begin(source: TrailSource, hash: string) {
  const { scene } = source;
  const motion = new Motion(source.trails());
  let open = opening(scene, motion);
  const initial = initialState(scene, motion, open(1.5));
  const fromHash = readHash(hash, initial, motion.trails.length);
  const store = new Store({ ...initial, ...fromHash });
  const relate = ({ relativeTo, seen }: ViewState) => {
    motion.relativeTo(relativeTo);
    motion.within(seen?.space ?? null);
  };
  const spaceOf = ({ relativeTo, seen }: ViewState) => (seen?.space ? seen.choice : String(relativeTo));
  relate(store.state);
  let shown = spaceOf(store.state);
  if (store.state.relativeTo !== null) open = opening(scene, motion);
  let kept = fromHash.camera !== undefined && store.state.space !== "place"; // it is for a space that is still to be loaded
  store.subscribe((state, changed) => {
    relate(state);
    if (spaceOf(state) === shown) return;
    shown = spaceOf(state);
    open = opening(scene, motion);
    if (!changed.has("camera") && !kept) store.set({ camera: open(state.aspect) }); // the trails are elsewhere now
    kept = false;
  }, ["relativeTo", "seen"]);
  /** Once the viewport has a size. */
  const frame = () => {
    if (!fromHash.camera) store.set({ camera: open(store.state.aspect) });
    return { ...initial, camera: fromHash.camera ? initial.camera : store.state.camera };
  };
  return { motion, store, frame };
}

/** Shows what a source has in place of what `root` holds; returns what its parts work on. */
export function show(root: HTMLElement, source: TrailSource, { life, hash, chooseFiles }: Showing): App {
  const { scene, editing, writing, spaces } = source;
  const { motion, store, frame } = begin(source, hash);
  document.title = `${baseName(scene.name)}: motion trails`;
  life.addEventListener("abort", () => store.set({ playing: false }));
  let viewport: Viewport | null = null;
  const app: App = {
    scene, motion, store, life, editing, writing, spaces, chooseFiles, save,
    announce: (text) => page.announce(text),
    picture: () => viewport!.picture(),
  };
  const page = buildPage(app, root, editing ? new ChannelGraph(app) : null);
  viewport = new Viewport(app, page.viewport);
  const initial = frame();
  const spacesAgain = spaces && followSpaces({ scene, motion, store, spaces, announce: app.announce });
  source.subscribe((how, parts) => {
    const moved = new Set(parts.map(({ index }) => index));
    if (how === "final") motion.trails = source.trails();
    else motion.update(source.trails(), moved);
    if (how !== "measured") viewport!.trailsChanged(how, parts);
    page.trailsChanged(how, moved);
    if (how === "final") spacesAgain?.();
  });
  listenToKeys(app);
  runPlayer(scene, store);
  keepStateInHash(store, initial, motion.trails.length, life);
  window.vantorelixViewer = app;
  document.documentElement.dataset.ready = "true";
  return app;
}
