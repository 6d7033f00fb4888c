// docs/viewer.md names every key.

import { readFileSync } from "node:fs";
import { expect, test } from "vitest";
import { COMMANDS, keyLabel } from "../src/model/commands";

const rows = readFileSync("../docs/viewer.md", "utf8").split("\n").filter((line) => /^\| `/.test(line))
  .map((line) => line.split("|").map((cell) => cell.trim()).slice(1, 3))
  .filter(([, does]) => does !== "Help");

test("the documentation lists the keys that there are, and no other", () => {
  const wanted = COMMANDS.map(({ keys, title }) => [
    keys.map((key) => `\`${keyLabel(key)}\``).join(" or "), title,
  ]);
  expect(rows).toEqual(wanted);
});
