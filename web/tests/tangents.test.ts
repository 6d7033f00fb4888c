import { describe, expect, test } from "vitest";
import type { Scene } from "../src/index";
import { keysAt, pathTangents } from "../src/live/keys";
import { keysOf, setTangentKind, setWeighted } from "../src/live/tangent_edits";
import { kindOf, TANGENT_KINDS } from "../src/live/tangent_kinds";
import { startEngine } from "./support/engine";

const engine = await startEngine();

const curve = (axis: string, values: readonly number[], on = "arc") => `createNode animCurveTL -n "${on}_${axis}";\n` +
  `  setAttr -s 4 ".ktv[0:3]" 1 ${values[0]} 12 ${values[1]} 24 ${values[2]} 40 ${values[3]};\nconnectAttr "${on}_${axis}.o" "${on}.t${axis}";\n`;

/** An object whose own offset matrix turns, stretches and moves it, under a parent that is turned and that moves. */
const SCENE = '//Maya ASCII 2022 scene\nrequires maya "2022";\ncreateNode transform -n "above";\n' +
  '  setAttr ".r" -type "double3" 20 -35 50;\n  setAttr ".s" -type "double3" 1 2 1;\n' +
  'createNode transform -n "arc" -p "above";\n  setAttr ".r" -type "double3" 15 25 35;\n' +
  '  setAttr ".opm" -type "matrix" 0 1.5 0 0 -1 0 0 0 0 0.5 1 0 3 -4 5 1;\n' +
  curve("x", [0, 9, 20, 4]) + curve("y", [0, 8, 3, 5]) + curve("z", [0, 2, 1, -6]);

function opened<T>(run: (scene: Scene) => T): T {
  const scene = engine.open([{ name: "arc.ma", bytes: new TextEncoder().encode(SCENE) }]);
  try {
    return run(scene);
  } finally {
    scene.close();
  }
}

const ARC = "|above|arc", FRAME = 12;
const place = (scene: Scene, frame: number) => [...scene.worldMatrices(ARC, [frame]).slice(12, 15)];

/** Where the object goes in a frame as it leaves or enters the key, from places that lie close together. */
function speed(scene: Scene, sign: 1 | -1): number[] {
  const near = 1 / 512;
  const [here, next, after] = [0, 1, 2].map((steps) => place(scene, FRAME + sign * steps * near));
  return here.map((at, k) => (sign * (4 * next[k] - 3 * at - after[k])) / (2 * near)); // exact to the second power
}

const along = (scene: Scene, side: "in" | "out") => pathTangents(scene, ARC, FRAME)![side]!.map((end, k) => end - place(scene, FRAME)[k]);

describe("the handles of a key on its path", () => {
  test("lie along the motion, a third of the way to the next key, whatever its own offset matrix does", () => opened((scene) => {
    const wanted = speed(scene, 1).map((way) => (way * (24 - FRAME)) / 3);
    expect(Math.hypot(...wanted)).toBeGreaterThan(1);
    along(scene, "out").forEach((value, k) => expect(value).toBeCloseTo(wanted[k], 3));
    const back = speed(scene, -1).map((way) => (-way * (FRAME - 1)) / 3);
    along(scene, "in").forEach((value, k) => expect(value).toBeCloseTo(back[k], 3));
  }));

  test("have their own lengths on weighted curves, and lie along the motion there, too", () => opened((scene) => {
    const keys = keysOf(scene, { objects: [ARC], frame: FRAME });
    for (const key of keys) setWeighted(scene, key, true);
    for (const { attribute } of keys) {
      const { outX, outY } = keysAt(scene, ARC, FRAME).find((key) => key.attribute === attribute)!.tangents;
      scene.setTangent(ARC, attribute, FRAME, "out", outX / 2, outY / 2);
    }
    const wanted = speed(scene, 1).map((way) => (way * (24 - FRAME)) / 6);
    along(scene, "out").forEach((value, k) => expect(value).toBeCloseTo(wanted[k], 3));
  }));
});

describe("the kind of a key's tangents", () => {
  const arc = (scene: Scene) => keysOf(scene, { objects: [ARC], channels: ["translateY"], frame: FRAME })[0];

  test.each(TANGENT_KINDS)("becomes %s, of that channel alone", (kind) => opened((scene) => {
    setTangentKind(scene, arc(scene), kind === "flat" ? "linear" : "flat");
    setTangentKind(scene, arc(scene), kind);
    expect(kindOf(arc(scene).key)).toBe(kind);
    const others = keysOf(scene, { objects: [ARC], frame: FRAME }).filter(({ attribute }) => attribute !== "translateY");
    expect(others.map(({ key }) => kindOf(key))).toEqual(["auto", "auto"]);
  }));

  test("is flat, or straight to the neighbours, or nothing at all up to the next key", () => opened((scene) => {
    const value = (frame: number) => scene.channelValues(ARC, "translateY", [frame])[0];
    setTangentKind(scene, arc(scene), "flat");
    expect([arc(scene).tangents.inY, arc(scene).tangents.outY]).toEqual([0, 0]);
    setTangentKind(scene, arc(scene), "linear");
    expect(arc(scene).tangents.inY).toBeCloseTo(8, 9);
    expect(arc(scene).tangents.outY).toBeCloseTo(-5, 9);
    setTangentKind(scene, arc(scene), "stepped");
    expect([value(12), value(23.9), value(24)]).toEqual([8, 8, 3]);
    setTangentKind(scene, arc(scene), "stepped next");
    expect([value(12), value(12.1)]).toEqual([8, 3]);
  }));

  test("is fixed as it is, which leaves the motion as it was", () => opened((scene) => {
    const frames = Array.from({ length: 79 }, (_, i) => 1 + i / 2);
    const before = scene.channelValues(ARC, "translateY", frames);
    setTangentKind(scene, arc(scene), "fixed");
    scene.channelValues(ARC, "translateY", frames).forEach((value, i) => expect(value).toBeCloseTo(before[i], 12));
    scene.setKey(ARC, "ty", 24, 30); // which an automatic one would follow
    expect(arc(scene).tangents.outY / arc(scene).tangents.outX).toBeCloseTo(arc(scene).tangents.inY / arc(scene).tangents.inX, 9);
  }));
});
