// The pages that are measured.

import { statSync } from "node:fs";
import type { Vec3 } from "../src/source/trail";
import { writePage } from "../tests/support/page";

/** Objects in rows, each on a wave that leads away. */
const trail = (t: number, samples: number) => ({
  name: `object${t}`,
  keyTimes: [0, 0.25, 0.5, 0.75, 1].map((part) => 1 + Math.floor(part * (samples - 1))),
  points: Array.from({ length: samples }, (_, i): Vec3 => [
    (t % 32) * 5 + 10 * Math.sin(i / 50 + t), 5 + 5 * Math.cos(i / 30 + t), Math.floor(t / 32) * 5 + i / 200,
  ]),
});

export interface BenchPage {
  readonly name: string;
  readonly file: string;
  readonly bytesPerSample: number;
  /** Milliseconds within which it has to open. */
  readonly openBar: number;
}

const write = (name: string, trails: number, samples: number, openBar: number): BenchPage => {
  const file = writePage({ range: [1, samples], trails: Array.from({ length: trails }, (_, t) => trail(t, samples)) });
  return { name, file, openBar, bytesPerSample: statSync(file).size / (trails * samples) };
};

export const writePages = (): BenchPage[] => [
  write("1 x 1,000", 1, 1000, 500),
  write("1,000 x 1,000", 1000, 1000, 1000),
  write("100 x 10,000", 100, 10_000, 1000),
];
