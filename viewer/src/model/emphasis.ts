// Which trails are lit: the selected ones, beside which the others are dimmed.

import { isVisible, type ViewState } from "./state";

/** Tells of a trail whether it is dimmed: another one that is shown is selected, and it is not. */
export function dimming(state: ViewState): (trail: number) => boolean {
  const some = [...state.selected].some((trail) => isVisible(state, trail));
  return (trail) => some && !state.selected.has(trail);
}
