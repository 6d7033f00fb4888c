// Numbers and units as a reader wants them.

export const unitName = (unit: string): string => (unit === "unknown" ? "units" : unit);

export const frameText = (frame: number): string => String(Number(frame.toFixed(3)));

/** A length with four digits that count; nothing that is not finite. */
export const lengthText = (value: number): string => (Number.isFinite(value) ? String(Number(value.toPrecision(4))) : "none");
