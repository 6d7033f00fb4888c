// The page around the viewport.

import type { App } from "../model/app";
import type { TrailChange } from "../source/trail";
import { el } from "./parts/dom";
import { buildCompareGraph } from "./compare_graph";
import { buildGraph, type GraphPanel } from "./graph";
import { buildHelp } from "./help";
import { buildLive } from "./parts/live";
import { buildMeasuresDialog } from "./measures_dialog";
import { buildObjects } from "./objects";
import { buildPictureDialog } from "./picture_dialog";
import { buildSaveDialog } from "./live/save_dialog";
import { buildSettings } from "./settings";
import { panelButton } from "./sheets";
import { followTheme } from "./parts/theme";
import { buildTimeline } from "./timeline";
import { buildToolbar } from "./toolbar";
import { buildTransport } from "./transport";

export interface Page {
  /** The element that the viewport fills. */
  readonly viewport: HTMLElement;
  announce(text: string): void;
  /** `moved` are those that a drag moves. */
  trailsChanged(how: TrailChange, moved: ReadonlySet<number>): void;
}

/** A link past the toolbar and the list. It moves the focus only, because the hash of the address holds the state. */
function skipLink(viewport: HTMLElement): HTMLElement {
  const link = el("a", { class: "skip", href: "#viewport" }, "Skip to the trails");
  link.addEventListener("click", (event) => {
    event.preventDefault();
    viewport.focus();
  });
  return link;
}

/** The viewport has the role of an application, so that screen readers pass its keys on to the page. */
function viewportElement(): { viewport: HTMLElement; description: HTMLElement } {
  const description = el(
    "p", { class: "hidden", id: "viewport-keys" },
    "Space plays, the arrow keys step through the frames, J, K, L and M turn, plus and minus zoom, F frames what is " +
      "selected, question mark lists all keys. " +
      "The list of objects, the timeline and the graph say in words what is drawn here.",
  );
  const viewport = el("div", {
    class: "viewport", id: "viewport", role: "application", tabindex: 0, "aria-label": "Trails", "aria-describedby": description.id,
  });
  return { viewport, description };
}

/** `channels` is shown under the graph, where there is one. */
export function buildPage(app: App, root: HTMLElement, channels: Pick<GraphPanel, "element" | "redraw"> | null): Page {
  const { viewport, description } = viewportElement();
  const live = buildLive();
  const help = buildHelp(app);
  const picture = buildPictureDialog(app);
  const saving = app.writing && buildSaveDialog(app, app.writing);
  const objects = buildObjects(app);
  const settings = buildSettings(app);
  const timeline = buildTimeline(app);
  const measures = buildMeasuresDialog(app);
  const graph = buildGraph(app, measures.open);
  const compareGraph = buildCompareGraph(app);
  const toolbar = buildToolbar(app, {
    listButton: panelButton(app, { key: "showList", name: "Objects", icon: "list", element: objects.element }),
    settingsButton: panelButton(app, { key: "showSettings", name: "Settings", icon: "settings", element: settings.element }),
    openHelp: help.open,
    openPicture: picture.open,
    openSave: () => saving?.open(),
  });
  const stage = el("main", { class: "stage" }, viewport, description, live.element);
  const time = el("section", { class: "time-panel", "aria-label": "Time" }, buildTransport(app), timeline.element, graph.element);
  if (channels) time.append(channels.element);
  if (compareGraph) time.append(compareGraph.element);
  root.classList.add("page");
  root.replaceChildren(skipLink(viewport), toolbar, objects.element, stage, time, settings.element, help.element, picture.element, measures.element);
  if (saving) root.append(saving.element);
  const redraw = () => {
    timeline.redraw();
    graph.redraw();
    channels?.redraw();
    compareGraph?.redraw();
  };
  const follow = (moved: ReadonlySet<number>) => {
    timeline.trailsMoved();
    graph.trailsMoved(moved);
    channels?.redraw();
    compareGraph?.redraw();
  };
  followTheme(app, redraw);
  return {
    viewport,
    announce: live.announce,
    trailsChanged(how, moved) {
      if (how === "provisional") return follow(moved);
      if (how === "measured") {
        measures.refresh();
        return graph.measured();
      }
      redraw();
      objects.trailsChanged();
      settings.trailsChanged();
    },
  };
}
