// Puts the page together.

import "./style.css";
import { openDesk } from "./desk";
import { embeddedSource } from "./source/embedded";
import { embeddedScene, engineParts } from "./source/engine";
import { show } from "./show";

const root = document.getElementById("app")!;

/** What went wrong, in place of the page. */
function fail(error: unknown): void {
  const message = document.createElement("p");
  message.setAttribute("role", "alert");
  message.className = "failure";
  message.textContent = error instanceof Error ? error.message : String(error);
  root.replaceChildren(message);
}

try {
  const engine = engineParts();
  if (engine) openDesk(root, engine, embeddedScene());
  else show(root, embeddedSource(), { life: new AbortController().signal, hash: location.hash });
} catch (error) {
  fail(error);
  throw error;
}
