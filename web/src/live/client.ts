// The page's end of the Worker: requests with their answers, and events.

import type { Answer, Given, LiveEvent, Reply, Requests } from "./protocol";

/** What was wrong, in the engine's words. */
export class LiveError extends Error {
  override readonly name = "LiveError";

  constructor(message: string, /** Whether the engine is gone, and all that was open in it. */ readonly gone: boolean) {
    super(message);
  }
}

interface Waiting {
  resolve(answer: unknown): void;
  reject(error: Error): void;
}

/** As much of a Worker as is used. */
export interface WorkerLike {
  postMessage(message: unknown, transfer?: Transferable[]): void;
  onmessage: ((message: MessageEvent<Reply>) => void) | null;
  onerror: ((event: ErrorEvent) => void) | null;
}

export class LiveClient {
  private readonly waiting = new Map<number, Waiting>();
  private count = 0;
  private broken: LiveError | null = null;

  constructor(private readonly worker: WorkerLike, private readonly heard: (event: LiveEvent) => void) {
    worker.onmessage = ({ data }) => this.take(data);
    worker.onerror = (event) => this.breakDown(new LiveError(event.message || "the engine could not be started", true));
  }

  /** Hands the compressed WebAssembly over; answers when the engine stands. Messages are answered in their order. */
  start(wasm: ArrayBuffer): Promise<void> {
    return this.send(0, { id: 0, wasm }, [wasm]) as Promise<void>;
  }

  call<K extends keyof Requests>(call: K, ...given: Given<K>): Promise<Answer<K>> {
    const id = ++this.count;
    return this.send(id, { id, call, given }) as Promise<Answer<K>>;
  }

  private send(id: number, message: unknown, transfer: Transferable[] = []): Promise<unknown> {
    if (this.broken) return Promise.reject(this.broken);
    return new Promise((resolve, reject) => {
      this.waiting.set(id, { resolve, reject });
      this.worker.postMessage(message, transfer);
    });
  }

  private take(reply: Reply): void {
    if ("event" in reply) return this.heard(reply.event);
    const waiting = this.waiting.get(reply.id);
    this.waiting.delete(reply.id);
    if ("answer" in reply) return waiting?.resolve(reply.answer);
    waiting?.reject(new LiveError(reply.failure.message, reply.failure.kind === null));
  }

  /** Whoever waits is told, and so is whoever asks from here on. */
  private breakDown(error: LiveError): void {
    this.broken = error;
    for (const { reject } of this.waiting.values()) reject(error);
    this.waiting.clear();
  }
}
