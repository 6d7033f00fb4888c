import { join } from "node:path";
import { describe, expect, test } from "vitest";
import type { Form, Scene } from "../src/index";
import { examples, filesOf, startEngine } from "./support/engine";

const engine = await startEngine();
const example = (name: string) => engine.open(filesOf(examples.find((path) => path.endsWith(join("/", name)))!));

/** What was written, open in the same engine. */
const reopened = (scene: Scene, form: Form) => engine.open([{ name: `again.${form}`, bytes: scene.written(form).bytes }]);

describe("what is written for Maya", () => {
  const curves = () => example("arm.ma");

  test("holds the edited curves, and is read back by the same engine", () => {
    const scene = curves(), { source, name } = scene.objects().find((object) => scene.curves(object.source).length > 0)!;
    const [{ attribute, curve }] = scene.curves(source);
    scene.insertKeys(source, attribute, scene.keys(source, attribute)[0].frame + 0.3125);
    const { text } = scene.written("ma", [source]);
    const again = engine.open([{ name: "a.ma", bytes: new TextEncoder().encode(`createNode transform -n "${name}";${text}`) }]);
    expect(again.curves(again.objects()[0].source)[0].curve).toBe(curve);
    expect(again.keys(again.objects()[0].source, attribute)).toEqual(scene.keys(source, attribute));
    scene.close();
    again.close();
  });

  test("is a script with the same keys, or nothing in a form that is unknown", () => {
    const scene = curves();
    expect(scene.written("py").text).toContain("cmds.setKeyframe");
    expect(scene.written("py").lost).toEqual(scene.written("ma").lost);
    expect(() => scene.written("abc" as Form)).toThrow("there is no form 'abc'");
    scene.close();
  });
});

describe("what is written as BVH", () => {
  const HIPS = "|Hips";

  test("is the clip that was opened, while nobody edits it", () => {
    const scene = example("walk.bvh"), again = reopened(scene, "bvh");
    expect(again.written("bvh").bytes).toEqual(scene.written("bvh").bytes);
    expect(scene.written("bvh").lost).toEqual([]);
    expect(again.describe()).toEqual(scene.describe());
    expect(again.objects()).toEqual(scene.objects());
    for (const { source } of scene.objects())
      for (const { attribute } of scene.curves(source))
        expect(again.keys(source, attribute)).toEqual(scene.keys(source, attribute));
    [scene, again].forEach((one) => one.close());
  });

  test("has edited keys with their bits, and says what lies between the frames", () => {
    const scene = example("walk.bvh");
    scene.placeKey(HIPS, 12, [30, 80.1, -5]);
    const again = reopened(scene, "bvh");
    for (const attribute of ["tx", "ty", "tz"]) expect(again.keys(HIPS, attribute)).toEqual(scene.keys(HIPS, attribute));
    again.close();
    scene.setKey(HIPS, "ty", 12.5, 0);
    expect(scene.written("bvh").lost).toEqual([expect.stringContaining("Hips.translateY bends between whole frames")]);
    scene.close();
  });

  test("is refused for what has no joints", () => {
    const scene = example("arm.ma");
    expect(() => scene.written("bvh")).toThrow(expect.objectContaining({ kind: "refused" }));
    scene.close();
  });
});

describe("what is written as glTF", () => {
  const placed = (scene: Scene, source: string) => scene.worldMatrices(source, [0, 3.5, 12, 40]);

  test("is the file that was opened, edited keys and all", () => {
    const scene = example("crane.gltf"), same = reopened(scene, "glb");
    for (const { source } of scene.objects()) expect(placed(same, source)).toEqual(placed(scene, source));
    const { source } = scene.objects().find((object) => scene.curves(object.source).some(({ attribute }) => attribute === "translateX"))!;
    const { frame } = scene.keys(source, "tx")[1];
    scene.placeKey(source, frame, [1.25, 3, -2]);
    const again = reopened(scene, "glb");
    for (const { source } of scene.objects())
      placed(again, source).forEach((number, k) => expect(number).toBeCloseTo(placed(scene, source)[k], 4));
    expect([...again.worldMatrices(source, [frame]).slice(12, 15)].map((number) => Math.fround(number))).not.toEqual(
      [...same.worldMatrices(source, [frame]).slice(12, 15)].map((number) => Math.fround(number)));
    [scene, same, again].forEach((one) => one.close());
  });

  test("is refused for a scene of another kind", () => {
    const scene = example("arm.ma");
    expect(() => scene.written("glb")).toThrow("only a scene that was opened from a glTF file");
    scene.close();
  });
});
