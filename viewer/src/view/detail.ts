// How much is drawn: everything while it is quick, a part while something moves, more again when all is still.

import type { Amount } from "./layers";

/** The power of two such that a drawing of one sample in so many holds at most `budget` samples. */
export function strideFor(samples: number, budget: number): number {
  let stride = 1;
  while (samples / stride > budget) stride *= 2;
  return stride;
}

/** Up to this many samples, everything is always drawn. */
const FEW = 20_000;

/** Milliseconds that a drawing may take while something moves, and when all is still. */
const MOVING = 30;
const STILL = 350;

/** Stretches that are drawn however long they take: fewer would not look like the trails any more. */
const LEAST = 30_000;

/** How many times longer a full drawing takes than a plain one, where software fills the pixels. */
const RICHNESS = 8;

/** Learns from the times of past drawings how much the next one may hold. */
export class Detail {
  /** Milliseconds per stretch of a plain drawing; the first value is that of slow software. */
  private cost = 1e-3;

  constructor(private readonly samples: () => number) {}

  drawing(moving: boolean): Amount {
    const samples = this.samples();
    const plain = samples > FEW && (moving || samples * this.cost * RICHNESS > STILL);
    if (!plain) return { stride: 1, plain };
    return { stride: strideFor(samples, Math.max(LEAST, (moving ? MOVING : STILL) / this.cost)), plain };
  }

  /** Whether drawings are to be timed. */
  get learns(): boolean {
    return this.samples() > FEW;
  }

  /** Tells how long a drawing of so many stretches took. */
  learn({ plain }: Amount, stretches: number, milliseconds: number): void {
    if (plain && stretches > LEAST / 2) this.cost = 0.7 * this.cost + 0.3 * (milliseconds / stretches);
  }
}
