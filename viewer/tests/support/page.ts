// The built page with trails in it, as a file that a browser can open.

import { existsSync, readFileSync, writeFileSync } from "node:fs";
import { resolve } from "node:path";
import { temporaryFolder } from "./files";
import { encodeScene, type SceneInput } from "./trails";

const MARK = "<!--trails-->";
const BUILT = resolve(process.env.VANTORELIX_PAGE ?? "dist/index.html");

/** JSON in which no name can end the element that it stands in. */
const inElement = (value: unknown) =>
  JSON.stringify(value).replace(/[<>&\u2028\u2029]/g, (c) => `\\u${c.charCodeAt(0).toString(16).padStart(4, "0")}`);

/** The text of the page that shows this scene. */
export function pageText(input: SceneInput): string {
  if (!existsSync(BUILT)) throw new Error(`there is no ${BUILT}: run "npm run build" first`);
  const parts = readFileSync(BUILT, "utf8").split(MARK);
  if (parts.length !== 2) throw new Error(`${BUILT} has ${parts.length - 1} places for trails instead of one`);
  const { header, data } = encodeScene(input);
  return parts.join(
    `<script type="application/json" id="trails-header">${inElement(header)}</script>` +
      `<script type="application/octet-stream" id="trails-data">${data.toString("base64")}</script>`,
  );
}

let inFolder: ((name: string) => string) | null = null;
let written = 0;

/** Writes the page that shows this scene; the file is gone when the tests' process ends. */
export function writePage(input: SceneInput): string {
  inFolder ??= temporaryFolder();
  const file = inFolder(`${++written}.html`);
  writeFileSync(file, pageText(input));
  return file;
}
