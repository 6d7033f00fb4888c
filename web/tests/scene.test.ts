import { join } from "node:path";
import { describe, expect, test } from "vitest";
import { Engine, EngineCrash, EngineError, Tangent, type Scene } from "../src/index";
import { examples, filesOf, startEngine } from "./support/engine";

// A microsecond passes with every look at it, and what is added.
let now = 1e12;
const engine = await startEngine(() => (now += 0.001));
const example = (name: string) => filesOf(examples.find((path) => path.endsWith(join("/", name)))!);

function opened<T>(name: string, run: (scene: Scene) => T): T {
  const scene = engine.open(example(name));
  try {
    return run(scene);
  } finally {
    scene.close();
  }
}

const letters = (text: string) => [...text].map((letter) => letter.charCodeAt(0));
const HIPS = "|Hips";
const height = (scene: Scene, frame = 12) => scene.worldMatrices(HIPS, [frame])[13];


describe("a scene", () => {
  test("tells of its takes, and opens the one that is named", () => {
    const scene = engine.open(example("robot.fbx"), { take: "wave" });
    const { takes, take } = scene.describe();
    expect(takes.map(({ name }) => name)).toEqual(["reach", "wave"]);
    expect(take).toBe(1);
    scene.close();
  });

  test("is refused when the take is not in it, by an error with the native text", () => {
    expect(() => engine.open(example("robot.fbx"), { take: "walk" })).toThrow("there is no take 'walk'");
    expect(() => engine.open(example("walk.bvh"), { take: "walk" }))
      .toThrow(expect.objectContaining({ kind: "failed", message: expect.stringContaining("take is for FBX and glTF scenes") }));
  });

  test("has matrices and channels at any time", () => opened("walk.bvh", (scene) => {
    const matrices = scene.worldMatrices(HIPS, [0, 12.5]);
    expect(matrices.length).toBe(32);
    expect([...scene.channelValues(HIPS, "translateY", [12.5])]).toEqual([matrices[29]]);
  }));

  test("lists the cameras of a Maya file", () => {
    const text = 'createNode transform -n "shotCam";createNode camera -n "shotCamShape" -p "shotCam";' +
      'setAttr ".ff" 3;createNode animCurveTU -n "c";setAttr ".tan" 2;setAttr -s 2 ".ktv[0:1]" 1 50 11 80;' +
      'connectAttr "c.o" "shotCamShape.fl";';
    const scene = engine.open([{ name: "a.ma", bytes: new TextEncoder().encode(text) }]);
    expect(scene.cameras()).toContainEqual({ shape: "|shotCam|shotCamShape", source: "|shotCam", looks: "-z" });
    const [first, second] = scene.cameraViews("|shotCam|shotCamShape", [1, 11]);
    expect([first.focalLength, second.focalLength]).toEqual([50, 80]);
    expect(first).toMatchObject({ fit: "overscan", width: null });
    expect(() => scene.cameraViews("|shotCam", [1])).toThrow(expect.objectContaining({ kind: "not_found" }));
    scene.close();
  });

  test("names an object that is not there", () => opened("walk.bvh", (scene) => {
    expect(() => scene.curves("|Tail")).toThrow(expect.objectContaining({ kind: "not_found" }));
    expect(() => scene.keys(HIPS, "translate")).toThrow(EngineError);
  }));
});

describe("what is gone", () => {
  test("says so, be it a scene or its trails", () => {
    const scene = engine.open(example("walk.bvh")), trails = scene.trails({ patterns: ["LeftFoot"] });
    const others = scene.trails({ patterns: ["RightFoot"] });
    others.letGo();
    expect(() => others.arrays(0)).toThrow("the trails were let go");
    scene.close();
    for (const use of [() => scene.describe(), () => scene.close(), () => trails.arrays(0)])
      expect(use).toThrow("the scene is closed");
  });

  test("includes an engine that broke down, which does nothing any more", async () => {
    // A module of a memory, and of _initialize and crash, of which the latter is but "unreachable".
    const module = new WebAssembly.Module(Uint8Array.from([
      0, 97, 115, 109, 1, 0, 0, 0, 1, 8, 2, 96, 0, 0, 96, 0, 1, 127, 3, 3, 2, 0, 1, 5, 3, 1, 0, 1,
      7, 32, 3, 6, ...letters("memory"), 2, 0, 11, ...letters("_initialize"), 0, 0, 5, ...letters("crash"), 0, 1,
      10, 8, 2, 2, 0, 11, 3, 0, 0, 11,
    ]));
    const broken = await Engine.start(module);
    expect(() => broken.call("crash")).toThrow(EngineCrash);
    expect(() => broken.open(example("walk.bvh"))).toThrow(EngineCrash);
  });
});

describe("keys", () => {
  test("come with their tangents, and go back as they came", () => opened("bounce.ma", (scene) => {
    const { source } = scene.objects().find((object) => scene.curves(object.source).length > 0)!;
    for (const { attribute, keys } of scene.curves(source)) {
      const before = scene.keys(source, attribute);
      expect(before.length).toBe(keys);
      for (const key of before) scene.putKey(source, attribute, key);
      expect(scene.keys(source, attribute)).toEqual(before);
    }
  }));

  test("with fixed tangents bend the motion between them", () => opened("walk.bvh", (scene) => {
    const key = scene.keys(HIPS, "ty").find(({ frame }) => frame === 12)!;
    const before = height(scene, 12.5);
    scene.putKey(HIPS, "ty", { ...key, out: Tangent.fixed, outX: 1, outY: 50 });
    expect(height(scene, 12.5)).not.toBe(before);
    expect(height(scene)).toBe(key.value);
  }));

  test("have no tangent of an unknown sort", () => opened("walk.bvh", (scene) => {
    const [key] = scene.keys(HIPS, "ty");
    expect(() => scene.putKey(HIPS, "ty", { ...key, in: 4 as Tangent })).toThrow("no tangent of the sort 4");
  }));
});

describe("undo", () => {
  test("takes back an edit, and redo does it again", () => opened("walk.bvh", (scene) => {
    scene.keepHistory();
    const before = height(scene);
    scene.setKey(HIPS, "ty", 12, 3);
    scene.undo();
    expect(height(scene)).toBe(before);
    expect(scene.history()).toEqual({ undo: [], redo: "set key", redo_count: 1 });
    scene.redo();
    expect(height(scene)).toBe(3);
  }));

  test("takes back all edits of a step at once", () => opened("walk.bvh", (scene) => {
    scene.keepHistory();
    const before = height(scene);
    scene.step("drag", () => [1, 2, 3].forEach((value) => scene.setKey(HIPS, "ty", 12, value)));
    expect(scene.history().undo).toEqual(["drag"]);
    scene.undo();
    expect(height(scene)).toBe(before);
  }));

  test("says when there is nothing to take back", () => opened("walk.bvh", (scene) => {
    expect(() => scene.undo()).toThrow("undo is switched off");
    scene.keepHistory();
    expect(() => scene.undo()).toThrow("There are no more commands to undo.");
  }));
});

describe("trails", () => {
  test("wait for the edits to end, are rebuilt by parts, and are exact then", () => opened("walk.bvh", (scene) => {
    const trails = scene.trails({ all: true, samplesPerFrame: 50 }), last = trails.length - 1;
    const revision = (k: number) => trails.arrays(k).revision;
    const first = revision(0);
    scene.setKey(HIPS, "ty", 12, 3);
    expect(scene.pump(0.004)).toMatchObject({ pending: true, worked: false });
    now += 250;
    const progress = scene.pump(0.004);
    expect(progress).toMatchObject({ pending: true, worked: true, items: trails.length });
    expect(progress.item).toBeGreaterThan(0);
    expect([revision(0), revision(last)]).toEqual([first + 1, first]);
    while (scene.pump(0.004).pending) continue;
    expect([revision(0), revision(last)]).toEqual([first + 1, first + 1]);
    for (let k = 0; k < trails.length; ++k) {
      const points = trails.arrays(k).points.slice(), { source, start_frame, frame_step } = trails.fields(k);
      const frames = Array.from({ length: points.length / 3 }, (_, i) => start_frame + i * frame_step);
      const matrices = scene.worldMatrices(source, frames);
      const wrong = points.findIndex((place, i) => place !== matrices[16 * Math.floor(i / 3) + 12 + (i % 3)]);
      expect([points.length > 0, wrong]).toEqual([true, -1]);
    }
  }));

  test("keep their arrays when nothing was edited", () => opened("walk.bvh", (scene) => {
    const trails = scene.trails({ patterns: ["LeftFoot"] });
    const { revision, points } = trails.arrays(0);
    expect(scene.pump(0.004)).toMatchObject({ pending: false });
    scene.follow();
    expect(trails.arrays(0).revision).toBe(revision);
    expect(points.length).toBeGreaterThan(0);
  }));

  test("are measured", () => opened("walk.bvh", (scene) => {
    const trails = scene.trails({ patterns: ["LeftFoot"] });
    expect(trails.measures(0)).toHaveProperty("length");
    trails.letGo();
  }));
});

describe("memory", () => {
  test("moves when more is needed, which the epoch tells", () => {
    const before = engine.epoch;
    const scenes = [1, 2].map(() => engine.open(example("walk.bvh")));
    const trails = scenes[0].trails({ all: true, samplesPerFrame: 50 });
    expect(engine.epoch).toBeGreaterThan(before);
    const known = engine.epoch, { points } = trails.arrays(0);
    expect(engine.epoch).toBe(known);
    expect(points.buffer.byteLength).toBeGreaterThan(0);
    scenes.forEach((scene) => scene.close());
  });
});
