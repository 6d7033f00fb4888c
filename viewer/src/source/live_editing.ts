// Edits that the engine beside the page makes.

import type { LiveClient } from "../../../web/src/live/client";
import type { Dragged } from "../../../web/src/live/protocol";
import type { History } from "../../../web/src/index";
import { Listeners } from "./listeners";
import type { Editing, Vec3 } from "./trail";

interface DraggedKey {
  readonly trail: number;
  readonly frame: number;
}

export class LiveEditing implements Editing {
  working: Editing["working"] = null;
  private dragged: DraggedKey | null = null;
  /** Where the key is wanted next, while it is on its way elsewhere. */
  private next: Vec3 | null = null;
  private moving: Promise<void> | null = null;
  private begun: Promise<void> = Promise.resolve();
  private readonly watchers = new Listeners<[]>();

  /** `sourceOf` names a trail's object, `count` how many trails there are; `moved` is told where a drag takes them. */
  constructor(private readonly client: LiveClient, private history: History, private readonly sourceOf: (trail: number) => string,
              private readonly count: () => number, private readonly moved: (trail: number, frame: number, dragged: Dragged) => void) {}

  get undoes(): string | null {
    return this.history.undo.at(-1) ?? null;
  }

  get redoes(): string | null {
    return this.history.redo;
  }

  subscribe(changed: () => void): () => void {
    return this.watchers.add(changed);
  }

  /** How far the engine is with making trails again. */
  work(working: Editing["working"]): void {
    this.working = working;
    this.watchers.tell();
  }

  async undo(): Promise<void> {
    this.remember(await this.client.call("undo"));
  }

  async redo(): Promise<void> {
    this.remember(await this.client.call("redo"));
  }

  async insertKeys(trails: readonly number[], frame: number): Promise<void> {
    this.remember(await this.client.call("insertKeys", trails.map(this.sourceOf), frame));
  }

  async removeKeys(trails: readonly number[], frame: number): Promise<void> {
    this.remember(await this.client.call("removeKeys", trails.map(this.sourceOf), frame));
  }

  async moveKeys(trails: readonly number[], frame: number, to: number): Promise<void> {
    this.remember(await this.client.call("moveKeys", trails.map(this.sourceOf), frame, to));
  }

  beginDrag(trail: number, frame: number): Promise<void> {
    this.next = null;
    this.dragged = { trail, frame };
    return (this.begun = this.client.call("beginDrag", this.sourceOf(trail), frame).catch((error: Error) => {
      this.dragged = null;
      throw error;
    }));
  }

  drag(place: Vec3): Promise<void> {
    this.next = place;
    return (this.moving ??= this.follow().finally(() => (this.moving = null)));
  }

  async endDrag(kept: boolean): Promise<void> {
    await this.moving?.catch(() => {}); // whoever asked for it was told
    this.dragged = null;
    this.remember(await this.client.call("endDrag", kept));
  }

  private async follow(): Promise<void> {
    await this.begun.catch(() => {}); // whoever began it is told
    while (this.next && this.dragged) {
      const [x, y, z] = this.next;
      const { trail, frame } = this.dragged;
      this.next = null;
      this.moved(trail, frame, await this.client.call("drag", [x, y, z]));
    }
  }

  /** After an edit the engine says when all trails are as they should be. */
  private remember(history: History): void {
    this.history = history;
    this.work({ done: 0, of: this.count() });
  }
}
