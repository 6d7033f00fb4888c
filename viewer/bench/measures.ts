// What is measured of a page, in the browser.

import type { Page } from "playwright-core";

/** Milliseconds from the start of loading to the first picture. */
export async function opening(page: Page, url: string): Promise<number> {
  await page.goto("about:blank");
  await page.goto(url);
  return page.evaluate(async () => {
    while (window.firstPicture === undefined) await new Promise(requestAnimationFrame);
    return window.firstPicture;
  });
}

/** Writes down when the first picture after the page stands is through; runs before the page's own script. */
export function noteFirstPicture(): void {
  const look = () => {
    if (document.documentElement?.dataset.ready !== "true") return void requestAnimationFrame(look);
    requestAnimationFrame(() => setTimeout(() => (window.firstPicture = performance.now())));
  };
  look();
}

declare global {
  interface Window {
    firstPicture?: number;
  }
}

/** Milliseconds of each of many frames while the left button drags. */
export const turning = (page: Page): Promise<number[]> => page.evaluate(async () => {
  const canvas = document.querySelector(".viewport .overlay")!;
  const box = canvas.getBoundingClientRect();
  const send = (type: string, x: number) =>
    canvas.dispatchEvent(new PointerEvent(type, {
      clientX: box.x + x, clientY: box.y + 200, button: 0, buttons: type === "pointerup" ? 0 : 1, pointerId: 1, bubbles: true,
    }));
  const frames: number[] = [];
  send("pointerdown", 100);
  let last = performance.now();
  for (let i = 0; i < 60; ++i) {
    send("pointermove", 100 + 5 * i);
    await new Promise(requestAnimationFrame);
    frames.push(performance.now() - last);
    last = performance.now();
  }
  send("pointerup", 400);
  return frames;
});

/**
 * Milliseconds of the page's work for each of many places of the pointer: what it does at once, the layout, and what it
 * does before the next picture. The wait for that picture does not count.
 */
export const hovering = (page: Page): Promise<number[]> => page.evaluate(async () => {
  const canvas = document.querySelector(".viewport .overlay")!;
  const box = canvas.getBoundingClientRect();
  const answers: number[] = [];
  for (let i = 0; i < 40; ++i) {
    const early = new Promise<number>((done) => requestAnimationFrame(() => done(performance.now())));
    const start = performance.now();
    canvas.dispatchEvent(new PointerEvent("pointermove", {
      clientX: box.x + box.width * (0.2 + 0.015 * i), clientY: box.y + box.height * (0.3 + 0.01 * i), buttons: 0, bubbles: true,
    }));
    document.body.getBoundingClientRect();
    const atOnce = performance.now() - start;
    const late = new Promise<number>((done) => requestAnimationFrame(() => done(performance.now())));
    const [first, last] = await Promise.all([early, late]);
    answers.push(atOnce + last - first);
  }
  return answers;
});

/** How many of the frames that are due in two seconds of playing are shown, as a part. */
export const playing = (page: Page): Promise<number> => page.evaluate(async () => {
  const { store, scene } = window.vantorelixViewer;
  const shown = new Set<number>();
  const end = performance.now() + 2000;
  store.set({ playing: true, frame: 1 });
  while (performance.now() < end) {
    await new Promise(requestAnimationFrame);
    shown.add(store.state.frame);
  }
  store.set({ playing: false });
  return shown.size / (2 * scene.fps);
});
