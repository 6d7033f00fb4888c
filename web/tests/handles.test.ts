import { join } from "node:path";
import { describe, expect, test } from "vitest";
import type { Scene } from "../src/index";
import { examples, filesOf, startEngine } from "./support/engine";

const engine = await startEngine();
const HIPS = "|Hips";

function opened<T>(run: (scene: Scene) => T): T {
  const scene = engine.open(filesOf(examples.find((path) => path.endsWith(join("/", "walk.bvh")))!));
  try {
    return run(scene);
  } finally {
    scene.close();
  }
}

const place = (scene: Scene, object: string, frame: number) => [...scene.worldMatrices(object, [frame]).slice(12, 15)];
const times = (scene: Scene, attribute: string) => scene.keys(HIPS, attribute).map(({ frame }) => frame);

describe("a key on its path", () => {
  test("goes where it is dragged, and back as one step", () => opened((scene) => {
    scene.keepHistory();
    const before = place(scene, HIPS, 12);
    expect(scene.placing(HIPS, 12)).toEqual({ obstacle: null, text: null });
    scene.placeKey(HIPS, 12, [30, 80, -5]);
    place(scene, HIPS, 12).forEach((number, k) => expect(number).toBeCloseTo([30, 80, -5][k], 9));
    expect(scene.history().undo).toEqual(["place key"]);
    scene.undo();
    expect(place(scene, HIPS, 12)).toEqual(before);
  }));

  test("that only rotations have says so", () => opened((scene) => {
    const joint = scene.objects().find(({ source }) =>
      scene.curves(source).length > 0 && scene.curves(source).every(({ attribute }) => attribute.startsWith("rotate")))!;
    expect(scene.placing(joint.source, 12)).toMatchObject({ obstacle: "rotations_only", text: expect.stringContaining("frame 12") });
    expect(() => scene.placeKey(joint.source, 12, [0, 0, 0])).toThrow(expect.objectContaining({ kind: "refused" }));
  }));

  test("shows its trails and its children's before they are rebuilt", () => opened((scene) => {
    const trails = scene.trails({ all: true });
    scene.placeKey(HIPS, 12, [30, 80, -5]);
    const early = trails.provisional(HIPS).map(({ trail, first, points }) => ({ trail, first, points: points.slice() }));
    expect(early.length).toBe(trails.length);
    scene.follow();
    for (const { trail, first, points } of early) {
      expect(first).toBe(0);
      expect(points).toEqual(trails.arrays(trail).points);
    }
    const some = trails.provisional(HIPS, ...scene.feltRange(HIPS, undefined, 12));
    expect(some[0].points.length).toBeLessThan(early[0].points.length);
    trails.letGo();
  }));
});

describe("a bead on its path", () => {
  test("goes to where the path is at another frame, as one step", () => opened((scene) => {
    scene.keepHistory();
    expect(scene.sliding(HIPS, 33.5)).toEqual({ obstacle: null, text: null, first: 33, last: 34 });
    const wanted = place(scene, HIPS, 33.625);
    scene.slideBead(HIPS, 33.5, 33.625);
    place(scene, HIPS, 33.5).forEach((number, k) => expect(number).toBeCloseTo(wanted[k], 9));
    expect(scene.history().undo).toEqual(["change spacing"]);
  }));

  test("that is at a key says so", () => opened((scene) => {
    expect(scene.sliding(HIPS, 33)).toMatchObject({ obstacle: "at_key", text: expect.stringContaining("frame 33"), first: null, last: null });
    expect(() => scene.slideBead(HIPS, 33, 33.5)).toThrow(expect.objectContaining({ kind: "refused" }));
  }));
});

describe("keys in time", () => {
  test("move together, and not past their neighbours", () => opened((scene) => {
    scene.moveKeys(HIPS, undefined, 12, 12.5);
    for (const attribute of ["tx", "ty", "rz"]) expect(times(scene, attribute)).toContain(12.5);
    expect(() => scene.moveKeys(HIPS, "tx", 12.5, 13)).toThrow(expect.objectContaining({ kind: "refused" }));
    expect(() => scene.moveKeys(HIPS, "tx", 12, 12.2)).toThrow(expect.objectContaining({ kind: "not_found" }));
  }));

  test("come and go", () => opened((scene) => {
    const before = scene.channelValues(HIPS, "tx", [12.3])[0];
    scene.insertKeys(HIPS, "tx", 12.4);
    expect(times(scene, "tx")).toContain(12.4);
    expect(scene.channelValues(HIPS, "tx", [12.3])[0]).toBeCloseTo(before, 9);
    scene.removeKeys(HIPS, "tx", 12.4);
    expect(times(scene, "tx")).not.toContain(12.4);
  }));
});

describe("tangents", () => {
  const at12 = (scene: Scene) => scene.tangents(HIPS, "ty")[times(scene, "ty").indexOf(12)];

  test("are told as the curve has them, and turn together until they are broken", () => opened((scene) => {
    expect(scene.tangents(HIPS, "ty").length).toBe(times(scene, "ty").length);
    scene.setTangent(HIPS, "ty", 12, "out", 0.5, 2);
    expect(at12(scene).inY / at12(scene).inX).toBeCloseTo(4, 9);
    scene.setTangent(HIPS, "ty", 12, "in", 0.5, -1, false);
    expect(at12(scene).outY / at12(scene).outX).toBeCloseTo(4, 9);
    expect(at12(scene).inY / at12(scene).inX).toBeCloseTo(-2, 9);
  }));

  test("have lengths on a weighted curve", () => opened((scene) => {
    scene.setWeighted(HIPS, "ty", true);
    scene.setTangent(HIPS, "ty", 12, "out", 0.03, 0.5);
    expect([at12(scene).outX, at12(scene).outY]).toEqual([0.03, 0.5]);
    expect(scene.curves(HIPS).find(({ attribute }) => attribute === "translateY")!.weighted).toBe(true);
  }));
});
