// A Worker around LiveHost: the first message brings the engine, each further one is a request.

import { Engine } from "../engine";
import { EngineCrash, EngineError } from "../errors";
import { LiveHost } from "./host";
import { ownBuffers } from "./numbers";
import type { Failure, Reply, Request, Requests, Start } from "./protocol";

const port = globalThis as unknown as {
  postMessage(message: Reply, transfer: ArrayBuffer[]): void;
  onmessage: (message: { data: Start | Request }) => void;
};

function failureOf(error: unknown): Failure {
  const kind = error instanceof EngineError ? error.kind : error instanceof EngineCrash ? null : "failed";
  return { message: error instanceof Error ? error.message : String(error), kind };
}

async function started({ wasm }: Start): Promise<LiveHost> {
  const stream = new Blob([wasm]).stream().pipeThrough(new DecompressionStream("gzip"));
  const headers = { "Content-Type": "application/wasm" };
  const engine = await Engine.start(await WebAssembly.compileStreaming(new Response(stream, { headers })));
  return new LiveHost(engine, {
    tell: (event, transfer) => port.postMessage({ event }, transfer),
    later: (run, milliseconds) => void setTimeout(run, milliseconds),
    now: () => performance.now(),
  });
}

function answer(host: LiveHost, { id, call, given }: Request): void {
  try {
    const answered = (host[call] as (...given: unknown[]) => unknown).apply(host, given);
    const { numbers, parts } = (answered ?? {}) as Partial<ReturnType<Requests["open"]> & ReturnType<Requests["drag"]>>;
    port.postMessage({ id, answer: answered }, ownBuffers(numbers ?? parts ?? []));
  } catch (error) {
    port.postMessage({ id, failure: failureOf(error) }, []);
  }
}

let host: LiveHost;
port.onmessage = async ({ data }) => {
  if ("call" in data) return answer(host, data);
  try {
    host = await started(data);
    port.postMessage({ id: 0, answer: null }, []);
  } catch (error) {
    port.postMessage({ id: 0, failure: { ...failureOf(error), kind: null } }, []);
  }
};
