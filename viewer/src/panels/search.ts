// Which objects a search finds.

import type { Trail } from "../source/trail";

/** Case does not count. With "*", which stands for anything, a whole name or path has to fit; without, a part of one. */
export function matcher(search: string): (trail: Trail) => boolean {
  const wanted = search.trim().toLowerCase();
  if (wanted === "") return () => true;
  const either = (fits: (text: string) => boolean) => (trail: Trail) =>
    fits(trail.name.toLowerCase()) || fits(trail.source.toLowerCase());
  if (!wanted.includes("*")) return either((text) => text.includes(wanted));
  const parts = wanted.split(/\*+/).map((part) => part.replace(/[.+?^${}()|[\]\\]/g, "\\$&"));
  const pattern = new RegExp(`^${parts.join("[^]*")}$`);
  return either((text) => pattern.test(text));
}
