// The viewport's colours, light and dark.

import type { Theme } from "../model/state";
import { isDark } from "../model/theme";

export interface Colors {
  readonly background: string;
  readonly ground: string;
  readonly grid: string;
  readonly axis: string;
  readonly box: string;
  readonly boxEdge: string;
  /** Around lines and markers, so that no colour drowns in the background. */
  readonly casing: string;
  /** Around what is selected. */
  readonly selected: string;
  /** The figure now, and its onion skins before and after. */
  readonly bone: string;
  readonly before: string;
  readonly after: string;
  readonly ink: string;
  readonly soft: string;
}

const LIGHT: Colors = {
  background: "#f5f6f8", ground: "#eceef2", grid: "#d3d8e0", axis: "#aab4c1", box: "#d9dee6", boxEdge: "#a3adbb",
  casing: "#9aa2ad", selected: "#1f5fd0", bone: "#4d5968", before: "#b26a00", after: "#00777a",
  ink: "#1c2430", soft: "#556070",
};
const DARK: Colors = {
  background: "#14171c", ground: "#181c22", grid: "#2a313b", axis: "#4a5463", box: "#272d36", boxEdge: "#47515f",
  casing: "#090b0d", selected: "#7fb0ff", bone: "#b4bdc9", before: "#e5a23a", after: "#35b9b9",
  ink: "#eef1f5", soft: "#9aa5b5",
};

export const colorsOf = (theme: Theme): Colors => (isDark(theme) ? DARK : LIGHT);
