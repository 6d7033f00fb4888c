// What a page shows and remembers, read back.

import type { Page } from "playwright-core";
import { expect } from "vitest";
import type { ViewState } from "../../src/model/state";

/** A part of the page's state; sets become sorted lists. */
export async function stateOf<K extends keyof ViewState>(page: Page, key: K): Promise<unknown> {
  return page.evaluate((name) => {
    const value = window.vantorelixViewer.store.state[name as keyof ViewState] as unknown;
    return value instanceof Set ? [...value].sort((a, b) => a - b) : value;
  }, key as string);
}

/** Waits until a part of the state is as wanted. */
export async function expectState<K extends keyof ViewState>(page: Page, key: K, wanted: unknown): Promise<void> {
  await expect.poll(() => stateOf(page, key), { timeout: 5000 }).toEqual(wanted);
}

/** Presses keys one after the other. */
export async function press(page: Page, ...keys: string[]): Promise<void> {
  for (const key of keys) await page.keyboard.press(key);
}

/** The picture of a canvas, as its parts of each colour that stand out: "r,g,b" and how many pixels. */
export function inkOf(page: Page, selector: string): Promise<Record<string, number>> {
  return page.evaluate((wanted) => {
    const canvas = document.querySelector<HTMLCanvasElement>(wanted)!;
    const { data } = canvas.getContext("2d")!.getImageData(0, 0, canvas.width, canvas.height);
    const found: Record<string, number> = {};
    for (let i = 0; i < data.length; i += 4) {
      if (data[i + 3] < 255) continue;
      const color = `${data[i]},${data[i + 1]},${data[i + 2]}`;
      found[color] = (found[color] ?? 0) + 1;
    }
    return found;
  }, selector);
}

/** Runs in a page before its own script: keeps the texts that its canvases are given to write. */
export function writeDown(): void {
  const texts: string[] = ((window as unknown as { texts: string[] }).texts = []);
  const { fillText } = CanvasRenderingContext2D.prototype;
  CanvasRenderingContext2D.prototype.fillText = function (text: string, ...rest: [number, number]) {
    texts.push(text);
    fillText.call(this, text, ...rest);
  };
}

/** The texts written so far, in a page that writes them down. */
export const written = (page: Page): Promise<string[]> => page.evaluate(() => (window as unknown as { texts: string[] }).texts);
