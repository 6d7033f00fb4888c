// What a Worker does with the engine for a page: one open scene with its trails, edits of it, and the rebuilding of trails
// in slices between requests. It knows nothing of Workers: whoever makes it passes on its events and turns its clock.

import type { Key } from "../animation";
import type { Engine } from "../engine";
import { EngineError } from "../errors";
import type { CameraView, Form, History, Scene, Written } from "../scene";
import type { Trails } from "../trails";
import { Drag } from "./drag";
import type { Grip, Pull } from "./grips";
import { channelCurves, pathTangents, unify, type ChannelCurve, type PathTangents } from "./keys";
import { ownBuffers, trailNumbers } from "./numbers";
import type { Dragged, LiveEvent, Measure, Opened, TrailNumbers, Wanted } from "./protocol";
import { keysOf, setTangentKind, setWeighted, tangentKinds, type KeyKind, type Keys, type OwnKey } from "./tangent_edits";
import type { TangentKind } from "./tangent_kinds";

/** Seconds of rebuilding at a time: requests wait no longer. */
const SLICE = 0.008;
/** Milliseconds between looks at an engine that waits for the edits to end. */
const WAIT = 20;
/** Milliseconds between two events about trails while there are more to come. */
const TELL = 60;

export interface Surroundings {
  tell(event: LiveEvent, transfer: ArrayBuffer[]): void;
  later(run: () => void, milliseconds: number): void;
  now(): number;
}

interface Shown {
  readonly scene: Scene;
  readonly trails: Trails;
  readonly names: readonly string[];
  /** Of the arrays that were told, by trail. */
  readonly revisions: number[];
  /** The trails whose measures are still to be told. */
  readonly unmeasured: Set<number>;
}

export class LiveHost {
  private shown: Shown | null = null;
  private dragged: Drag | null = null;
  private told = 0;
  /** Whether it is still to be told that all trails are as they should be. */
  private owed = false;
  private waiting = false;

  constructor(private readonly engine: Engine, private readonly around: Surroundings) {}

  /** Opens a scene in place of the one before, which stays when that fails. Throws EngineError. */
  open({ files, reading, trails: wanted }: Wanted): Opened {
    const scene = this.engine.open(files, { ...reading, bounds: true });
    try {
      scene.keepHistory();
      const trails = scene.trails(wanted);
      const fields = Array.from({ length: trails.length }, (_, k) => trails.fields(k));
      const measures = measuresOf(trails.measures(0), fields[0].units);
      this.shown?.scene.close();
      this.dragged = null;
      const all = fields.map((_, k) => k);
      this.shown = { scene, trails, names: measures.map(({ name }) => name), revisions: all.map(() => -1), unmeasured: new Set(all) };
      this.rebuild();
      const description = scene.describe();
      return { description, fields, numbers: this.changed(), measures, history: scene.history(), cameras: scene.cameras(),
        statics: scene.statics(description.range[0]) };
    } catch (error) {
      if (this.shown?.scene !== scene) scene.close();
      throw error;
    }
  }

  undo(): History {
    return this.edit((scene) => scene.undo());
  }

  redo(): History {
    return this.edit((scene) => scene.redo());
  }

  /** Keys of a channel, as Scene.keys has them. */
  keys(object: string, attribute: string): Key[] {
    return this.current().scene.keys(object, attribute);
  }

  /** Keys that leave the curves of these objects as they are. */
  insertKeys(objects: readonly string[], frame: number): History {
    return this.step("insert key", objects, (scene, object) => scene.insertKeys(object, undefined, frame));
  }

  removeKeys(objects: readonly string[], frame: number): History {
    return this.step("remove key", objects, (scene, object) => scene.removeKeys(object, undefined, frame));
  }

  /** In time. Throws EngineError where one would reach a neighbour, and moves none then. */
  moveKeys(objects: readonly string[], frame: number, to: number): History {
    return this.step("move key in time", objects, (scene, object) => scene.moveKeys(object, undefined, frame, to));
  }

  putKey(object: string, attribute: string, key: Key): History {
    return this.edit((scene) => scene.putKey(object, attribute, key));
  }

  /** An object's, as Scene.worldMatrices has them. */
  matrices(object: string, frames: readonly number[]): Float64Array {
    return this.current().scene.worldMatrices(object, frames);
  }

  /** What a camera sees, one view a frame. */
  lenses(shape: string, frames: readonly number[]): CameraView[] {
    return this.current().scene.cameraViews(shape, frames);
  }

  /** All of the scene's animation as it is now. Throws EngineError where the form cannot hold it. */
  written(form: Form): Written {
    return this.current().scene.written(form);
  }

  /** The tangents of keys at the frame get one slope on both sides. */
  unifyTangents(objects: readonly string[], frame: number): History {
    return this.step("unify tangents", objects, (scene, object) => unify(scene, object, frame));
  }

  /** Of keys at a frame. */
  tangentKinds(keys: Keys): KeyKind[] {
    return tangentKinds(this.current().scene, keys);
  }

  /** Throws EngineError where there is no such key. */
  setTangentKind(keys: Keys, kind: TangentKind): History {
    return this.step(`${kind} tangents`, this.present(keys), (scene, key) => setTangentKind(scene, key, kind));
  }

  /** Of the curves of these keys: whether the lengths of tangents count. Throws EngineError where there is no such key. */
  setWeighted(keys: Keys, weighted: boolean): History {
    return this.step(weighted ? "weigh tangents" : "unweigh tangents", this.present(keys),
      (scene, key) => setWeighted(scene, key, weighted));
  }

  /** Those of objects at a frame, null for one without a key of its position then. */
  pathTangents(objects: readonly string[], frame: number): (PathTangents | null)[] {
    return objects.map((object) => pathTangents(this.current().scene, object, frame));
  }

  /** With their values at these frames. */
  channelCurves(object: string, frames: Float64Array): ChannelCurve[] {
    return channelCurves(this.current().scene, object, frames);
  }

  /** From here to endDrag all that happens is one step. Throws EngineError with the reason where that cannot be dragged. */
  beginDrag(grip: Grip): void {
    this.giveUpDrag();
    const { scene, trails } = this.current();
    this.dragged = new Drag(scene, trails, grip);
  }

  /** Throws EngineError where what is held does not go there. */
  drag(to: Pull): Dragged {
    if (!this.dragged) throw new Error("no key is being dragged");
    const dragged = this.dragged.pull(to);
    this.rebuild();
    return dragged;
  }

  /** Not `kept`: all is as before. */
  endDrag(kept: boolean): History {
    const { scene } = this.current();
    this.dragged?.end(kept);
    this.dragged = null;
    this.rebuild();
    return scene.history();
  }

  private present(keys: Keys): OwnKey[] {
    const found = keysOf(this.current().scene, keys);
    if (found.length === 0) throw new EngineError(`no curve has a key at frame ${keys.frame}`, "refused", 0);
    return found;
  }

  private giveUpDrag() {
    this.dragged?.end(true);
    this.dragged = null;
  }

  /** All of it, or nothing. */
  private step<T>(name: string, items: readonly T[], run: (scene: Scene, item: T) => void): History {
    return this.edit((scene) => {
      const before = scene.history().undo.length;
      try {
        scene.step(name, () => items.forEach((item) => run(scene, item)));
      } catch (error) {
        if (scene.history().undo.length > before) scene.undo();
        throw error;
      }
    });
  }

  private edit(run: (scene: Scene) => void): History {
    this.giveUpDrag();
    const { scene } = this.current();
    run(scene);
    this.rebuild();
    return scene.history();
  }

  private current(): Shown {
    if (!this.shown) throw new Error("no scene is open");
    return this.shown;
  }

  /** After an edit: trails are made again, and that this is done is told. */
  private rebuild() {
    this.owed = true;
    this.goOn(WAIT);
  }

  /** Rebuilds by and by; one turn at a time waits. */
  private goOn(milliseconds: number) {
    if (this.waiting) return;
    this.waiting = true;
    this.around.later(() => {
      this.waiting = false;
      this.turn();
    }, milliseconds);
  }

  private turn() {
    if (!this.shown) return;
    const { pending, worked, item, items } = this.shown.scene.pump(SLICE);
    const { now, tell } = this.around;
    if (pending ? worked && now() - this.told > TELL : this.owed) {
      const numbers = this.changed();
      this.told = now();
      this.owed = pending;
      tell({ kind: "trails", numbers, pending, done: item, of: items }, ownBuffers(numbers));
    }
    if (pending) this.goOn(worked ? 0 : WAIT);
    else if (this.shown.unmeasured.size > 0) this.measure(this.shown);
  }

  /** Works out measures for the time of a slice. */
  private measure({ trails, names, unmeasured }: Shown) {
    const end = this.around.now() + 1000 * SLICE;
    const values: [number, (number | null)[]][] = [];
    for (const index of unmeasured) {
      unmeasured.delete(index);
      const measures = trails.measures(index);
      values.push([index, names.map((name) => (measures[name] ?? null) as number | null)]);
      if (this.around.now() > end) break;
    }
    this.around.tell({ kind: "measures", values }, []);
    if (unmeasured.size > 0) this.goOn(0);
  }

  /** The numbers of the trails whose arrays are others than those that were told. */
  private changed(): TrailNumbers[] {
    const { trails, revisions, unmeasured } = this.current();
    const found: TrailNumbers[] = [];
    revisions.forEach((known, index) => {
      const arrays = trails.arrays(index);
      if (arrays.revision === known) return;
      revisions[index] = arrays.revision;
      unmeasured.add(index);
      found.push(trailNumbers(index, arrays));
    });
    return found;
  }
}

/** The measures that are one number each, in their order. */
function measuresOf(of: Record<string, unknown>, units: Record<string, string>): Measure[] {
  return Object.keys(of).filter((name) => !Array.isArray(of[name])).map((name) => ({ name, unit: units[name] ?? "1" }));
}
