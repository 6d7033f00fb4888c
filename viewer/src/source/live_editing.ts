// Edits that the engine beside the page makes.

import type { LiveClient } from "../../../web/src/live/client";
import type { Dragged } from "../../../web/src/live/protocol";
import type { History } from "../../../web/src/index";
import { Listeners } from "./listeners";
import type { Grip as EngineGrip } from "../../../web/src/live/grips";
import type { ChannelCurve, Editing, Grip, KeyKind, PathTangents, TangentKind } from "./trail";

export class LiveEditing implements Editing {
  working: Editing["working"] = null;
  draggedTo: number | null = null;
  private dragging = false;
  /** Where the grip is wanted next, while it is on its way elsewhere. */
  private next: readonly number[] | null = null;
  /** Keys whose tangents were broken, by object and frame. */
  private readonly broken = new Set<string>();
  private moving: Promise<void> | null = null;
  private begun: Promise<void> = Promise.resolve();
  private readonly watchers = new Listeners<[]>();

  /** `sourceOf` names a trail's object, `count` how many trails there are; `moved` is told where a drag takes them. */
  constructor(private readonly client: LiveClient, private history: History, private readonly sourceOf: (trail: number) => string,
              private readonly count: () => number, private readonly moved: (dragged: Dragged) => void) {}

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

  breakTangents(trails: readonly number[], frame: number): void {
    for (const trail of trails) this.broken.add(this.keyName(trail, frame));
    this.watchers.tell();
  }

  async unifyTangents(trails: readonly number[], frame: number): Promise<void> {
    for (const trail of trails) this.broken.delete(this.keyName(trail, frame));
    this.remember(await this.client.call("unifyTangents", trails.map(this.sourceOf), frame));
  }

  async tangentKinds(trails: readonly number[], frame: number): Promise<readonly KeyKind[]> {
    return this.client.call("tangentKinds", { objects: trails.map(this.sourceOf), frame });
  }

  async setTangentKind(trails: readonly number[], frame: number, kind: TangentKind, channels?: readonly string[]): Promise<void> {
    this.remember(await this.client.call("setTangentKind", { objects: trails.map(this.sourceOf), channels, frame }, kind));
  }

  async setWeighted(trails: readonly number[], frame: number, weighted: boolean, channels?: readonly string[]): Promise<void> {
    this.remember(await this.client.call("setWeighted", { objects: trails.map(this.sourceOf), channels, frame }, weighted));
  }

  async pathTangents(trails: readonly number[], frame: number): Promise<readonly (PathTangents | null)[]> {
    const all = await this.client.call("pathTangents", trails.map(this.sourceOf), frame);
    return all.map((each, k) => each && { ...each, broken: each.broken || this.isBroken(trails[k], frame) });
  }

  async channelCurves(trail: number, frames: Float64Array): Promise<readonly ChannelCurve[]> {
    const all = await this.client.call("channelCurves", this.sourceOf(trail), frames);
    const keyed = (key: ChannelCurve["keys"][number]) => ({ ...key, broken: key.broken || this.isBroken(trail, key.frame) });
    return all.map((curve) => ({ ...curve, keys: curve.keys.map(keyed) }));
  }

  beginDrag(grip: Grip): Promise<void> {
    this.next = null;
    this.dragging = true;
    this.draggedTo = grip.frame;
    return (this.begun = this.client.call("beginDrag", this.inEngine(grip)).catch((error: Error) => {
      this.dragging = false;
      throw error;
    }));
  }

  drag(to: readonly number[]): Promise<void> {
    this.next = to;
    return (this.moving ??= this.follow().finally(() => (this.moving = null)));
  }

  async endDrag(kept: boolean): Promise<void> {
    await this.moving?.catch(() => {}); // whoever asked for it was told
    this.dragging = false;
    this.remember(await this.client.call("endDrag", kept));
  }

  private async follow(): Promise<void> {
    await this.begun.catch(() => {}); // whoever began it is told
    while (this.next && this.dragging) {
      const to = this.next;
      this.next = null;
      const dragged = await this.client.call("drag", to);
      this.draggedTo = dragged.frame;
      this.moved(dragged);
    }
  }

  private readonly keyName = (trail: number, frame: number) => JSON.stringify([this.sourceOf(trail), frame]);

  private brokenFrames(object: string): number[] {
    return [...this.broken].map((name) => JSON.parse(name) as [string, number]).flatMap(([source, frame]) => (source === object ? [frame] : []));
  }

  private isBroken(trail: number, frame: number): boolean {
    return this.broken.has(this.keyName(trail, frame));
  }

  private inEngine(grip: Grip): EngineGrip {
    const { what, frame } = grip;
    if (what === "time") return { what, objects: grip.trails.map(this.sourceOf), frame };
    const object = this.sourceOf(grip.trail);
    if (what === "place") return { what, object, frame };
    if (what === "bead") return { what, object, frame, broken: this.brokenFrames(object) };
    if (what === "key") return { what, object, channel: grip.channel, frame };
    const unified = !this.isBroken(grip.trail, frame);
    return what === "tangent"
      ? { what, object, channel: grip.channel, frame, side: grip.side, unified } : { what, object, frame, side: grip.side, unified };
  }

  /** After an edit the engine says when all trails are as they should be. */
  private remember(history: History): void {
    this.history = history;
    this.work({ done: 0, of: this.count() });
  }
}
