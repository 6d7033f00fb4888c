// The marks of keys on the timeline as handles: the keys that the selected objects have there go to other frames together.

import type { App } from "../model/app";
import { goTo, shownKeyTimes } from "../model/commands";
import { listenToGrips, type Gripped } from "../model/editing/gripping";
import type { FrameScale } from "./frame_scale";
import { KEYS } from "./timeline_drawing";

/** Pixels from the middle of a mark within which it is hit. */
const [ACROSS, UP] = [6, 8];

function markAt(app: App, scale: FrameScale, x: number, y: number): Gripped | null {
  if (Math.abs(y - KEYS) > UP) return null;
  const away = (time: number) => Math.abs(scale.x(time) - x);
  const frame = shownKeyTimes(app).reduce((best, time) => (away(time) < away(best) ? time : best), Infinity);
  const trails = [...app.store.state.selected].filter((trail) => app.motion.trails[trail]?.keyTimes.includes(frame));
  if (!(away(frame) <= ACROSS) || trails.length === 0) return null;
  return { grip: { what: "time", trails, frame }, wanted: (to) => [frame + (to.x - x) / scale.pixelsPerFrame] };
}

/** Comes before what else listens there. */
export function listenToKeyMarks(app: App, track: HTMLElement, scale: () => FrameScale): void {
  listenToGrips(app, track, {
    gripAt: ({ x, y }) => markAt(app, scale(), x, y),
    clicked: (_at, { grip }) => goTo(app, grip.frame),
    moved() {
      const { draggedTo } = app.editing!;
      if (draggedTo !== null) goTo(app, draggedTo);
    },
  });
}
