// The browser that the tests run in: a headless Chromium, or the Firefox that VANTORELIX_FIREFOX names. A Firefox
// without a screen has no WebGL, so it needs one, real or not (xvfb-run).

import { chromium, firefox, type Browser } from "playwright-core";
import { BROWSER_ARGUMENTS } from "./browser_arguments";
import { temporaryFolder } from "./files";

export const IN_FIREFOX = Boolean(process.env.VANTORELIX_FIREFOX);

/** Where the browser puts what the page saves. */
export const DOWNLOADS = temporaryFolder()(".");

export function launch(): Promise<Browser> {
  const downloadsPath = DOWNLOADS;
  if (IN_FIREFOX) return firefox.launch({ channel: "moz-firefox", executablePath: process.env.VANTORELIX_FIREFOX, headless: false, downloadsPath });
  return chromium.launch({ executablePath: process.env.VANTORELIX_CHROMIUM ?? "/usr/bin/chromium", args: BROWSER_ARGUMENTS, downloadsPath });
}
