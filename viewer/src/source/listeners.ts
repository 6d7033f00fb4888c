// Those that are told when something has changed.

export class Listeners<Told extends unknown[]> {
  private readonly all = new Set<(...told: Told) => void>();

  /** Until the result is called. */
  add(listener: (...told: Told) => void): () => void {
    this.all.add(listener);
    return () => void this.all.delete(listener);
  }

  tell(...told: Told): void {
    for (const listener of this.all) listener(...told);
  }
}
