// Everything that a key or a button does, in one table: the keyboard, the toolbar and the help read it.

import { COLOR_MODES, type ColorMode, type Editing } from "../source/trail";
import { selectionCsv } from "./csv";
import type { App } from "./app";
import { countUpTo } from "./colors";
import { movingIn, shownComparison, toldComparison } from "./compare";
import { baseName, frameText } from "./format";
import { bestDirection, framing } from "./framing";
import { graphOf, graphsOf } from "./graphs";
import { movedTarget, visibleTrails } from "./pose";
import { isInWorld, isVisible, toggled, type CameraPose, type ViewName } from "./state";
import { panTime, seenTime, zoomTime } from "./time_span";

export interface Command {
  readonly id: string;
  readonly title: string;
  /** By the names that keyName gives them. */
  readonly keys: readonly string[];
  /** Only where keys can be edited. */
  readonly edits?: boolean;
  run(app: App): void;
}

/** Goes to a frame, or to the nearest one in the range that is played. */
export function goTo(app: App, frame: number): void {
  const { playFirst, playLast } = app.store.state;
  app.store.set({ frame: Math.max(playFirst, Math.min(playLast, frame)), playing: false });
}

/** Goes by whole frames; from between two frames, first to the next whole one. */
function step(app: App, by: number): void {
  const { frame } = app.store.state;
  goTo(app, by > 0 ? Math.floor(frame + 1e-9) + by : Math.ceil(frame - 1e-9) + by);
}

function keyTimesOf(app: App): number[] {
  const { state } = app.store;
  const chosen = state.selected.size > 0 ? [...state.selected] : visibleTrails(app.motion, state);
  const times = new Set<number>();
  for (const trail of chosen) for (const time of app.motion.trails[trail]?.keyTimes ?? []) times.add(time);
  return [...times].sort((a, b) => a - b);
}

/** The last answer, and what it depends on: the timeline asks at every frame that is played. */
let asked: { of: readonly unknown[]; times: readonly number[] } = { of: [], times: [] };

/** Key times of the selected trails, of all visible ones when none is selected: sorted, each once. */
export function shownKeyTimes(app: App): readonly number[] {
  const { selected, hidden, solo } = app.store.state;
  const of = [app.motion.trails, selected, hidden, solo];
  if (of.some((each, i) => each !== asked.of[i])) asked = { of, times: keyTimesOf(app) };
  return asked.times;
}

function stepKey(app: App, by: 1 | -1): void {
  const times = shownKeyTimes(app);
  const { frame } = app.store.state;
  const passed = countUpTo(times, frame);
  const index = by > 0 ? passed : times[passed - 1] === frame ? passed - 2 : passed - 1;
  if (times[index] !== undefined) goTo(app, times[index]);
  else app.announce(by > 0 ? "No later key" : "No earlier key");
}

/** Looks from there; no longer through a camera of the scene. */
const aim = (app: App, camera: CameraPose): void => app.store.set({ camera, through: null });

function frameTrails(app: App, trails: readonly number[]): void {
  const { camera, aspect } = app.store.state;
  const [shown, framed] = movingIn(app.motion, shownComparison(app), trails);
  aim(app, framing(shown, framed, app.scene.upAxis, camera.view, aspect, camera));
}

function frameSelected(app: App): void {
  const { state } = app.store;
  const selected = [...state.selected].filter((trail) => isVisible(state, trail));
  frameTrails(app, selected.length > 0 ? selected : visibleTrails(app.motion, state));
}

function look(app: App, view: ViewName): void {
  const { motion, scene, store } = app;
  const [shown, trails] = movingIn(motion, shownComparison(app), visibleTrails(motion, store.state));
  const direction = view === "persp" ? bestDirection(shown, trails, scene.upAxis) : store.state.camera;
  aim(app, framing(shown, trails, scene.upAxis, view, store.state.aspect, direction));
}

/** Turns around the target; views along an axis stay as they are. */
function orbit(app: App, azimuth: number, elevation: number): void {
  const { camera } = app.store.state;
  if (camera.view !== "persp") return app.announce("Only the perspective view can be turned: press 1 for it");
  const above = Math.max(-90, Math.min(90, camera.elevation + elevation));
  aim(app, { ...camera, azimuth: camera.azimuth + azimuth, elevation: above });
}

function zoom(app: App, factor: number): void {
  const { camera } = app.store.state;
  aim(app, { ...camera, distance: camera.distance * factor });
}

/** Moves the target to the right and up in the picture, by parts of the distance. */
function pan(app: App, right: number, up: number): void {
  const { camera } = app.store.state;
  aim(app, { ...camera, target: movedTarget(camera, right * camera.distance, up * camera.distance) });
}

function eachSelected(app: App, change: (trails: readonly number[]) => void): void {
  const { selected } = app.store.state;
  if (selected.size === 0) app.announce("Nothing is selected: select an object first");
  else change([...selected]);
}

function setMode(app: App, mode: ColorMode): void {
  app.store.set({ mode, colorBy: "mode" });
  app.announce(`Colour mode ${COLOR_MODES[mode]}`);
}

function toggle(app: App, key: "showBones" | "window" | "showCompared", on: string, off: string): void {
  const value = !app.store.state[key];
  app.store.set({ [key]: value });
  app.announce(value ? on : off);
}

const ONION_SKINS = [["off", "No onion skins"], ["frames", "Onion skins at frames"], ["keys", "Onion skins at keys"]] as const;

function nextOnionSkins(app: App): void {
  const at = ONION_SKINS.findIndex(([kind]) => kind === app.store.state.onion);
  const [onion, said] = ONION_SKINS[(at + 1) % ONION_SKINS.length];
  app.store.set({ onion });
  app.announce(said);
}

function nextGraph(app: App): void {
  const all = graphsOf(app);
  const graph = all[(all.indexOf(app.store.state.graph) + 1) % all.length];
  app.store.set({ graph });
  app.announce(`Graph of ${graphOf(app, graph).title.toLowerCase()}`);
}

/** Takes a step back, or does it again. */
function takeStep(app: App, which: "undo" | "redo"): void {
  const { editing } = app;
  const name = which === "undo" ? editing?.undoes : editing?.redoes;
  if (!editing || name == null) return app.announce(`There is nothing to ${which}`);
  editing[which]().then(() => app.announce(`${which === "undo" ? "Undone" : "Redone"}: ${name}`),
    (error: Error) => app.announce(error.message));
}

/** Edits keys of the selected objects at the current frame: of those that have one there, or of all. */
function editKeys(app: App, those: "keyed" | "all", edit: (editing: Editing, trails: readonly number[], frame: number) => Promise<void>): void {
  eachSelected(app, (selected) => {
    const { frame } = app.store.state;
    const trails = those === "all" ? selected : selected.filter((trail) => app.motion.trails[trail].keyTimes.includes(frame));
    if (trails.length === 0) return app.announce(`No key of what is selected is at frame ${frameText(frame)}`);
    edit(app.editing!, trails, frame).catch((error: Error) => app.announce(error.message));
  });
}

/** Moves keys by whole frames, and the current frame with them. */
const shiftKeys = (app: App, by: 1 | -1): void => editKeys(app, "keyed", async (editing, trails, frame) => {
  await editing.moveKeys(trails, frame, frame + by);
  goTo(app, frame + by);
});

const breakTangents = (app: App): void => editKeys(app, "keyed", async (editing, trails, frame) => {
  editing.breakTangents(trails, frame);
  app.announce("Each side of the tangents turns alone now");
});

const unifyTangents = (app: App): void => editKeys(app, "keyed", async (editing, trails, frame) => {
  await editing.unifyTangents(trails, frame);
  app.announce("Both sides of the tangents turn together now");
});

/** A file name from the scene's. */
export const fileName = (app: App, ending: string): string => withEnding(baseName(app.scene.name), ending);

/** The same in place of the scene's own ending. */
export const fileNameAs = (app: App, ending: string): string => withEnding(baseName(app.scene.name).replace(/(?<=.)\.[^.]*$/, ""), ending);

const withEnding = (name: string, ending: string) =>
  (name.replace(/[^\p{L}\p{N}._-]+/gu, "_") || "trails") + ending;

/** Moves what the timeline shows by half of it. */
function turnTime(app: App, direction: 1 | -1): void {
  const [first, last] = seenTime(app);
  panTime(app, (direction * (last - first)) / 2);
}

const view = (id: ViewName, title: string, key: string): Command => ({
  id: `view-${id}`, title, keys: [key], run: (app) => look(app, id),
});

const mode = (value: ColorMode): Command => ({
  id: `mode-${value}`, title: `Colour mode ${COLOR_MODES[value]}`, keys: [`Shift+${value + 1}`],
  run: (app) => setMode(app, value),
});

export const COMMANDS: readonly Command[] = [
  { id: "play", title: "Play or stop", keys: [" "], run: (app) => app.store.set({ playing: !app.store.state.playing }) },
  { id: "next-frame", title: "Next frame", keys: ["ArrowRight", "."], run: (app) => step(app, 1) },
  { id: "previous-frame", title: "Previous frame", keys: ["ArrowLeft", ","], run: (app) => step(app, -1) },
  { id: "next-key", title: "Next key", keys: ["Shift+ArrowRight", "]"], run: (app) => stepKey(app, 1) },
  { id: "previous-key", title: "Previous key", keys: ["Shift+ArrowLeft", "["], run: (app) => stepKey(app, -1) },
  { id: "first-frame", title: "First frame", keys: ["Home"], run: (app) => goTo(app, app.store.state.playFirst) },
  { id: "last-frame", title: "Last frame", keys: ["End"], run: (app) => goTo(app, app.store.state.playLast) },
  { id: "range-start", title: "Start the range here", keys: ["i"],
    run: (app) => app.store.set({ playFirst: Math.min(app.store.state.frame, app.store.state.playLast) }) },
  { id: "range-end", title: "End the range here", keys: ["o"],
    run: (app) => app.store.set({ playLast: Math.max(app.store.state.frame, app.store.state.playFirst) }) },
  { id: "range-all", title: "Whole range", keys: ["p"],
    run: (app) => app.store.set({ playFirst: app.scene.first, playLast: app.scene.last }) },
  { id: "time-in", title: "Show less time, larger", keys: ["t"], run: (app) => zoomTime(app, 1 / 1.5) },
  { id: "time-out", title: "Show more time", keys: ["Shift+T"], run: (app) => zoomTime(app, 1.5) },
  { id: "time-all", title: "Show all of the time", keys: ["w"], run: (app) => app.store.set({ timeSpan: null }) },
  { id: "time-earlier", title: "Show earlier time", keys: ["v"], run: (app) => turnTime(app, -1) },
  { id: "time-later", title: "Show later time", keys: ["b"], run: (app) => turnTime(app, 1) },
  { id: "graph", title: "The next graph: spacing, speed, and so on", keys: ["Shift+G"], run: nextGraph },
  { id: "frame-selected", title: "Frame what is selected", keys: ["f"], run: frameSelected },
  { id: "frame-all", title: "Frame all", keys: ["a"],
    run: (app) => frameTrails(app, visibleTrails(app.motion, app.store.state)) },
  { id: "orbit-left", title: "Turn left", keys: ["j"], run: (app) => orbit(app, -10, 0) },
  { id: "orbit-right", title: "Turn right", keys: ["l"], run: (app) => orbit(app, 10, 0) },
  { id: "orbit-up", title: "Look from higher", keys: ["k"], run: (app) => orbit(app, 0, 10) },
  { id: "orbit-down", title: "Look from lower", keys: ["m"], run: (app) => orbit(app, 0, -10) },
  { id: "pan-left", title: "Move left", keys: ["Shift+J"], run: (app) => pan(app, -0.05, 0) },
  { id: "pan-right", title: "Move right", keys: ["Shift+L"], run: (app) => pan(app, 0.05, 0) },
  { id: "pan-up", title: "Move up", keys: ["Shift+K"], run: (app) => pan(app, 0, 0.05) },
  { id: "pan-down", title: "Move down", keys: ["Shift+M"], run: (app) => pan(app, 0, -0.05) },
  { id: "zoom-in", title: "Nearer", keys: ["+", "="], run: (app) => zoom(app, 1 / 1.2) },
  { id: "zoom-out", title: "Farther", keys: ["-"], run: (app) => zoom(app, 1.2) },
  view("persp", "Perspective", "1"),
  view("front", "Front", "2"),
  view("side", "Side", "3"),
  view("top", "Top", "4"),
  mode(0), mode(1), mode(2), mode(3),
  { id: "select-all", title: "Select all that are shown", keys: ["Ctrl+a"],
    run: (app) => app.store.set({ selected: new Set(visibleTrails(app.motion, app.store.state)) }) },
  { id: "select-none", title: "Select nothing", keys: ["Escape"],
    run: (app) => app.store.set({ selected: new Set() }) },
  { id: "hide", title: "Hide or show what is selected", keys: ["h"],
    run: (app) => eachSelected(app, (trails) =>
      app.store.set({ hidden: trails.reduce(toggled, app.store.state.hidden) })) },
  { id: "solo", title: "Show only what is selected, or all again", keys: ["s"],
    run: (app) => app.store.state.solo.size > 0
      ? app.store.set({ solo: new Set() })
      : eachSelected(app, (trails) => app.store.set({ solo: new Set(trails) })) },
  { id: "show-all", title: "Show everything", keys: ["Shift+H"],
    run: (app) => app.store.set({ hidden: new Set(), solo: new Set() }) },
  { id: "relative", title: "Relative to what is selected, or the world again", keys: ["r"],
    run: (app) => !isInWorld(app.store.state)
      ? app.store.set({ relativeTo: null, space: "place" })
      : eachSelected(app, ([first]) => app.store.set({ relativeTo: first })) },
  { id: "ghost", title: "Ghost: draw through geometry, or not", keys: ["g"],
    run: (app) => app.store.set({ ghost: !(app.store.state.ghost ?? app.motion.trails.some((trail) => trail.ghost)) }) },
  { id: "color-by", title: "Colour by mode or by object", keys: ["c"],
    run: (app) => app.store.set({ colorBy: app.store.state.colorBy === "mode" ? "object" : "mode" }) },
  { id: "bones", title: "Bones, or none", keys: ["Shift+B"],
    run: (app) => toggle(app, "showBones", "Bones", "No bones") },
  { id: "onion", title: "Onion skins at frames, at keys, or none", keys: ["Shift+O"], run: nextOnionSkins },
  { id: "window", title: "Only the frames around the current one, or the whole range", keys: ["Shift+W"],
    run: (app) => toggle(app, "window", "Only the frames around the current one", "The whole range") },
  { id: "insert-key", title: "Insert keys that change no motion, of what is selected", keys: ["Shift+I"], edits: true,
    run: (app) => editKeys(app, "all", (editing, trails, frame) => editing.insertKeys(trails, frame)) },
  { id: "remove-key", title: "Remove the keys of what is selected at this frame", keys: ["Delete"], edits: true,
    run: (app) => editKeys(app, "keyed", (editing, trails, frame) => editing.removeKeys(trails, frame)) },
  { id: "key-earlier", title: "Move them a frame earlier", keys: ["{"], edits: true, run: (app) => shiftKeys(app, -1) },
  { id: "key-later", title: "Move them a frame later", keys: ["}"], edits: true, run: (app) => shiftKeys(app, 1) },
  { id: "compare", title: "Compare with the scene as it was opened, or not", keys: ["Shift+D"], edits: true,
    run: (app) => toggle(app, "showCompared", "Compared with the scene as it was opened", "Not compared") },
  { id: "break-tangents", title: "Break the tangents of these keys: each side turns alone", keys: ["Shift+U"], edits: true,
    run: (app) => breakTangents(app) },
  { id: "unify-tangents", title: "Unify them: both sides turn together", keys: ["u"], edits: true,
    run: (app) => unifyTangents(app) },
  { id: "undo", title: "Undo an edit of keys", keys: ["Ctrl+z"], edits: true, run: (app) => takeStep(app, "undo") },
  { id: "redo", title: "Redo it", keys: ["Ctrl+Shift+z", "Ctrl+y"], edits: true, run: (app) => takeStep(app, "redo") },
  { id: "png", title: "Save a picture (PNG)", keys: ["Shift+P"],
    run: (app) => void app.picture().then(
      (picture) => app.save(fileName(app, ".png"), picture), (error: Error) => app.announce(error.message)) },
  { id: "csv", title: "Save the selected trails (CSV)", keys: ["Shift+C"],
    run: (app) => eachSelected(app, (trails) =>
      app.save(fileName(app, ".csv"), new Blob([selectionCsv(app.motion, trails, toldComparison(app))], { type: "text/csv" }))) },
];

/** Those that this page has. */
export const commandsOf = (app: App): readonly Command[] => COMMANDS.filter(({ edits }) => !edits || app.editing);

export const command = (id: string): Command => {
  const found = COMMANDS.find((candidate) => candidate.id === id);
  if (!found) throw new Error(`there is no command ${id}`);
  return found;
};

/** The name of a key event in the table. Where Shift and a key type another character ("+", "?"), that is the name. */
export function keyName({ key, code, shiftKey, ctrlKey, metaKey }: Pick<KeyboardEvent, "key" | "code" | "shiftKey"> & Partial<KeyboardEvent>): string {
  if (ctrlKey || metaKey) return `Ctrl+${shiftKey ? "Shift+" : ""}${key.toLowerCase()}`;
  if (!shiftKey) return key;
  const digit = /^Digit(\d)$/.exec(code);
  if (digit) return `Shift+${digit[1]}`;
  return key.length > 1 || /\p{L}/u.test(key) ? `Shift+${key.length > 1 ? key : key.toUpperCase()}` : key;
}

/** Whether a key types something: such keys can be switched off, for who dictates. Space is for pressing. */
export const typesCharacter = ({ key }: Pick<KeyboardEvent, "key">): boolean => key.length === 1 && key !== " ";

/** A key as a person reads it. */
export const keyLabel = (key: string): string =>
  key.replace("Arrow", "").replace("Right", "→").replace("Left", "←").replace(/^ $/, "Space").replace(/(?<=^|\+)[a-z]$/, (k) => k.toUpperCase());

/** Whether typing belongs to what has the focus, however it got it. */
const takesText = (target: Element) =>
  target.closest("input:not([type=checkbox]):not([type=radio]):not([type=range]), select, textarea, dialog") !== null;

/** Whether a control that the keyboard reached uses the key itself. */
function usesKey(target: Element, key: string): boolean {
  if (target.closest("input[type=range]")) return true;
  if (key === " ") return target.closest("button, input, summary, a") !== null;
  return /^(Arrow|Home|End)/.test(key) && target.closest("[data-own-arrows], input[type=radio]") !== null;
}

/**
 * Whether a click gave the focus, and not the keyboard. A key that opens or closes something moves the focus, too: there,
 * it stays as it was, so that a button that was clicked does not get the keys when what it opened is closed.
 */
function watchFocus(signal: AbortSignal): () => boolean {
  let pressed = false; // the pointer, its click included
  let key = ""; // that is pressed, what it does included
  let clicked = false;
  document.addEventListener("pointerdown", () => (pressed = clicked = true), { capture: true, signal });
  document.addEventListener("pointerup", () => setTimeout(() => (pressed = false)), { capture: true, signal });
  document.addEventListener("keydown", (event) => {
    pressed = false;
    key = event.key;
  }, { capture: true, signal });
  document.addEventListener("keyup", () => setTimeout(() => (key = "")), { capture: true, signal });
  document.addEventListener("focusin", () => {
    if (pressed || key === "" || /^(Tab|Arrow|Page|Home|End)/.test(key)) clicked = pressed;
  }, { capture: true, signal });
  return () => clicked;
}

/**
 * Runs the commands of keys. A control that the keyboard reached uses its own keys first; one that was only clicked
 * does not keep them: Space plays after a click on any button. Escape closes what is open first.
 */
export function listenToKeys(app: App): void {
  const { life: signal } = app;
  const byKey = new Map(commandsOf(app).flatMap((each) => each.keys.map((key) => [key, each] as const)));
  const commandOf = (event: KeyboardEvent) => {
    const off = typesCharacter(event) && !event.ctrlKey && !event.metaKey && !app.store.state.letterKeys;
    const others = event.altKey || event.defaultPrevented || takesText(event.target as Element);
    return off || others ? undefined : byKey.get(keyName(event));
  };
  const clicked = watchFocus(signal);
  let held = ""; // a key that ran a command where a control would act when it is let go
  document.addEventListener("keydown", (event) => {
    const found = clicked() && event.key !== "Escape" ? commandOf(event) : undefined;
    if (!found) return;
    event.preventDefault();
    event.stopPropagation();
    held = event.key;
    found.run(app);
  }, { capture: true, signal });
  document.addEventListener("keyup", (event) => {
    if (event.key === held) event.preventDefault();
    held = "";
  }, { capture: true, signal });
  document.addEventListener("keydown", (event) => {
    const found = usesKey(event.target as Element, event.key) ? undefined : commandOf(event);
    if (!found) return;
    event.preventDefault();
    found.run(app);
  }, { signal });
}
