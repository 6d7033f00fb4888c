// Readings of the clock that repeat the one before.

import { describe, expect, test } from "vitest";
import { REPEATS, SHORT, SparingClock } from "../src/index";

/** A clock on a source that the test sets, and how often that was asked. */
function onSource() {
  const source = { time: 1000, asked: 0 };
  const clock = new SparingClock(() => (++source.asked, source.time));
  return { source, clock };
}

describe("a sparing clock", () => {
  test("asks each time while readings are far apart", () => {
    const { source, clock } = onSource();
    for (let reading = 0; reading < 20; ++reading) {
      source.time += 2 * SHORT;
      expect(clock.read()).toBe(source.time);
    }
    expect(source.asked).toBe(20);
  });

  test("asks for one reading of some that follow each other quickly", () => {
    const { source, clock } = onSource();
    clock.read();
    for (let reading = 0; reading < 10 * (REPEATS + 1); ++reading) clock.read();
    expect(source.asked).toBe(1 + 10);
  });

  test("is behind by as many readings as may repeat one, and then by none", () => {
    const { source, clock } = onSource();
    clock.read();
    clock.read();
    const readings = Array.from({ length: REPEATS + 3 }, () => (source.time += 1, clock.read()));
    expect(readings.slice(0, REPEATS)).toEqual(Array(REPEATS).fill(1000));
    expect(readings.slice(REPEATS)).toEqual([1001, 1002, 1003].map((time) => time + REPEATS));
  });

  test("asks after it was told to", () => {
    const { source, clock } = onSource();
    clock.read();
    clock.read();
    source.time += 200;
    clock.look();
    expect(clock.read()).toBe(1200);
  });

  test("never goes back while its source does not", () => {
    const { source, clock } = onSource();
    let last = clock.read();
    for (let reading = 0; reading < 500; ++reading) {
      source.time += reading % 37 ? 1e-4 : 0.3;
      const now = clock.read();
      expect(now).toBeGreaterThanOrEqual(last);
      last = now;
    }
  });
});
