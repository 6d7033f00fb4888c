// The engine, loaded from its WebAssembly: one for each Worker or program, with any number of scenes open in it.
//
// Uses neither the page nor Node.js. Every call is made at once and returns when it is done.

import { SparingClock, systemClock, type Clock } from "./clock";
import { EngineCrash, EngineError, type ErrorKind } from "./errors";
import { Files, type SceneFile } from "./files";
import { Memory, type Calls } from "./memory";
import { Scene } from "./scene";

export interface OpenOptions {
  /** Which of the files is the scene; the others are what it refers to. The first, if none is named. */
  scene?: string;
  /** The name of a take or clip, of FBX and glTF. */
  take?: string;
  /** FBX: the axis that is to point up. */
  axis?: "y-up" | "z-up";
  /** FBX: the unit to convert to. */
  unit?: string;
  /** glTF: frames a second. */
  fps?: number;
  /** Whether to find how large surfaces are, for Scene.statics. */
  bounds?: boolean;
}

export class Engine {
  private crash: EngineCrash | undefined;

  private constructor(readonly calls: Calls, readonly memory: Memory, private readonly files: Files,
                      private readonly clock: SparingClock) {}

  /** Starts the engine that `module` holds. */
  static async start(module: WebAssembly.Module, source: Clock = systemClock): Promise<Engine> {
    let memory: WebAssembly.Memory | undefined;
    const files = new Files(() => memory!), clock = new SparingClock(source);
    const imports: Record<string, Record<string, WebAssembly.ImportValue>> = { vantorelix: { now: clock.read } };
    for (const { module: from, name } of WebAssembly.Module.imports(module))
      if (from !== "vantorelix") (imports[from] ??= {})[name] = files.call(name) as WebAssembly.ImportValue;
    const { exports } = await WebAssembly.instantiate(module, imports);
    memory = exports.memory as WebAssembly.Memory;
    const calls = exports as unknown as Calls;
    calls._initialize();
    return new Engine(calls, new Memory(memory, calls), files, clock);
  }

  get version(): string {
    return this.memory.textAt(this.calls.vlx_version());
  }

  /** Another whenever views of the engine's arrays from before are void. */
  get epoch() {
    return this.memory.epoch;
  }

  /** Opens a scene from bytes. Throws EngineError when it cannot be read. */
  open(files: readonly SceneFile[], options: OpenOptions = {}): Scene {
    if (this.crash) throw this.crash;
    const name = options.scene ?? files[0].name;
    return this.withFiles(files, () => this.memory.scope(() => {
      const reading = this.memory.take(32), scene = this.memory.take(4);
      [options.take, options.axis, options.unit].forEach((text, k) =>
        this.memory.setWord(reading + 4 * k, this.memory.text(text ?? "")));
      this.memory.setDouble(reading + 16, options.fps ?? 0);
      this.memory.setWord(reading + 24, options.bounds ? 1 : 0);
      this.call("vlx_open", this.memory.text(name), reading, scene);
      return new Scene(this, this.memory.word(scene), files);
    }));
  }

  /** Runs something that may read these files. */
  withFiles<T>(files: readonly SceneFile[], run: () => T): T {
    this.files.hold(files);
    try {
      return run();
    } finally {
      this.files.hold([]);
    }
  }

  /** Calls a function that returns 0 when it did its work. Throws EngineError, with the engine's text, when it did not. */
  call(name: string, ...given: number[]): void {
    if (this.crash) throw this.crash;
    this.clock.look();
    let failed: number;
    try {
      failed = this.calls[name](...given);
    } catch (error) {
      const reason = this.files.lastWords || String(error);
      this.crash = new EngineCrash(`${name}: the engine broke down (${reason.trim()}); load another`, { cause: error });
      throw this.crash;
    }
    if (failed !== 0) throw this.failure();
  }

  private failure(): EngineError {
    const error = this.calls.malloc(12);
    try {
      this.calls.vlx_error(error);
      const [kind, text, line] = [0, 4, 8].map((at) => this.memory.word(error + at));
      return new EngineError(this.memory.textAt(text), this.memory.textAt(kind) as ErrorKind, line);
    } finally {
      this.calls.free(error);
    }
  }
}
