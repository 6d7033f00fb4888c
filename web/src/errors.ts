// What can go wrong.

export type ErrorKind = "format" | "no_file" | "not_found" | "interrupted" | "refused" | "memory" | "failed";

/** Says what was wrong, in the words of the native program. The engine goes on working. */
export class EngineError extends Error {
  override readonly name = "EngineError";

  constructor(text: string, readonly kind: ErrorKind, /** Of the file, from 1; 0 where none is known. */ readonly line: number) {
    super(text);
  }
}

/** The engine broke down, and all that was open in it is lost; load another. */
export class EngineCrash extends Error {
  override readonly name = "EngineCrash";
}
