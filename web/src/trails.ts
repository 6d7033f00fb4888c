// The trails of one request, which follow edits of their scene.

import type { Engine } from "./engine";
import type { Scene } from "./scene";

export interface TrailOptions {
  /** Patterns of names or paths; none: what is animated. */
  patterns?: readonly string[];
  exclude?: readonly string[];
  ignoreCase?: boolean;
  /** Every object. */
  all?: boolean;
  samplesPerFrame?: number;
  /** 0 standard, 1 spacing, 2 flow, 3 beats. */
  colorMode?: 0 | 1 | 2 | 3;
  /** Frames; the scene's own ends otherwise. */
  first?: number;
  last?: number;
}

/** What a trail is, besides its arrays; in the words of the program's JSON. */
export interface TrailFields {
  viz: string;
  source: string;
  name: string;
  node: number | null;
  parent: string | null;
  samples_per_frame: number;
  color_mode: number;
  start_frame: number;
  frame_step: number;
  warnings: string[];
  length: number;
  mean_speed: number;
  top_speed: number;
  mean_speed_per_frame: number;
  top_speed_per_frame: number;
  units: Record<string, string>;
}

/**
 * Views of the engine's arrays, three doubles a point or colour. They hold until the engine's epoch is another, or until
 * the scene is pumped, followed or closed, or the trails are let go.
 */
export interface TrailArrays {
  points: Float64Array;
  colors: Float64Array;
  keyPoints: Float64Array;
  keyColors: Float64Array;
  keyTimes: Float64Array;
  /** Another whenever the arrays are. */
  revision: number;
}

/** Some of a trail's samples in a row, as they are before the trail is rebuilt. */
export interface Stretch {
  /** Of these trails. */
  trail: number;
  /** The sample that the first point is of. */
  first: number;
  /** A view, three doubles a point, until the next call for stretches, or until the engine's epoch is another. */
  points: Float64Array;
}

export class Trails {
  private gone = false;

  private constructor(
    private readonly engine: Engine,
    private readonly scene: Scene,
    private readonly set: number,
    readonly length: number,
  ) {}

  /** For Scene.trails. */
  static make(engine: Engine, scene: Scene, options: TrailOptions): Trails {
    const { memory } = engine;
    return memory.scope(() => {
      const request = memory.take(56), set = memory.take(4), count = memory.take(4);
      const lists = [options.patterns ?? [], options.exclude ?? []];
      lists.forEach((list, k) => {
        memory.setWord(request + 8 * k, memory.texts(list));
        memory.setWord(request + 8 * k + 4, list.length);
      });
      memory.setWord(request + 16, options.ignoreCase ? 1 : 0);
      memory.setWord(request + 20, options.all ? 1 : 0);
      memory.setInteger64(request + 24, options.samplesPerFrame ?? 0);
      memory.setWord(request + 32, options.colorMode ?? -1);
      memory.setDouble(request + 40, options.first ?? NaN);
      memory.setDouble(request + 48, options.last ?? NaN);
      engine.call("vlx_trails", scene.handle(), request, set, count);
      return new Trails(engine, scene, memory.word(set), memory.word(count));
    });
  }

  letGo() {
    const handle = this.handle();
    this.gone = true;
    this.engine.call("vlx_let_go", this.scene.handle(), handle);
  }

  private handle(): number {
    this.scene.handle();  // it went with the scene
    if (this.gone) throw new Error("the trails were let go; make them again");
    return this.set;
  }

  arrays(index: number): TrailArrays {
    const { memory } = this.engine;
    return memory.scope(() => {
      const at = memory.take(40), revision = memory.take(4);
      this.engine.call("vlx_trail_now", this.handle(), index, at, revision);
      const [points, colors, keyPoints, keyColors, keyTimes] = [0, 8, 16, 24, 32].map((k) => memory.view(memory.place(at + k)));
      return { points, colors, keyPoints, keyColors, keyTimes, revision: memory.word(revision) };
    });
  }

  /**
   * Where the samples between two frames are now, of those trails that move with an object that was edited: what they
   * will be once they are rebuilt.
   */
  provisional(object: string, first = NaN, last = NaN): Stretch[] {
    const { memory } = this.engine;
    return memory.scope(() => {
      const stretches = memory.take(4), count = memory.take(4);
      this.engine.call("vlx_provisional", this.scene.handle(), this.handle(), memory.text(object), first, last, stretches, count);
      const at = memory.word(stretches);
      return Array.from({ length: memory.word(count) }, (_, k) => ({
        trail: memory.word(at + 16 * k), first: memory.word(at + 16 * k + 4), points: memory.view(memory.place(at + 16 * k + 8)),
      }));
    });
  }

  fields(index: number): TrailFields {
    return this.ofTrail(index, (trail, text) => {
      this.engine.call("vlx_trail_text", trail, text);
    }) as TrailFields;
  }

  /** All measures of a trail, in the words of the program's JSON. */
  measures(index: number): Record<string, unknown> {
    return this.ofTrail(index, (trail, text) => {
      this.engine.call("vlx_trail_measures", trail, text);
    }) as Record<string, unknown>;
  }

  private ofTrail(index: number, tell: (trail: number, text: number) => void): unknown {
    const { memory } = this.engine;
    return memory.scope(() => {
      const trail = memory.take(4), text = memory.take(4);
      this.engine.call("vlx_trail", this.handle(), index, trail);
      try {
        tell(memory.word(trail), text);
        return JSON.parse(memory.textAt(memory.word(text)));
      } finally {
        this.engine.calls.vlx_trail_free(memory.word(trail));
      }
    });
  }
}
