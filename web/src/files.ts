// The few calls of WASI that the engine makes: a folder of files in memory, which is only read, and standard error.

/** A file as it is handed in. The name may have folders in it, with "/" between. */
export interface SceneFile {
  name: string;
  bytes: Uint8Array;
}

const SUCCESS = 0, BADF = 8, INVAL = 28, NOENT = 44, NOSYS = 52;
const FOLDER = 3, REGULAR = 4;  // kinds of files
const STDERR = 2, ROOT = 3;  // descriptors; files come behind them
const ALL_RIGHTS = 0xffffffffn;

interface OpenFile {
  bytes: Uint8Array;
  place: number;
}

type Call = (...given: number[]) => number;

/** Texts for people: what is not UTF-8 is replaced. */
export const decoder = new TextDecoder();
export const encoder = new TextEncoder();

export class Files {
  /** What the engine said on standard error last; after a crash it tells why. */
  lastWords = "";

  private readonly files = new Map<string, Uint8Array>();
  private readonly folders = new Set<string>([""]);
  private readonly open = new Map<number, OpenFile>();

  constructor(private readonly memory: () => WebAssembly.Memory) {}

  /** From here on these are the files; with none, none is held. */
  hold(files: readonly SceneFile[]) {
    this.files.clear();
    this.folders.clear();
    this.folders.add("");
    for (const { name, bytes } of files) {
      const path = normal(name);
      this.files.set(path, bytes);
      for (let end = path.lastIndexOf("/"); end > 0; end = path.lastIndexOf("/", end - 1))
        this.folders.add(path.slice(0, end));
    }
  }

  /** The import of that name; one that nothing here needs says so when it is called. */
  call(name: string): unknown {
    const calls: Record<string, Call> = {
      fd_close: (fd) => (this.open.delete(fd) ? SUCCESS : BADF),
      fd_fdstat_get: (fd, at) => this.describe(fd, at),
      fd_filestat_get: (fd, at) => this.stat(this.open.get(fd)?.bytes, fd === ROOT, at, BADF),
      fd_prestat_dir_name: (_fd, at) => (this.data().setUint8(at, 0x2f), SUCCESS),
      fd_prestat_get: (fd, at) => this.root(fd, at),
      fd_read: (fd, vectors, count, at) => this.read(fd, vectors, count, at),
      fd_write: (fd, vectors, count, at) => this.write(fd, vectors, count, at),
      path_filestat_get: (_fd, _flags, path, length, at) => {
        const name = this.path(path, length);
        return this.stat(this.files.get(name), this.folders.has(name), at, NOENT);
      },
      environ_get: () => SUCCESS,
      environ_sizes_get: (count, size) => (this.number(count, 0), this.number(size, 0), SUCCESS),
      // Nothing here is secret, and results are the same each time.
      random_get: (at, length) => (new Uint8Array(this.memory().buffer, at, length).fill(1), SUCCESS),
    };
    if (name === "proc_exit") return () => { throw new Error(this.lastWords || "the engine has ended"); };
    // These two have arguments of 64 bits.
    if (name === "path_open") return (...given: unknown[]) => this.begin(...(given as number[]));
    if (name === "fd_seek") return (fd: number, by: bigint, from: number, at: number) => this.seek(fd, Number(by), from, at);
    return calls[name] ?? (() => NOSYS);
  }

  private data() {
    return new DataView(this.memory().buffer);
  }

  private number(at: number, value: number) {
    this.data().setUint32(at, value, true);
  }

  private path(at: number, length: number) {
    return normal(decoder.decode(new Uint8Array(this.memory().buffer, at >>> 0, length).slice()));
  }

  private root(fd: number, at: number) {
    if (fd !== ROOT) return BADF;
    this.number(at, 0);
    this.number(at + 4, 1);
    return SUCCESS;
  }

  private describe(fd: number, at: number) {
    if (fd > ROOT && !this.open.has(fd)) return BADF;
    const data = this.data();
    data.setUint8(at, fd === ROOT ? FOLDER : REGULAR);
    data.setUint16(at + 2, 0, true);
    data.setBigUint64(at + 8, ALL_RIGHTS, true);
    data.setBigUint64(at + 16, ALL_RIGHTS, true);
    return SUCCESS;
  }

  private stat(bytes: Uint8Array | undefined, folder: boolean, at: number, missing: number) {
    if (!bytes && !folder) return missing;
    const data = this.data();
    for (let k = 0; k < 64; k += 8) data.setBigUint64(at + k, 0n, true);
    data.setUint8(at + 16, bytes ? REGULAR : FOLDER);
    data.setBigUint64(at + 24, 1n, true);
    data.setBigUint64(at + 32, BigInt(bytes?.length ?? 0), true);
    return SUCCESS;
  }

  /** path_open: the folder, flags, the path and its length, more flags, rights twice, flags, where the descriptor goes. */
  private begin(...given: number[]) {
    const [, , path, length] = given;
    const bytes = this.files.get(this.path(path, length));
    if (!bytes) return NOENT;
    let fd = ROOT + 1;
    while (this.open.has(fd)) ++fd;
    this.open.set(fd, { bytes, place: 0 });
    this.number(given[8], fd);
    return SUCCESS;
  }

  private read(fd: number, vectors: number, count: number, at: number) {
    const file = this.open.get(fd);
    if (!file) return BADF;
    const start = file.place;
    for (let k = 0; k < count; ++k) {
      const piece = this.piece(vectors + 8 * k);
      const taken = file.bytes.subarray(file.place, file.place + piece.length);
      piece.set(taken);
      file.place += taken.length;
    }
    this.number(at, file.place - start);
    return SUCCESS;
  }

  private seek(fd: number, by: number, from: number, at: number) {
    const file = this.open.get(fd);
    if (!file) return BADF;
    const place = by + [0, file.place, file.bytes.length][from];
    if (!(place >= 0)) return INVAL;
    file.place = place;
    this.data().setBigUint64(at, BigInt(place), true);
    return SUCCESS;
  }

  private write(fd: number, vectors: number, count: number, at: number) {
    if (fd !== STDERR) return BADF;
    let size = 0;
    this.lastWords = "";
    for (let k = 0; k < count; ++k) {
      const piece = this.piece(vectors + 8 * k);
      this.lastWords += decoder.decode(piece.slice());
      size += piece.length;
    }
    this.number(at, size);
    return SUCCESS;
  }

  private piece(vector: number) {
    const data = this.data();
    return new Uint8Array(this.memory().buffer, data.getUint32(vector, true), data.getUint32(vector + 4, true));
  }
}

/** Without ".", ".." that leads back, and "/" at the ends. */
function normal(path: string): string {
  const parts: string[] = [];
  for (const part of path.split("/")) {
    if (part === "..") parts.pop();
    else if (part !== "" && part !== ".") parts.push(part);
  }
  return parts.join("/");
}
