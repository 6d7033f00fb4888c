// Keeps the space and the camera that are chosen in step with the scene: asks the engine for what they need.

import { lensTrack, rigidTrack, type Film } from "../model/camera/film";
import { cameraAt, objectAt, type Rigid } from "../model/camera/rigid";
import { cameraSpace, objectSpace, pictureSpace, type Seen } from "../model/camera/space";
import { sampleFrame, type Motion } from "../model/motion";
import type { Store } from "../model/state";
import type { Scene, SceneCamera, Spaces, Trail } from "../source/trail";

/** Frames at which all is asked for: every sample of the trail that has most of them. */
interface Frames {
  readonly first: number;
  readonly step: number;
  readonly list: readonly number[];
}

function framesOf(trails: readonly Trail[]): Frames {
  const most = trails.reduce((a, b) => (b.count > a.count ? b : a));
  const list = Array.from({ length: most.count }, (_, sample) => sampleFrame(most, sample));
  return { first: most.startFrame, step: most.frameStep, list };
}

const STILL = Float64Array.of(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1);

const rigids = (matrices: Float64Array, of: (matrices: Float64Array, begin: number) => Rigid): Rigid[] =>
  Array.from({ length: matrices.length / 16 }, (_, k) => of(matrices, 16 * k));

async function filmOf(spaces: Spaces, { name, shape, source, looks }: SceneCamera, { first, step, list }: Frames): Promise<Film> {
  const [matrices, lenses] = await Promise.all([source === null ? STILL : spaces.matrices(source, list), spaces.lenses(shape, list)]);
  const camera = rigids(matrices, (all, begin) => cameraAt(all, begin, looks));
  return { name, camera: rigidTrack(first, step, camera), lens: lensTrack(first, step, lenses) };
}

export interface Followed {
  readonly scene: Scene;
  readonly motion: Motion;
  readonly store: Store;
  readonly spaces: Spaces;
  /** Told what went wrong. */
  announce(text: string): void;
}

/** What the state asks for; empty: nothing. */
function choiceOf({ state }: Store, cameras: readonly SceneCamera[]): string {
  const { space, relativeTo, through, graph } = state;
  const turning = space === "turning" && relativeTo !== null;
  const filmed = cameras.length > 0 && (through !== null || space === "camera" || space === "screen" || graph === "screen");
  return [turning ? `object ${relativeTo}` : filmed ? space : "", filmed ? `camera ${through ?? 0}` : ""].join(" ").trim();
}

async function load({ scene, motion, store, spaces }: Followed, choice: string): Promise<Seen> {
  const { space, relativeTo, through } = store.state;
  const frames = framesOf(motion.trails);
  const camera = choice.includes("camera ") ? spaces.cameras[through ?? 0] : undefined;
  const film = camera ? await filmOf(spaces, camera, frames) : null;
  const seen = { film, choice, lensFrame: null };
  if (space === "turning" && relativeTo !== null) {
    const matrices = await spaces.matrices(motion.trails[relativeTo].source, frames.list);
    return { ...seen, space: objectSpace(rigidTrack(frames.first, frames.step, rigids(matrices, objectAt))) };
  }
  if (film && space === "camera") return { ...seen, space: cameraSpace(film, scene.upAxis) };
  if (film && space === "screen") return { ...seen, lensFrame: frames.first, space: pictureSpace(film, frames.first, scene.upAxis) };
  return { ...seen, space: null };
}

/** Returns what asks for everything again, after edits. */
export function followSpaces(followed: Followed): () => void {
  const { motion, store, spaces } = followed;
  let turn = 0;
  const ask = async () => {
    const mine = ++turn;
    const choice = choiceOf(store, spaces.cameras);
    if (choice === "" || motion.trails.length === 0) return store.set({ seen: null });
    try {
      const seen = await load(followed, choice);
      if (mine === turn) store.set({ seen });
    } catch (error) {
      followed.announce((error as Error).message);
    }
  };
  store.subscribe(() => {
    if (choiceOf(store, spaces.cameras) !== (store.state.seen?.choice ?? "")) void ask();
  }, ["space", "relativeTo", "through", "graph"]);
  if (choiceOf(store, spaces.cameras) !== "") void ask();
  return () => {
    if (store.state.seen) void ask();
  };
}
