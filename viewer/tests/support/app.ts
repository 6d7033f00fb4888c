// What the page's parts are given, without a page: for tests of what needs no browser.

import { readTrails } from "../../src/source/embedded";
import type { App } from "../../src/model/app";
import { Motion } from "../../src/model/motion";
import { initialState, Store, type CameraPose } from "../../src/model/state";
import { encodeScene, type SceneInput } from "./trails";

const CAMERA: CameraPose = { view: "persp", target: [0, 0, 0], distance: 10, azimuth: 30, elevation: 20 };

export interface TestApp extends App {
  /** What was announced. */
  readonly said: string[];
  /** What was saved, by name. */
  readonly saved: Map<string, Blob>;
}

export function makeApp(input: SceneInput): TestApp {
  const { header, data } = encodeScene(input);
  const trails = readTrails(header, Uint8Array.from(data).buffer);
  const [first, last] = header.range;
  const scene = {
    name: header.scene, fps: header.fps, first, last, current: header.current, unit: header.unit, upAxis: header.up_axis,
    colorModeChosen: header.color_mode_chosen,
    measures: header.measures, statics: header.statics,
  };
  const motion = new Motion(trails);
  const store = new Store(initialState(scene, motion, CAMERA));
  store.subscribe((state) => motion.relativeTo(state.relativeTo), ["relativeTo"]);
  const said: string[] = [];
  const saved = new Map<string, Blob>();
  return {
    scene, motion, store, said, saved, life: new AbortController().signal,
    announce: (text) => void said.push(text),
    picture: () => Promise.resolve(new Blob(["picture"])),
    save: (name, content) => void saved.set(name, content),
  };
}
