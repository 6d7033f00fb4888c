// Light or dark: what the reader chose, else what the system prefers. The style sheet has the colours.

import type { App } from "../../model/app";
import type { Theme } from "../../model/state";
import { isDark, onPreferenceChange } from "../../model/theme";

const ORDER: readonly Theme[] = ["auto", "light", "dark"];
export const THEME_NAMES: Record<Theme, string> = { auto: "as the system", light: "light", dark: "dark" };

export const nextTheme = (theme: Theme): Theme => ORDER[(ORDER.indexOf(theme) + 1) % ORDER.length];

/** Keeps the page's colours as chosen; calls back after every change, for what is drawn and not styled. */
export function followTheme(app: App, changed: () => void): void {
  const apply = () => {
    document.documentElement.dataset.theme = isDark(app.store.state.theme) ? "dark" : "light";
    changed();
  };
  onPreferenceChange(apply, app.life);
  window.matchMedia("(forced-colors: active)").addEventListener("change", apply, { signal: app.life });
  app.store.subscribe(apply, ["theme"]);
  apply();
}

/** Colours of the style sheet by the name of their variable, as they are now. */
export function styleColors<N extends string>(...names: readonly N[]): Record<N, string> {
  const style = getComputedStyle(document.documentElement);
  return Object.fromEntries(names.map((name) => [name, style.getPropertyValue(`--${name}`).trim()])) as Record<N, string>;
}
