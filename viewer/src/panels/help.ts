// What the keys and the mouse do, and what the colours mean.

import type { App } from "../model/app";
import { commandsOf, keyLabel } from "../model/commands";
import { el } from "./parts/dom";
import { buildReading } from "./parts/reading";

type Row = readonly [string, string];

const MOUSE: readonly Row[] = [
  ["Drag", "Orbit; in front, side and top: pan"],
  ["Right or middle button, drag", "Pan"],
  ["Wheel", "Zoom to the pointer"],
  ["Click", "Select a trail; with Ctrl or Shift, one more; beside all trails, nothing"],
  ["Shift, drag", "Select what passes through the box; with Ctrl, in addition"],
  ["Point at a trail", "Object, frame, position and speed"],
  ["Click or drag in the timeline or graph", "Go to that frame"],
  ["Wheel over the timeline or graph, or two fingers", "Show less or more of the time"],
  ["There with Shift and the wheel, or the middle button", "Move along the time"],
  ["There a double click", "Show all of the time"],
  ["In the list: click a triangle", "Fold or open; with Alt, all that is below"],
];

const EDITING: readonly Row[] = [
  ["Drag a key on its trail", "Move it in the plane of the picture; Escape puts it back"],
  ["There with X, Y or Z held", "Move it along that axis"],
  ["Ctrl, drag a key on its trail", "Move it in time, along its path, up to its neighbours"],
  ["Drag a dot of a selected trail", "Change the spacing: the object is there at that frame; the path stays"],
  ["Drag a key on the timeline", "Move what the selected objects have there in time"],
  ["Click a key", "Select it: go to its frame; the handles of its tangents are shown then"],
  ["Drag the end of such a handle", "Turn and stretch the tangent; the other side turns along, unless it is broken"],
  ["Tangents, above the graph and in that of the channels", "The kind of the tangents at this frame: auto, linear, stepped, and so on"],
  ["Weighted, beside it", "The lengths of tangents count: the end of a handle in the graph of channels makes one longer"],
  ["Channels, above the graph", "Show the curves of the first selected object: keys and handles are dragged there, too"],
  ["Drop files on the page", "Open another scene"],
  ["Take", "Show another take of the file; the edits of this one are lost then"],
  ["Compare", "The scene as it was opened, in grey, and how far from it everything is"],
  ["Save as…", "The animation with its edits, as a file; it says first what that does not hold"],
  ["Camera", "Look through a camera of the scene; any other view leaves it"],
  ["Positions, in the settings", "Relative to an object as it turns, to a camera, or where they are on its screen"],
];

const PAGE: readonly Row[] = [
  ["Moving only", "The list leaves out what does not travel, and says how much that is."],
  ["still, turns?", "An object that does not move; one that has keys but does not travel: it may only turn."],
  ["Round marks", "Of several selected objects: the colours of their curves in the graph."],
  ["Reset settings", "Colours, sizes, marks and keys as at first. What is selected, listed and seen stays."],
  ["The address", "Keeps all of this: a link opens the page as it is."],
];

const MODES: readonly Row[] = [
  ["Standard", "One colour for all."],
  ["Spacing", "Blue is slow, red is fast, measured against the trail's own typical speed."],
  ["Flow", "Before and after the current frame in two colours."],
  ["Beats", "The colour changes at each key."],
];

const CONTROLS: readonly Row[] = [
  ["In the list: ↑ ↓", "Another object; with Shift, select on the way"],
  ["In the list: →", "Open, then to the buttons Show and Solo"],
  ["In the list: ←", "Back, fold, then to what it hangs from"],
  ["In the list: Space or Enter", "Select, or press the button"],
  ["On the timeline: ← → Page ↑ Page ↓", "One frame, or ten"],
];

function table(
  heads: Row, rows: readonly Row[], content: (what: string) => (Node | string)[] = (what) => [what],
): HTMLTableElement {
  const line = ([what, does]: Row) => el("tr", {}, el("th", { scope: "row" }, ...content(what)), el("td", {}, does));
  const head = el("tr", {}, ...heads.map((text) => el("th", { scope: "col" }, text)));
  return el("table", {}, el("thead", {}, head), el("tbody", {}, ...rows.map(line)));
}

function keyRows(app: App): Row[] {
  const rows = commandsOf(app).filter(({ keys }) => keys.length > 0)
    .map(({ keys, title }) => [keys.map(keyLabel).join(" "), title] as const);
  return [...rows, ["?", "This help"]];
}

/** Each key as a key, between spaces. */
const keyCaps = (keys: string): Node[] => keys.split(" ").map((key) => el("kbd", {}, key));

export interface Help {
  readonly element: HTMLDialogElement;
  open(): void;
}

/** Whether a key belongs to a field of text. */
const inText = (target: EventTarget | null) =>
  target instanceof Element && target.closest("input:not([type=checkbox]):not([type=radio]):not([type=range]), select, textarea") !== null;

export function buildHelp(app: App): Help {
  const part = (title: string, ...content: Node[]) => el("section", {}, el("h3", {}, title), ...content);
  const { element, open } = buildReading(
    "help", "Help", "Keys, mouse and colours",
    part("Keys", table(["Key", "Does"], keyRows(app), keyCaps),
      el("p", { class: "note" }, "Keys that type a letter, a digit or a sign can be switched off in the settings: for who speaks to the computer.")),
    el("div", {},
      part("Keys of single controls", table(["Key", "Does"], CONTROLS)),
      part("Mouse", table(["Mouse", "Does"], [...MOUSE, ...(app.editing ? EDITING : [])])),
      part("Colour modes", table(["Mode", "Means"], MODES)),
      part("On the page", table(["What", "Means"], PAGE))),
  );
  document.addEventListener("keydown", (event) => {
    if (event.key !== "?" || event.ctrlKey || event.metaKey || event.altKey || event.defaultPrevented || inText(event.target)) return;
    if (!app.store.state.letterKeys) return;
    event.preventDefault();
    open();
  }, { signal: app.life });
  return { element, open };
}
