// Calls of the engine leave nothing else a turn, so the tests do: vitest gives up on one that says nothing for a minute.

import { beforeEach } from "vitest";

beforeEach(() => new Promise((resolve) => setTimeout(resolve)));
