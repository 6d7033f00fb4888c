// Small pictures for buttons, drawn in the colour of the text around them. They say nothing to a screen reader: their
// button has a name.

const SVG = "http://www.w3.org/2000/svg";

/** Strokes on a field of 16 x 16; a path that begins with "!" is filled. */
const PATHS = {
  trail: ["M1.5 12.5C4 4 8.5 3 14 5.5", "!M3 7.2a1.5 1.5 0 100 3 1.5 1.5 0 000-3z", "!M7.2 2.7a1.5 1.5 0 100 3 1.5 1.5 0 000-3z", "!M13 3.6a2 2 0 100 4 2 2 0 000-4z"],
  first: ["M3.5 3v10", "!M13 3v10L5.5 8z"],
  last: ["M12.5 3v10", "!M3 3v10l7.5-5z"],
  previous: ["M11 3L5 8l6 5"],
  next: ["M5 3l6 5-6 5"],
  previousKey: ["M6.5 3L1.5 8l5 5", "!M11 4.6L14.4 8 11 11.4 7.6 8z"],
  nextKey: ["M9.5 3l5 5-5 5", "!M5 4.6L8.4 8 5 11.4 1.6 8z"],
  play: ["!M4 2.5v11l9.5-5.5z"],
  stop: ["!M4 3h3v10H4z", "!M9 3h3v10H9z"],
  frameAll: ["M2 5.5V2h3.5", "M10.5 2H14v3.5", "M14 10.5V14h-3.5", "M5.5 14H2v-3.5"],
  frameSelected: ["M2 5.5V2h3.5", "M10.5 2H14v3.5", "M14 10.5V14h-3.5", "M5.5 14H2v-3.5", "!M8 5.5a2.5 2.5 0 100 5 2.5 2.5 0 000-5z"],
  theme: ["M8 1.8a6.2 6.2 0 100 12.4A6.2 6.2 0 008 1.8z", "!M8 1.8v12.4A6.2 6.2 0 008 1.8z"],
  picture: ["M2 3h12v10H2z", "M2.5 11.5L6 8l2.5 2.5L11 8.5l2.5 2.5", "!M5.2 4.8a1.1 1.1 0 100 2.2 1.1 1.1 0 000-2.2z"],
  table: ["M2 3h12v10H2z", "M2 6.5h12", "M2 9.8h12", "M6.5 3v10"],
  help: ["M5.3 6a2.7 2.7 0 115 1.3C9.6 8.5 8 8.6 8 10.3", "!M8 12a.95.95 0 100 1.9.95.95 0 000-1.9z"],
  list: ["M5.5 4H14", "M5.5 8H14", "M5.5 12H14", "!M2 3.2h1.6v1.6H2z", "!M2 7.2h1.6v1.6H2z", "!M2 11.2h1.6v1.6H2z"],
  settings: ["M2 4.5h6.5", "M12 4.5h2", "M2 11.5h2", "M7.5 11.5H14", "M10.25 2.75a1.75 1.75 0 100 3.5 1.75 1.75 0 000-3.5z", "M5.75 9.75a1.75 1.75 0 100 3.5 1.75 1.75 0 000-3.5z"],
  close: ["M3.5 3.5l9 9", "M12.5 3.5l-9 9"],
  open: ["M1.8 12.5v-9h4l1.5 2h6.9v7z", "M1.8 7.5h12.4"],
  undo: ["M6 3L2.5 6.5 6 10", "M2.5 6.5h7a4 4 0 010 8H7"],
  redo: ["M10 3l3.5 3.5L10 10", "M13.5 6.5h-7a4 4 0 000 8H9"],
  breakTangents: ["M1.5 12L7 9.5", "M9 6.5L14.5 11", "!M8 6.2a1.8 1.8 0 100 3.6 1.8 1.8 0 000-3.6z"],
  unifyTangents: ["M1.5 11.5L14.5 4.5", "!M8 6.2a1.8 1.8 0 100 3.6 1.8 1.8 0 000-3.6z"],
  timeIn: ["M6.5 2a4.5 4.5 0 100 9 4.5 4.5 0 000-9z", "M10 10l4 4", "M4.3 6.5h4.4", "M6.5 4.3v4.4"],
  timeOut: ["M6.5 2a4.5 4.5 0 100 9 4.5 4.5 0 000-9z", "M10 10l4 4", "M4.3 6.5h4.4"],
  timeAll: ["M2 3v10", "M14 3v10", "M4.5 8h7", "M6.5 6l-2 2 2 2", "M9.5 6l2 2-2 2"],
  fold: ["!M4.5 6h7L8 11z"],
  foldAll: ["M3 8h10", "M5.5 2.5L8 5l2.5-2.5", "M5.5 13.5L8 11l2.5 2.5"],
  openAll: ["M3 8h10", "M5.5 5L8 2.5 10.5 5", "M5.5 11L8 13.5l2.5-2.5"],
  eye: ["M1.5 8S4 3.7 8 3.7 14.5 8 14.5 8 12 12.3 8 12.3 1.5 8 1.5 8z", "!M8 6a2 2 0 100 4 2 2 0 000-4z"],
  warning: ["M8 2.2L14.5 13.5h-13z", "M8 6.5v3.3", "!M8 11a.7.7 0 100 1.4A.7.7 0 008 11z"],
} as const;

export type IconName = keyof typeof PATHS;

const shape = (name: string, attributes: Readonly<Record<string, string>>) => {
  const made = document.createElementNS(SVG, name);
  for (const [key, value] of Object.entries(attributes)) made.setAttribute(key, value);
  return made;
};

export function icon(name: IconName): SVGElement {
  const svg = shape("svg", { class: "icon", viewBox: "0 0 16 16", "aria-hidden": "true", focusable: "false" });
  for (const path of PATHS[name]) {
    const filled = path.startsWith("!");
    svg.append(shape("path", { d: filled ? path.slice(1) : path, class: filled ? "filled" : "stroked" }));
  }
  return svg as SVGElement;
}

/** Shows another picture in a button. */
export function setIcon(button: Element, name: IconName): void {
  button.querySelector("svg")?.replaceWith(icon(name));
}
