// Light or dark: what the reader chose, else what the system prefers.

import type { Theme } from "./state";

const darkPreferred = () => window.matchMedia("(prefers-color-scheme: dark)");

export const isDark = (theme: Theme): boolean => theme === "dark" || (theme === "auto" && darkPreferred().matches);

/** Until `life` ends. */
export const onPreferenceChange = (changed: () => void, life: AbortSignal): void =>
  darkPreferred().addEventListener("change", changed, { signal: life });
