// The live page: opens scenes, one after the other, in the engine that runs beside it, and shows each.

import { LiveError } from "../../web/src/live/client";
import { buildOpening, type Opening } from "./panels/opening";
import { chosenScene, runEngine, type EngineParts, type RunningEngine, type SceneRequest } from "./source/engine";
import type { App } from "./model/app";
import { choicesIn } from "./model/editing/choices";
import { takeIn, withTake } from "./model/hash";
import { LiveSource } from "./source/live";
import { show } from "./show";

export function openDesk(root: HTMLElement, parts: EngineParts, brought: SceneRequest | null): void {
  const desk = new Desk(root, parts);
  void desk.begin(brought);
}

class Desk {
  private readonly opening: Opening;
  private engine: RunningEngine;
  private source: LiveSource | null = null;
  /** What shows the source. */
  private app: App | null = null;
  /** The one that was chosen of its takes. */
  private take: string | null = null;
  private life = new AbortController();
  /** Scenes are opened one at a time. */
  private busy: Promise<void> = Promise.resolve();

  constructor(private readonly root: HTMLElement, private readonly parts: EngineParts) {
    this.opening = buildOpening((files) => void this.open(() => chosenScene(files)));
    this.engine = this.start();
  }

  async begin(brought: SceneRequest | null): Promise<void> {
    if (brought) return this.open(() => Promise.resolve(brought), location.hash);
    this.opening.invite(this.root);
    try {
      await this.engine.ready;
      document.documentElement.dataset.ready = "true";
    } catch (error) {
      this.opening.fail(error as Error);
    }
  }

  private start(): RunningEngine {
    const engine = runEngine(this.parts, (event) => this.source?.hear(event));
    engine.ready.catch(() => {}); // whoever uses it is told
    return engine;
  }

  /** Shows the scene that `request` names, as the hash says, or why not: then what was shown stays. */
  private open(request: () => Promise<SceneRequest>, hash?: string): Promise<void> {
    return (this.busy = this.busy.then(async () => {
      try {
        await this.show(await request(), hash ?? (this.source ? "" : location.hash));
        this.opening.clear();
      } catch (error) {
        this.app?.store.set({ take: this.take });
        if (!this.source) this.opening.invite(this.root);
        this.opening.fail(error as Error);
      }
    }));
  }

  private async show(request: SceneRequest, hash: string): Promise<void> {
    this.opening.progress(`Opening ${request.name}…`);
    const { opened, take } = await this.askForTake(request, takeIn(hash));
    const source = new LiveSource(this.engine.client, request, opened);
    const kept = this.app && choicesIn(this.app, this.app.motion.trails, source.trails());
    if (this.source) history.replaceState(null, "", location.pathname + hash);
    this.source = source;
    this.take = take;
    this.life.abort();
    this.life = new AbortController();
    this.app = show(this.root, source, { life: this.life.signal, hash: withTake(hash, take), chooseFiles: () => this.opening.choose() });
    if (kept) this.app.store.set(kept);
    this.followTake(this.app, request);
  }

  /** Shows another take as soon as one is chosen, with all settings that the address keeps. */
  private followTake(app: App, request: SceneRequest): void {
    const { signal } = this.life;
    app.store.subscribe(({ take }) => {
      if (signal.aborted || take === this.take) return;
      const lost = app.editing!.undoes === null ? "" : "; the edits of the other one are gone";
      void this.open(() => Promise.resolve(request), withTake(location.hash, take)).then(() => {
        if (this.take === take) this.app?.announce(`The take ${this.app.scene.takes?.names[this.app.scene.takes.shown]}${lost}`);
      });
    }, ["take"]);
  }

  /** A take that the scene does not have is none. */
  private async askForTake(request: SceneRequest, take: string | null) {
    if (take === null) return { opened: await this.ask(request), take };
    const { wanted } = request;
    try {
      return { opened: await this.ask({ ...request, wanted: { ...wanted, reading: { ...wanted.reading, take } } }), take };
    } catch {
      return { opened: await this.ask(request), take: null };
    }
  }

  /** An engine that broke down is started anew once: what was open in it is shown as it was, but not edited any more. */
  private async ask(request: SceneRequest) {
    try {
      await this.engine.ready;
      return await this.engine.client.call("open", request.wanted);
    } catch (error) {
      if (error instanceof LiveError && error.gone) {
        this.engine.stop();
        this.engine = this.start();
      }
      throw error;
    }
  }
}
