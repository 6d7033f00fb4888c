// Numbers and units as a reader wants them.

export const unitName = (unit: string): string => (unit === "unknown" ? "units" : unit);

/** Beyond these, a number is written with its power of ten: nobody counts zeros. */
const [LEAST, MOST] = [1e-4, 1e7];

const short = (text: string) => text.replace("e+", "e");

/** A number with so many digits that count; "none" for what is not finite. */
export function numberText(value: number, digits: number): string {
  if (!Number.isFinite(value)) return "none";
  const rounded = Number(value.toPrecision(digits));
  const size = Math.abs(rounded);
  return short(size !== 0 && (size < LEAST || size >= MOST) ? rounded.toExponential() : String(rounded));
}

/** Frames differ by little however large they are, and a thousandth of one is nothing. */
export const frameText = (frame: number): string => {
  const rounded = Number(frame.toFixed(3));
  return short(String(Math.abs(rounded) >= 1e15 ? Number(rounded.toPrecision(9)) : rounded || 0));
};

export const lengthText = (value: number): string => numberText(value, 4);

/** A file's name without its folders. */
export const baseName = (path: string): string => path.split(/[\\/]/).pop() || path;

/** The smallest of 1, 2, 5, 10, 20 ... (also .1, .2, .5 ...) that is not below `least`. */
export function niceStep(least: number): number {
  const power = 10 ** Math.floor(Math.log10(least));
  const factor = [1, 2, 5].find((each) => each * power >= least * (1 - 1e-9)) ?? 10;
  return factor * power;
}
