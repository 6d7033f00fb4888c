// Which objects a search finds.

import type { Trail } from "../source/trail";

/** Whether the parts follow one another in the text: the first at its start, the last at its end. */
function followsAll(text: string, parts: readonly string[]): boolean {
  const [first, last] = [parts[0], parts[parts.length - 1]];
  if (!text.startsWith(first) || !text.endsWith(last)) return false;
  const end = text.length - last.length;
  let at = first.length;
  for (const part of parts.slice(1, -1)) {
    const found = text.indexOf(part, at);
    if (found < 0) return false;
    at = found + part.length;
  }
  return at <= end;
}

/** Case does not count. With "*", which stands for anything, a whole name or path has to fit; without, a part of one. */
export function matcher(search: string): (trail: Trail) => boolean {
  const wanted = search.trim().toLowerCase();
  const parts = wanted.split("*");
  const fits = parts.length > 1 ? (text: string) => followsAll(text, parts) : (text: string) => text.includes(wanted);
  return ({ name, source }) => fits(name.toLowerCase()) || fits(source.toLowerCase());
}
