// The part of the scene's time that the timeline and the graph show.

import type { Scene } from "../source/trail";
import type { App } from "./app";

/** From its first frame to its last. */
export type TimeSpan = readonly [first: number, last: number];

/** Nobody needs to see less, frames. */
const SHORTEST = 2;

/** Brought into the whole; null where it would be all of it. */
export function within([first, last]: TimeSpan, whole: TimeSpan): TimeSpan | null {
  const length = Math.max(SHORTEST, last - first);
  if (!(length < whole[1] - whole[0])) return null;
  const begin = Math.max(whole[0], Math.min(whole[1] - length, first));
  return [begin, begin + length];
}

/** Longer by the factor; the frame `at` stays where it is in the picture. */
export function zoomed([first, last]: TimeSpan, whole: TimeSpan, at: number, factor: number): TimeSpan | null {
  const length = Math.max(SHORTEST, (last - first) * factor);
  const part = (Math.max(first, Math.min(last, at)) - first) / (last - first);
  const begin = at - part * length;
  return within([begin, begin + length], whole);
}

export const panned = ([first, last]: TimeSpan, whole: TimeSpan, by: number): TimeSpan | null =>
  within([first + by, last + by], whole);

/** Turned on like a page, so that the frame is seen: near the end when it comes from a little after, else near the start. */
export function following(span: TimeSpan, whole: TimeSpan, frame: number): TimeSpan | null {
  const [first, last] = span;
  if (frame >= first && frame <= last) return span;
  const margin = 0.05 * (last - first);
  const back = frame < first && frame > first - (last - first);
  return panned(span, whole, back ? frame + margin - last : frame - margin - first);
}

export const wholeTime = ({ first, last }: Scene): TimeSpan => [first, last];

/** What is seen now. */
export const seenTime = ({ scene, store }: App): TimeSpan => store.state.timeSpan ?? wholeTime(scene);

/** Zooms around a frame; by default around the current one. */
export function zoomTime(app: App, factor: number, at = app.store.state.frame): void {
  app.store.set({ timeSpan: zoomed(seenTime(app), wholeTime(app.scene), at, factor) });
}

/** Moves on by so many frames. */
export function panTime(app: App, by: number): void {
  app.store.set({ timeSpan: panned(seenTime(app), wholeTime(app.scene), by) });
}

/** Keeps the current frame in sight from now on. */
export function followFrame(app: App): void {
  app.store.subscribe(({ frame }) => app.store.set({ timeSpan: following(seenTime(app), wholeTime(app.scene), frame) }), ["frame"]);
}
