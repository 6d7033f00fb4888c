// A file that the page saves.

import { readdirSync, readFileSync, rmSync, statSync } from "node:fs";
import { join } from "node:path";
import type { Page } from "playwright-core";
import { expect } from "vitest";
import { DOWNLOADS, IN_FIREFOX } from "./launch";

export interface SavedFile {
  readonly name: string;
  readonly content: Buffer;
}

/** Firefox writes the file, but Playwright does not say so: it is whole when nothing else is left beside it. */
async function savedInFirefox(save: () => Promise<unknown>): Promise<SavedFile> {
  for (const name of readdirSync(DOWNLOADS)) rmSync(join(DOWNLOADS, name));
  await save();
  const filled = () => readdirSync(DOWNLOADS).map((name) => statSync(join(DOWNLOADS, name), { throwIfNoEntry: false })?.size ?? 0).map(Boolean);
  await expect.poll(filled, { timeout: 20_000 }).toEqual([true]);
  const [name] = readdirSync(DOWNLOADS);
  return { name, content: readFileSync(join(DOWNLOADS, name)) };
}

/** Does what saves a file, and reads that file. */
export async function savedBy(page: Page, save: () => Promise<unknown>): Promise<SavedFile> {
  if (IN_FIREFOX) return savedInFirefox(save);
  const [download] = await Promise.all([page.waitForEvent("download"), save()]);
  return { name: download.suggestedFilename(), content: readFileSync(await download.path()) };
}

/** A Maya ASCII scene without its animation curves. */
export function still(scene: string): string {
  return readFileSync(scene, "utf8").replace(/^createNode animCurve(?:.|\n)*?(?=^(?!\t))/gm, "").replace(/^connectAttr "[^"]*\.o" .*\n/gm, "");
}
