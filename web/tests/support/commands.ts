// What both engines are made to do to a scene, and what came of it here. tests/web/native_results.cpp does the same.

import { EngineError, FORMS, Tangent, type Engine, type Form, type Key, type Scene, type SceneFile, type Trails } from "../../src/index";

export type Command =
  | ["description"] | ["objects"] | ["cameras"] | ["history"] | ["trails"] | ["undo"] | ["redo"] | ["follow"] | ["pump"]
  | ["curves", string]
  | ["written", Form]
  | ["time", number, number]
  | ["keys", string, string?]
  | ["statics", number]
  | ["matrices" | "above" | "place", string, ...number[]]
  | ["placing" | "sliding", string, number]
  | ["slide", string, number, number, number, number]
  | ["provisional", string, number, number]
  | ["tangents", string, string]
  | ["moveKeys" | "insertKeys" | "removeKeys" | "setTangent" | "setWeighted", string, string, ...number[]]
  | ["values" | "set" | "move" | "put" | "remove", string, string, ...number[]];

export type Results = Map<string, Uint8Array>;

const encoder = new TextEncoder();
const bytesOf = (numbers: Float64Array) => new Uint8Array(numbers.slice().buffer);
export const numbersOf = (key: Key) => [key.frame, key.value, key.in, key.out, key.inX, key.inY, key.outX, key.outY];

/** Frames in between keys too, and outside of the range. */
function framesOf(scene: Scene): number[] {
  const [first, last] = scene.describe().range;
  return [first, last, (first + last) / 2 + 0.3, first - 2.5, last + 7.25];
}

/** All that can be asked about a scene. */
export function questions(scene: Scene): Command[] {
  const frames = framesOf(scene);
  return [
    ["description"], ["objects"], ["cameras"], ["history"], ["trails"], ["statics", frames[0]],
    ...scene.objects().flatMap(({ source }): Command[] => [
      ["matrices", source, ...frames], ["above", source, ...frames], ["curves", source], ["keys", source],
      ...scene.curves(source).flatMap(({ attribute }): Command[] =>
        [["keys", source, attribute], ["tangents", source, attribute], ["values", source, attribute, ...frames]]),
    ]),
  ];
}

/** Some of each sort, on the first objects that have keys, and on one channel that need not have any. */
function edits(scene: Scene): Command[] {
  const keyed = scene.objects().filter(({ source }) => scene.curves(source).length > 0).slice(0, 3);
  const made = keyed.flatMap(({ source }): Command[] => scene.curves(source).slice(0, 2).flatMap(({ attribute }) => {
    const keys = scene.keys(source, attribute);
    if (keys.length === 0) return [];
    const middle = keys[keys.length >> 1], last = keys[keys.length - 1];
    const fixed = { ...middle, in: Tangent.fixed, out: Tangent.fixed, inX: 0.25, inY: 1.5, outX: 0.125, outY: -0.75 };
    return [
      ["set", source, attribute, middle.frame, 1.5],
      ["set", source, attribute, middle.frame + 0.375, 2.25],
      ["put", source, attribute, ...numbersOf({ ...fixed, value: middle.value + 0.1 })],
      ["move", source, attribute, last.frame, last.frame + 0.25],
      ["remove", source, attribute, keys[0].frame],
      ["insertKeys", source, "", middle.frame + 0.625],
      ["moveKeys", source, attribute, middle.frame + 0.625, middle.frame + 0.5],
      ["setWeighted", source, attribute, 1],
      ["setTangent", source, attribute, middle.frame, 0.2, 1.25, 1, 1],
      ["placing", source, middle.frame],
      ["sliding", source, middle.frame + 0.25],
      ["slide", source, middle.frame + 0.25, middle.frame + 0.3, 0, 0],
      ["place", source, middle.frame, 1.25, -3.5, 0.75],
      ["provisional", source, middle.frame - 5, middle.frame + 5],
    ];
  }));
  const [object] = scene.objects();
  return object ? [...made, ["set", object.source, "translateX", 1.5, 3.25], ["move", object.source, "ty", 1e6, 2]] : made;
}

/** Everything, then edits, everything again, all edits undone, everything again, and redone. */
export function script(scene: Scene): Command[] {
  const asked = questions(scene), made = edits(scene);
  const done = made.length;  // as many at the most: those that are refused and those that only ask are none
  const back = Array.from({ length: done }, (): Command => ["undo"]);
  const again = Array.from({ length: done }, (): Command => ["redo"]);
  const files = FORMS.map((form): Command => ["written", form]);
  return [...asked, ...made, ["follow"], ...asked, ...files, ...back, ["pump"], ...asked, ...again, ["pump"], ...asked];
}

/** The commands as the native program reads them. */
export const written = (commands: Command[]) =>
  commands.map((command) => command.map((word) => (Object.is(word, -0) ? "-0" : String(word))).join("\t") + "\n").join("");

export class Exam {
  readonly results: Results = new Map();
  private row = 0;

  constructor(private readonly scene: Scene, private readonly trails: Trails | undefined) {}

  run(command: Command) {
    const label = `${this.row++} ${command[0]}`;
    keep(this.results, label, () => this.answer(label, command));
  }

  private answer(label: string, command: Command) {
    const { scene, results } = this;
    const text = (value: unknown) => void results.set(label, encoder.encode(JSON.stringify(value)));
    const numbers = (values: Float64Array) => void results.set(label, bytesOf(values));
    switch (command[0]) {
      case "description": return text(scene.describe());
      case "objects": return text(scene.objects());
      case "cameras": return text(scene.cameras());
      case "history": return text(scene.history());
      case "curves": return text(scene.curves(command[1]));
      case "trails": return this.arrays(label);
      case "written": return this.file(label, command[1]);
      case "matrices": return numbers(scene.worldMatrices(command[1], command.slice(2) as number[]));
      case "above": return numbers(scene.matricesAbove(command[1], command.slice(2) as number[]));
      case "statics": return text(scene.statics(command[1]));
      case "values": return numbers(scene.channelValues(command[1], command[2], command.slice(3) as number[]));
      case "keys":
        return numbers(command[2] === undefined ? scene.keyTimes(command[1])
          : Float64Array.from(scene.keys(command[1], command[2]).flatMap(numbersOf)));
      case "tangents":
        return numbers(Float64Array.from(scene.tangents(command[1], command[2]).flatMap((t) => [t.inX, t.inY, t.outX, t.outY])));
      case "placing": return text(scene.placing(command[1], command[2]));
      case "sliding": return text(scene.sliding(command[1], command[2]));
      case "slide": return scene.slideBead(command[1], command[2], command[3], { before: command[4] !== 0, after: command[5] !== 0 });
      case "place": return scene.placeKey(command[1], command[2] as number, command.slice(3) as [number, number, number]);
      case "provisional": return this.stretches(label, command[1], command[2], command[3]);
      case "moveKeys": return scene.moveKeys(command[1], command[2], command[3], command[4]);
      case "insertKeys": return scene.insertKeys(command[1], command[2], command[3]);
      case "removeKeys": return scene.removeKeys(command[1], command[2], command[3]);
      case "setTangent": return this.turn(command[1], command[2], command.slice(3) as number[]);
      case "setWeighted": return scene.setWeighted(command[1], command[2], command[3] !== 0);
      case "undo": return scene.undo();
      case "redo": return scene.redo();
      case "follow": return scene.follow();
      case "pump":
        while (scene.pump(0.001).pending) continue;
        return;
      case "time": return numbers(this.seconds(command[1], command[2]));
      default: return this.edit(command);
    }
  }

  /** The trails of all objects made anew, so often: the seconds that each time takes. */
  private seconds(samplesPerFrame: number, turns: number): Float64Array {
    return Float64Array.from({ length: turns }, () => {
      const begin = performance.now();
      const made = this.scene.trails({ all: true, samplesPerFrame, colorMode: 1 });
      const end = performance.now();
      made.letGo();
      return (end - begin) / 1000;
    });
  }

  private edit(command: Command) {
    const [what, object, attribute, ...given] = command as ["set" | "move" | "put" | "remove", string, string, ...number[]];
    if (what === "set") this.scene.setKey(object, attribute, given[0], given[1]);
    else if (what === "move") this.scene.moveKey(object, attribute, given[0], given[1]);
    else if (what === "remove") this.scene.removeKey(object, attribute, given[0]);
    else {
      const [frame, value, sortIn, sortOut, inX, inY, outX, outY] = given;
      this.scene.putKey(object, attribute, { frame, value, in: sortIn as Tangent, out: sortOut as Tangent, inX, inY, outX, outY });
    }
  }

  private turn(object: string, attribute: string, [frame, x, y, out, unified]: number[]) {
    this.scene.setTangent(object, attribute, frame, out !== 0 ? "out" : "in", x, y, unified !== 0);
  }

  private file(label: string, form: Form) {
    const { bytes, lost } = this.scene.written(form);
    this.results.set(label, bytes).set(`${label} lost`, encoder.encode(JSON.stringify(lost)));
  }

  private stretches(label: string, object: string, first: number, last: number) {
    for (const { trail, first: from, points } of this.trails?.provisional(object, first, last) ?? [])
      this.results.set(`${label} trail ${trail} from ${from}`, bytesOf(points));
  }

  private arrays(label: string) {
    for (let k = 0; k < (this.trails?.length ?? 0); ++k) {
      const { revision, ...arrays } = this.trails!.arrays(k);
      if (revision < 0) throw new Error("a revision is a count");
      for (const [name, values] of Object.entries(arrays)) this.results.set(`${label} trail ${k} ${name}`, bytesOf(values));
    }
  }
}

/** Runs something that may fail, which is a result like any other. */
export function keep(results: Results, label: string, run: () => void): boolean {
  try {
    run();
    return true;
  } catch (error) {
    if (!(error instanceof EngineError)) throw error;
    results.set(`${label} fails`, encoder.encode(`${error.kind}\n${error.message}\n${error.line}`));
    return false;
  }
}

/**
 * What comes of a scene here; with the commands that it was given. Each is asked for when those before it are done, so a
 * generator may look at the scene.
 */
export function examine(engine: Engine, files: SceneFile[], take: string,
  make: (scene: Scene) => Iterable<Command> = script): { results: Results; commands: Command[] } {
  const results: Results = new Map();
  let scene: Scene | undefined, trails: Trails | undefined;
  if (!keep(results, "open", () => { scene = engine.open(files, { take, bounds: true }); })) return { results, commands: [] };
  try {
    scene!.keepHistory();
    if (!keep(results, "make", () => { trails = scene!.trails({ all: true, samplesPerFrame: 2, colorMode: 1 }); }))
      return { results, commands: [] };
    const commands: Command[] = [], exam = new Exam(scene!, trails);
    for (const command of make(scene!)) {
      commands.push(command);
      exam.run(command);
    }
    return { results: new Map([...results, ...exam.results]), commands };
  } finally {
    scene!.close();
  }
}
