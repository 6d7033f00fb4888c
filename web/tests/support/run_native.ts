// The program native_results, run over a scene whose files lie in a folder of their own, named as they are for the other
// engine.

import { execFileSync } from "node:child_process";
import { mkdirSync, mkdtempSync, readFileSync, rmSync, writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import { dirname, join } from "node:path";
import type { SceneFile } from "../../src/index";
import type { Results } from "./commands";

/** What comes of the commands, a line each. */
export function runNative(program: string, files: SceneFile[], take: string, commands: string): Results {
  const folder = mkdtempSync(join(tmpdir(), "vantorelix-web-"));
  try {
    for (const { name, bytes } of files) {
      mkdirSync(join(folder, dirname(name)), { recursive: true });
      writeFileSync(join(folder, name), bytes);
    }
    writeFileSync(join(folder, "commands"), commands);
    execFileSync(program, [files[0].name, take, "commands", "results"], { cwd: folder });
    return records(readFileSync(join(folder, "results")));
  } finally {
    rmSync(folder, { recursive: true });
  }
}

// The blanks in them are of no account.
const isText = (name: string) =>
  /^\d+ (description|statics|objects|cameras|history|curves|placing|sliding|written lost)$/.test(name);

function records(content: Buffer): Results {
  const results: Results = new Map();
  for (let at = 0; at < content.length;) {
    const end = content.indexOf("\n", at);
    const [name, size] = content.toString("utf8", at, end).split("\t");
    const bytes = content.subarray(end + 1, end + 1 + Number(size));
    results.set(name, isText(name) ? Buffer.from(JSON.stringify(JSON.parse(bytes.toString()))) : bytes);
    at = end + 1 + bytes.length;
  }
  return results;
}
