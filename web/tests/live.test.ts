import { join } from "node:path";
import { describe, expect, test } from "vitest";
import { LiveClient, type WorkerLike } from "../src/live/client";
import { LiveHost } from "../src/live/host";
import type { LiveEvent, Reply } from "../src/live/protocol";
import { examples, filesOf, startEngine } from "./support/engine";

const engine = await startEngine();
const files = (name: string) => filesOf(examples.find((path) => path.endsWith(join("/", name)))!);
const wanted = (name: string, patterns: string[] = []) => ({ files: files(name), reading: {}, trails: { patterns } });

/** A host whose turns are taken by hand. */
function hosted() {
  const events: LiveEvent[] = [], due: (() => void)[] = [];
  const host = new LiveHost(engine, {
    tell: (event) => void events.push(event), later: (run) => void due.push(run), now: () => performance.now(),
  });
  /** Until no more turns are due; the engine waits a fifth of a second for the last edit. */
  const settle = () => {
    while (due.length > 0) due.shift()!();
    return events.splice(0);
  };
  return { host, settle };
}

const trailsOf = (events: LiveEvent[]) => events.flatMap((event) => (event.kind === "trails" ? [event] : []));

describe("the host of a live page", () => {
  test("tells all measures once the scene is open, and nothing else of trails that nobody edited", () => {
    const { host, settle } = hosted();
    const { fields, measures, numbers } = host.open(wanted("walk.bvh", ["*Foot"]));
    expect([fields.length, numbers.length]).toEqual([2, 2]);
    const events = settle();
    expect(trailsOf(events).map(({ numbers: made, pending }) => [made.length, pending])).toEqual([[0, false]]);
    const told = new Map(events.flatMap((event) => (event.kind === "measures" ? event.values : [])));
    expect([...told.keys()].sort()).toEqual([0, 1]);
    expect(told.get(0)!.length).toBe(measures.length);
    expect(told.get(0)![measures.findIndex(({ name }) => name === "length")]).toBeGreaterThan(0);
  });

  test("makes a drag one step, shows where it leads, and rebuilds what moved to the same bits", () => {
    const { host, settle } = hosted();
    const { numbers } = host.open(wanted("bounce.ma", ["ball"]));
    settle();
    host.beginDrag({ what: "place", object: "|ball", frame: 22 });
    for (let k = 1; k <= 3; ++k) host.drag([k, 2 * k, 0.5 * k]);
    const { keys: [{ position }], parts } = host.drag([1, 2, 3]);
    position.forEach((value, k) => expect(value).toBeCloseTo(k + 1, 9));
    expect(host.endDrag(true).undo).toEqual(["move key"]);
    const made = trailsOf(settle()).flatMap((event) => event.numbers);
    expect(made.map(({ index }) => index)).toEqual([0]);
    const [{ first, points }] = parts;
    expect(points.length).toBeGreaterThan(3);
    expect([...made[0].points.subarray(3 * first, 3 * first + points.length)]).toEqual([...points]);
    expect(host.undo().undo).toEqual([]);
    const back = trailsOf(settle()).flatMap((event) => event.numbers);
    expect([...back[0].points]).toEqual([...numbers[0].points]);
  });

  test("slides a bead on the path as it was at first, wherever it was pulled before", () => {
    const pulled = (way: number[], broken: number[] = []) => {
      const { host, settle } = hosted();
      const { numbers: [before] } = host.open(wanted("bounce.ma", ["ball"]));
      settle();
      host.beginDrag({ what: "bead", object: "|ball", frame: 17, broken });
      for (const frame of way) host.drag([frame]);
      expect(host.endDrag(true).undo).toEqual(way.at(-1) === 17 ? [] : ["change spacing"]);
      const made = trailsOf(settle()).flatMap((event) => event.numbers);
      return { before: [...before.points], after: [...(made.at(-1) ?? before).points] };
    };
    const direct = pulled([18]), around = pulled([15, 20.5, 14, 18]);
    expect(around.after).toEqual(direct.after);
    expect(direct.after).not.toEqual(direct.before);
    expect(pulled([15, 20, 17]).after).toEqual(direct.before);
    const alone = pulled([18], [22]).after, beyond = direct.before.length / 79 * 23; // at frame 24 of 1 to 79
    const off = (points: number[]) => Math.abs(points[beyond] - direct.before[beyond]);
    expect(off(direct.after)).toBeGreaterThan(1e-3);
    expect(off(alone)).toBeLessThan(1e-9);
  });

  test("puts a key back that is not to be kept, and takes nothing else back with it", () => {
    const { host } = hosted();
    host.open(wanted("bounce.ma", ["ball"]));
    const [key] = host.keys("|ball", "translateY");
    host.putKey("|ball", "translateY", { ...key, value: key.value + 1 });
    host.beginDrag({ what: "place", object: "|ball", frame: 22 });
    expect(host.endDrag(false).undo).toEqual(["put key"]);
    host.beginDrag({ what: "place", object: "|ball", frame: 22 });
    host.drag([1, 2, 3]);
    expect(host.endDrag(false).undo).toEqual(["put key"]);
  });

  test("keeps the scene that is open when the next one cannot be read", () => {
    const { host } = hosted();
    host.open(wanted("bounce.ma", ["ball"]));
    const [damaged] = files("walk.bvh");
    expect(() => host.open({ files: [{ ...damaged, bytes: damaged.bytes.slice(0, 100) }], reading: {}, trails: {} })).toThrow("walk.bvh");
    expect(host.keys("|ball", "translateY").length).toBeGreaterThan(0);
  });

  test("keeps as much memory over 20 scenes as over one", () => {
    const { host, settle } = hosted();
    const turn = () => {
      host.open(wanted("bounce.ma"));
      settle();
    };
    for (let k = 0; k < 3; ++k) turn();
    const known = engine.epoch;
    for (let k = 0; k < 20; ++k) turn();
    expect(engine.epoch).toBe(known);
  });
});

/** A Worker that answers when it is told to. */
function fakeWorker() {
  const sent: { id: number }[] = [];
  const worker: WorkerLike = { postMessage: (message) => void sent.push(message as { id: number }), onmessage: null, onerror: null };
  const reply = (data: Reply) => worker.onmessage!({ data } as MessageEvent<Reply>);
  return { worker, sent, reply };
}

describe("a page's end of the Worker", () => {
  test("gives each request its own answer, in any order, and hands events on", async () => {
    const heard: LiveEvent[] = [];
    const { worker, sent, reply } = fakeWorker();
    const client = new LiveClient(worker, (event) => heard.push(event));
    const answers = [client.call("undo"), client.call("redo")];
    reply({ id: sent[1].id, answer: "second" });
    reply({ event: { kind: "measures", values: [] } });
    reply({ id: sent[0].id, failure: { message: "nothing to undo", kind: "failed" } });
    await expect(answers[1]).resolves.toBe("second");
    await expect(answers[0]).rejects.toMatchObject({ message: "nothing to undo", gone: false });
    expect(heard).toEqual([{ kind: "measures", values: [] }]);
  });

  test("leaves no request waiting when the Worker breaks down, nor one that comes later", async () => {
    const { worker } = fakeWorker();
    const client = new LiveClient(worker, () => {});
    const waiting = client.call("undo");
    worker.onerror!({ message: "out of memory" } as ErrorEvent);
    await expect(waiting).rejects.toMatchObject({ message: "out of memory", gone: true });
    await expect(client.call("redo")).rejects.toMatchObject({ gone: true });
  });
});
