// Buttons that move through time, and the numbers that go with them.

import type { App } from "../model/app";
import { goTo } from "../model/commands";
import { frameText } from "../model/format";
import { commandButton, commandTitle, el, labelled, setAttributes, setText } from "./parts/dom";
import { setIcon, type IconName } from "./parts/icons";
import { timeZoomButtons } from "./time_zoom";

const BUTTONS: readonly (readonly [id: string, icon: IconName])[] = [
  ["first-frame", "first"], ["previous-key", "previousKey"], ["previous-frame", "previous"], ["play", "play"],
  ["next-frame", "next"], ["next-key", "nextKey"], ["last-frame", "last"],
];

function playButtons(app: App): HTMLElement {
  const buttons = BUTTONS.map(([id, icon]) => commandButton(app, id, { icon, class: id === "play" ? "button play" : "button" }));
  const play = buttons[BUTTONS.findIndex(([id]) => id === "play")];
  const update = () => {
    const { playing } = app.store.state;
    setIcon(play, playing ? "stop" : "play");
    setAttributes(play, { "aria-label": playing ? "Stop" : "Play", title: commandTitle("play") });
  };
  app.store.subscribe(update, ["playing"]);
  update();
  return el("div", { class: "group play-buttons", role: "group", "aria-label": "Playing" }, ...buttons);
}

interface FrameField {
  text: string;
  title?: string;
  key: "frame" | "playFirst" | "playLast";
  set(frame: number): void;
}

/** A field for a frame. What is typed takes effect when typing ends, and is brought into the range. */
function frameField(app: App, { text, title, key, set }: FrameField): HTMLElement {
  const { scene, store } = app;
  const field = el("input", {
    type: "number", class: "frame", title, step: "any", min: scene.first, max: scene.last, "data-setting": key,
  });
  const longest = Math.max(frameText(scene.first).length, frameText(scene.last).length);
  if (longest > 6) field.style.width = `${longest + 4}ch`;
  const show = () => (field.value = frameText(store.state[key]));
  field.addEventListener("change", () => {
    if (field.value !== "" && Number.isFinite(field.valueAsNumber)) set(field.valueAsNumber);
    show();
  });
  field.addEventListener("keydown", (event) => {
    const by = { ArrowUp: 1, ArrowDown: -1 }[event.key];
    if (by === undefined) return;
    event.preventDefault(); // "any" as a step would go to fractions
    set(store.state[key] + by);
    show();
  });
  store.subscribe(() => {
    if (document.activeElement !== field || store.state.playing) show();
  }, [key]);
  show();
  return labelled(text, field);
}

export function buildTransport(app: App): HTMLElement {
  const { scene, store } = app;
  const within = (frame: number, low: number, high: number) => Math.max(low, Math.min(high, frame));
  const seconds = el("span", { class: "time" });
  const update = () => setText(seconds, `${((store.state.frame - scene.first) / scene.fps).toFixed(2)} s`);
  store.subscribe(update, ["frame"]);
  update();
  return el(
    "div", { class: "transport", role: "group", "aria-label": "Playback" },
    playButtons(app),
    frameField(app, { text: "Frame", key: "frame", set: (frame) => goTo(app, frame) }),
    seconds,
    el("span", { class: "space" }),
    timeZoomButtons(app),
    el("div", { class: "range-fields", role: "group", "aria-label": "Range that is played" },
      frameField(app, { text: "Range", title: commandTitle("range-start"), key: "playFirst",
        set: (frame) => store.set({ playFirst: within(frame, scene.first, store.state.playLast) }) }),
      frameField(app, { text: "to", title: commandTitle("range-end"), key: "playLast",
        set: (frame) => store.set({ playLast: within(frame, store.state.playFirst, scene.last) }) }),
      commandButton(app, "range-all", { text: "Whole" })),
    el("span", { class: "rate", title: "Frames per second of the scene" }, `${frameText(scene.fps)} fps`),
  );
}
