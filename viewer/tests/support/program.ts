// The program itself, run on the examples.

import { execFileSync } from "node:child_process";
import { resolve } from "node:path";

const program = () => resolve(process.env.VANTORELIX_PROGRAM ?? "../build/bin/vantorelix");

export const example = (name: string): string => resolve("..", process.env.VANTORELIX_EXAMPLES ?? "examples", name);

/** Runs the program; standard output. Throws when it fails. */
export const run = (...args: string[]): string =>
  execFileSync(program(), args, { encoding: "utf8", maxBuffer: 1 << 28, stdio: ["ignore", "pipe", "pipe"] });
