// Files that the tests write.

import { mkdtempSync, rmSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";

/** A folder that is gone when the tests end. */
export function temporaryFolder(): (name: string) => string {
  const folder = mkdtempSync(join(tmpdir(), "vantorelix-test-"));
  process.on("exit", () => rmSync(folder, { recursive: true, force: true }));
  return (name) => join(folder, name);
}
