// The clock that the engine reads after every sample. Asking for the time costs a third of a sample, so while readings
// follow each other quickly most of them repeat the last one: a sample then takes four fifths of the time. See
// tools/web.py times, and for the plain way a `read` that returns `this.source()`.

/** Milliseconds since 1970, with fractions, never back. */
export type Clock = () => number;

const origin = performance.timeOrigin;  // to ask for it each time costs as much as the time itself
export const systemClock: Clock = () => origin + performance.now();

/** How many readings may repeat one, and within how many milliseconds as many have to have followed each other before. */
export const REPEATS = 7, SHORT = 0.02;

/** Repeats readings while SHORT held for those before, so it is behind by what REPEATS samples take, some microseconds. */
export class SparingClock {
  private last = -Infinity;
  private left = 0;

  constructor(private readonly source: Clock) {}

  readonly read: Clock = () => {
    if (this.left > 0) {
      --this.left;
      return this.last;
    }
    const now = this.source();
    this.left = now - this.last < SHORT ? REPEATS : 0;
    this.last = now;
    return now;
  };

  /** The next reading asks for the time: unknown time has passed. */
  look(): void {
    this.left = 0;
  }
}
