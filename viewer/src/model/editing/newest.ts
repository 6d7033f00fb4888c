// Work that is asked for more often than it can be done.

/** Runs the work; asked for meanwhile, once more afterwards, however often that was. */
export function newest(work: () => Promise<void>): () => void {
  let [busy, again] = [false, false];
  const run = async (): Promise<void> => {
    busy = true;
    do {
      again = false;
      await work().catch(() => {}); // there is nothing to show then
    } while (again);
    busy = false;
  };
  return () => {
    again = true;
    if (!busy) void run();
  };
}
