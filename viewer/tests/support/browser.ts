// One headless browser a test file. A test that leaves an error in the console, or makes the page ask for anything but
// its own file, fails.

import { pathToFileURL } from "node:url";
import type { Browser, BrowserContextOptions, Page } from "playwright-core";
import { afterAll, afterEach, beforeAll, beforeEach, expect, test, type RunnerTask } from "vitest";
import { IN_FIREFOX, launch } from "./launch";
import { writePage } from "./page";
import type { SceneInput } from "./trails";

/** Of the tests that an outermost `describe` holds, only the first is run: one of each kind, in a third of the time. */
const FIRST_ONLY = process.env.VANTORELIX_PAGE_TESTS === "first";

const isFirst = (task: RunnerTask): boolean =>
  task.suite?.type !== "suite" || (task === task.suite.tasks[0] && isFirst(task.suite));

export interface OpenOptions extends BrowserContextOptions {
  /** What stands after the "#". */
  hash?: string;
  /** Runs in the page before its own script. */
  before?: () => void;
}

/** For OpenOptions.before: a browser that has no WebGL. */
export function withoutWebGl(): void {
  const known = HTMLCanvasElement.prototype.getContext;
  HTMLCanvasElement.prototype.getContext = function (this: HTMLCanvasElement, type: string, ...more: unknown[]) {
    return type.startsWith("webgl") ? null : Reflect.apply(known, this, [type, ...more]);
  } as typeof known;
}

export interface Opener {
  /** Opens the page that shows this scene, and waits until it stands. */
  open(scene: SceneInput, options?: OpenOptions): Promise<Page>;
  /** What went wrong so far in this test; emptying it makes the test accept that. */
  readonly problems: string[];
  /** A tab of its own, for anything but the page. */
  blank(): Promise<Page>;
  /** Opens a page that is there already. */
  openFile(file: string, options?: OpenOptions): Promise<Page>;
}

/** For what Firefox's protocol cannot do: readers' trees, two fingers, what the system prefers, requests of an empty page. */
export const chromiumTest = test.skipIf(IN_FIREFOX);

/** The style that a screenshot adds to hide the text cursor: the policy of the page stops it in Firefox, and may. */
const STYLE_OF_SCREENSHOTS = "sha256-YjaKGiklmzC6wjXA513HAMmzus8VE61XCOT+SmwNZWA=";

/** Writes down what goes wrong in a page. */
export function watch(page: Page, url: string, problems: string[]): void {
  page.on("console", (message) => {
    if (message.type() === "error") problems.push(`console: ${message.text()}`);
  });
  page.on("pageerror", ({ message }) => {
    if (!message.includes(STYLE_OF_SCREENSHOTS)) problems.push(`error: ${message}`);
  });
  page.on("request", (request) => {
    const asked = request.url().replace(/#.*$/, "");
    // What the page itself made (a picture to save) comes from no network.
    if (asked !== url && !asked.startsWith("blob:null/")) problems.push(`request: ${asked}`);
  });
}

/** For a test file: starts the browser before its tests and checks after each that nothing went wrong. */
export function useBrowser(): Opener {
  let browser: Browser;
  const problems: string[] = [];

  beforeAll(async () => {
    browser = await launch();
  });
  afterAll(() => browser?.close());
  beforeEach(({ task, skip }) => {
    if (FIRST_ONLY && !isFirst(task)) skip("not the first of its group");
  });
  afterEach(async () => {
    for (const context of browser.contexts()) await context.close();
    expect(problems.splice(0)).toEqual([]);
  });

  async function openFile(file: string, { hash = "", before, ...rest }: OpenOptions = {}): Promise<Page> {
    const context = await browser.newContext({ viewport: { width: 1280, height: 800 }, ...rest });
    const page = await context.newPage();
    const url = pathToFileURL(file).href;
    watch(page, url, problems);
    if (before) await page.addInitScript(before);
    await page.goto(hash ? `${url}#${hash}` : url);
    await page.waitForSelector("html[data-ready=true]", { state: "attached" });
    return page;
  }
  const blank = async () => (await browser.newContext()).newPage();
  return { problems, openFile, blank, open: (scene, options) => openFile(writePage(scene), options) };
}
