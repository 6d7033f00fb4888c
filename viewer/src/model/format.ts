// Numbers and units as a reader wants them.

export const unitName = (unit: string): string => (unit === "unknown" ? "units" : unit);

export const frameText = (frame: number): string => String(Number(frame.toFixed(3)));

/** A number with so many digits that count; "none" for what is not finite. */
export const numberText = (value: number, digits: number): string =>
  Number.isFinite(value) ? String(Number(value.toPrecision(digits))) : "none";

export const lengthText = (value: number): string => numberText(value, 4);

/** A file's name without its folders. */
export const baseName = (path: string): string => path.split(/[\\/]/).pop() || path;
