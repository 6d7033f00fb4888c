// What lies in the engine's memory: numbers, texts, and room for what it is given.

import { decoder, encoder } from "./files";

/** Functions of the engine by their names in web/exports.txt. */
export type Calls = Record<string, (...given: number[]) => number>;

/** Where an array begins and how many doubles it has. */
export interface Place {
  at: number;
  count: number;
}

export class Memory {
  private readonly taken: number[] = [];
  private buffer: ArrayBufferLike;
  private moves = 0;

  constructor(private readonly memory: WebAssembly.Memory, private readonly calls: Calls) {
    this.buffer = memory.buffer;
  }

  /** Another whenever the memory has moved: views of it from before hold nothing any more. */
  get epoch() {
    if (this.buffer !== this.memory.buffer) {
      this.buffer = this.memory.buffer;
      ++this.moves;
    }
    return this.moves;
  }

  /** Of all memory that the engine has, in bytes; it never becomes less. */
  get size() {
    return this.memory.buffer.byteLength;
  }

  /** Runs something that takes room, all of which is given back afterwards. */
  scope<T>(run: () => T): T {
    const before = this.taken.length;
    try {
      return run();
    } finally {
      while (this.taken.length > before) this.calls.free(this.taken.pop()!);
    }
  }

  /** Room for so many bytes, zeroed, until the scope ends. */
  take(bytes: number): number {
    const at = this.calls.malloc(Math.max(bytes, 1)) >>> 0;
    if (at === 0) throw new RangeError("the engine's memory is full");
    this.taken.push(at);
    new Uint8Array(this.memory.buffer, at, bytes).fill(0);
    return at;
  }

  text(text: string): number {
    const bytes = encoder.encode(text);
    const at = this.take(bytes.length + 1);
    new Uint8Array(this.memory.buffer, at, bytes.length).set(bytes);
    return at;
  }

  /** An array of addresses of texts. */
  texts(texts: readonly string[]): number {
    const at = this.take(4 * texts.length);
    texts.forEach((text, k) => this.setWord(at + 4 * k, this.text(text)));
    return at;
  }

  numbers(values: ArrayLike<number>): number {
    const at = this.take(8 * values.length);
    new Float64Array(this.memory.buffer, at, values.length).set(values);
    return at;
  }

  /** A view, until the epoch is another or the engine gives the array up. */
  view({ at, count }: Place): Float64Array {
    return count === 0 ? new Float64Array(0) : new Float64Array(this.memory.buffer, at, count);
  }

  word(at: number) {
    return new DataView(this.memory.buffer).getUint32(at, true);
  }

  setWord(at: number, value: number) {
    new DataView(this.memory.buffer).setUint32(at, value, true);
  }

  setInteger64(at: number, value: number) {
    new DataView(this.memory.buffer).setBigInt64(at, BigInt(value), true);
  }

  setDouble(at: number, value: number) {
    new DataView(this.memory.buffer).setFloat64(at, value, true);
  }

  /** The text at an address; what is not UTF-8 in it is replaced. */
  textAt(at: number): string {
    const bytes = new Uint8Array(this.memory.buffer, at >>> 0);
    return decoder.decode(bytes.slice(0, bytes.indexOf(0)));
  }

  /** A copy of so many bytes. */
  bytesAt(at: number, count: number): Uint8Array<ArrayBuffer> {
    return new Uint8Array(this.memory.buffer, at, count).slice();
  }

  /** A struct of an address and a count. */
  place(at: number): Place {
    return { at: this.word(at), count: this.word(at + 4) };
  }
}
