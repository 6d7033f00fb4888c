// Plays whole frames at the scene's rate, in a loop, by the page's own clock.

import type { Scene } from "../source/trail";
import type { Store } from "./state";

/** Frames of a loop from `first` to `last`: the one that is due `seconds` after `begin` was. */
export function dueFrame(begin: number, seconds: number, fps: number, first: number, last: number): number {
  const length = Math.floor(last - first) + 1;
  const passed = Math.floor(begin - first + seconds * fps + 1e-6);
  return first + (((passed % length) + length) % length);
}

export function runPlayer(scene: Scene, store: Store): void {
  let begin = 0;
  let started = 0;
  const tick = (now: number) => {
    const { playing, playFirst, playLast } = store.state;
    if (!playing) return;
    store.set({ frame: dueFrame(begin, (now - started) / 1000, scene.fps, playFirst, playLast) });
    requestAnimationFrame(tick);
  };
  store.subscribe(
    (state) => {
      if (!state.playing) return;
      begin = state.frame >= state.playLast ? state.playFirst : state.frame;
      started = performance.now();
      requestAnimationFrame(tick);
    },
    ["playing"],
  );
}
