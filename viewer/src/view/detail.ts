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
const MOVING = 20;
const STILL = 350;

/** Stretches that are drawn however long they take: fewer would not look like the trails any more. */
const LEAST = 16_000;

/** How many times longer a full drawing takes than a plain one, and one with smooth edges, where software fills the pixels. */
const RICHNESS = 4;
const SMOOTHNESS = 2.5;

/** Milliseconds that it takes to empty, smooth and fetch a picture, however little is in it. */
const EMPTY = 20;

/** Milliseconds that a part of a picture may take, which is then drawn as well as the rest. */
const QUICK = 50;

/** While something moves, one drawing in so many is timed: to time it is to wait for it. */
const TIMED = 8;

/** Learns from the times of past drawings how much the next one may hold. */
export class Detail {
  /** Milliseconds per stretch of a plain drawing with rough edges; the first value is that of slow software. */
  private cost = 1e-3;
  /** Milliseconds of a full drawing with smooth edges. */
  private full = 2 * MOVING;
  private drawings = 0;

  constructor(private readonly samples: () => number) {}

  drawing(moving: boolean): Amount {
    const samples = this.samples();
    const { cost } = this;
    const plain = samples > FEW && (moving || samples * cost * RICHNESS * SMOOTHNESS > STILL);
    const smooth = !moving || (!plain && this.full < MOVING);
    if (!plain) return { stride: 1, plain, smooth };
    const budget = moving ? MOVING / cost : STILL / cost / SMOOTHNESS;
    return { stride: strideFor(samples, Math.max(LEAST, budget)), plain, smooth };
  }

  /** Whether it is quick to draw a part of the stretches, which take a part of the picture, with smooth edges. */
  isQuick({ plain }: Amount, stretches: number, ofAll: number, ofPicture: number): boolean {
    const lines = plain ? stretches * this.cost * SMOOTHNESS : Math.max(0, this.full - EMPTY) * ofAll;
    return lines + EMPTY * ofPicture < QUICK;
  }

  /** Whether the next drawing is to be timed. The first ones hold more than the drawing: programs are made ready. */
  timed(moving: boolean): boolean {
    const count = this.drawings++;
    return count > 1 && (!moving || count % TIMED === 0);
  }

  /** Tells how long a drawing of so many stretches took. */
  learn({ plain, smooth }: Amount, stretches: number, milliseconds: number): void {
    const mean = (old: number, now: number) => 0.7 * old + 0.3 * now;
    const rough = milliseconds / (smooth ? SMOOTHNESS : 1);
    if (!plain) this.full = mean(this.full, rough * SMOOTHNESS);
    else if (stretches > LEAST / 4) this.cost = mean(this.cost, rough / stretches);
  }
}
