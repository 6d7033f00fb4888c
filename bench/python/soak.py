#!/usr/bin/env python3
"""Makes as many edits as an animator does in days, within minutes, and checks that the module's memory does not grow.

    python3 bench/python/soak.py MODULE_FOLDER [--edits N]
    python3 bench/python/soak.py MODULE_FOLDER --peak TRAILS FRAMES

Two short trails follow N edits of the animation, on a `maya` that does nothing. Deferred calls rebuild them completely
after each edit. The script sets the clock, so that the wait before a rebuild takes no time. Every fourth edit comes in
the middle of a rebuild, whose record is read, as a script might do, and then discarded. After every hundredth edit all
trails are cleared and made again, and after every thousandth the module is reloaded. The exit code is 1 if the resident
memory has grown by more than a megabyte since edit 10,000.

With --peak, the script makes one rebuild of so many trails and frames, and prints the resident memory before it, at its
largest, and after it.
"""

import argparse
import contextlib
import importlib
import os
import platform
import sys
import types
from time import time

import silent_maya

SETTLED = 10000  # edits after which memory may not grow
BOUND = 1 << 20  # bytes
PAGE = os.sysconf("SC_PAGE_SIZE")


def resident():
    """Bytes of this process in memory."""
    with open("/proc/self/statm", "rb", buffering=0) as file:
        return int(file.read().split()[1]) * PAGE


class Application(object):
    """What the silent `maya` lacks for complete commands: a selection, deferred calls, callbacks, and a clock."""

    def __init__(self, trails, frames):
        self.objects = ["|object%d" % n for n in range(trails)]
        self.range = (1.0, float(frames))
        self.deferred, self.listeners = [], {}
        self.now, self.tick = 1000.0, 0.0
        silent_maya.install()
        import maya.api.OpenMaya as om
        import maya.api.OpenMayaAnim as oma
        import maya.cmds as cmds
        self.add_commands(cmds)
        self.add_messages(om, oma)
        self.clock = types.ModuleType("time")
        self.clock.time = self.look

    def look(self):
        self.now += self.tick
        return self.now

    def add_commands(self, cmds):
        range_of = {"min": self.range[0], "max": self.range[1]}
        cmds.ls = lambda sl=False, long=False, type=None: [] if type else self.objects
        cmds.playbackOptions = lambda q, **which: range_of["min" if "min" in which else "max"]
        cmds.evalDeferred = lambda function, lowestPriority: self.deferred.append(function)
        cmds.keyframe = lambda node, q, timeChange: [1.0, 2.0]
        cmds.createNode = lambda type, name: name
        cmds.rename = lambda node, name: name
        cmds.curve = lambda d, p, name: name
        cmds.listRelatives = lambda node, parent=False, s=False, fullPath=False: [node]
        cmds.getPanel = lambda type: ["modelPanel1"]
        cmds.modelEditor = lambda panel, **flags: False
        cmds.optionVar = lambda exists=None, **flags: 0
        cmds.pluginInfo = cmds.objExists = lambda *names, **flags: True
        cmds.about = lambda batch: False
        for name in ("parent", "select", "delete", "group", "refresh", "inViewMessage", "warning"):
            setattr(cmds, name, lambda *arguments, **flags: None)

    def add_messages(self, om, oma):
        listen = staticmethod(self.listen)
        oma.MAnimMessage = type("MAnimMessage", (), {"addAnimCurveEditedCallback": listen,
                                                     "addAnimKeyframeEditedCallback": listen})
        oma.MAnimControl = type("MAnimControl", (), {"isPlaying": staticmethod(lambda: False)})
        om.MDGMessage = type("MDGMessage", (), {"addNodeRemovedCallback": listen})
        om.MMessage = type("MMessage", (), {"removeCallback": staticmethod(self.listeners.pop)})

    def listen(self, function, *client_data):
        identifier = max(self.listeners or [0]) + 1
        self.listeners[identifier] = function
        return identifier

    def edit(self):
        for function in list(self.listeners.values())[:1]:
            function([], None)
        self.now += 1.0

    def step(self):
        queued, self.deferred = self.deferred, []
        for function in queued:
            function()

    def run_queue(self):
        while self.deferred:
            self.step()


def half_a_rebuild(application, engine):
    """Runs some slices of a rebuild and reads its record, as a script might. The next edit discards the record."""
    application.edit()
    application.tick = 0.003
    for _ in range(3):
        application.step()
    work = engine._WORK
    if work is not None:
        [dict(item) for item in work["items"]]
    application.tick = 0.0


def start_over(application, engine, edit):
    engine.set_color_mode(edit // 100 % 4)
    engine.toggle_ghost()
    engine.apply_prefs_to_existing_trails(True)
    engine.convert_to_nurbs()
    engine.clear_trails()
    application.run_queue()
    if edit % 1000 == 0:
        importlib.reload(engine)
        engine.time = application.clock
    application.now += 1.0
    engine.create_trail()


def soak(application, engine, edits, progress):
    """The resident memory at edit SETTLED, its largest value since then, and its value at the end."""
    settled = largest = None
    engine.create_trail()
    for edit in range(1, edits + 1):
        if edit % 4 == 0:
            half_a_rebuild(application, engine)
        application.edit()
        application.run_queue()
        if edit % 100 == 0:
            start_over(application, engine, edit)
        if edit >= SETTLED and edit % 1000 == 0:
            now = resident()
            settled, largest = settled or now, max(largest or 0, now)
            progress(edit, now)
    assert engine._WORK is None and not engine._PENDING and len(engine._REGISTRY) == len(application.objects)
    return settled, largest, resident()


def peak(application, engine):
    before = resident()
    engine.create_trail()
    application.run_queue()
    created = resident()
    application.edit()
    application.tick = 1e-6  # slices as they are when a look at the clock takes a microsecond
    largest = created
    while application.deferred:
        application.step()
        largest = max(largest, resident())
    return before, created, largest, resident()


@contextlib.contextmanager
def silence():
    """Discards what the engine prints."""
    stdout, sys.stdout = sys.stdout, open(os.devnull, "w")
    try:
        yield stdout
    finally:
        sys.stdout.close()
        sys.stdout = stdout


def mebibytes(count):
    return "%.2f MiB" % (count / float(1 << 20))


def report_peak(application, engine, trails, frames):
    with silence():
        before, created, largest, after = peak(application, engine)
    print("| Python %s | before | created | largest in the rebuild | after |\n|---|---|---|---|---|" %
          platform.python_version())
    print("| %d trails of %d frames | %s |" % (trails, frames, " | ".join(
        mebibytes(each) for each in (before, created, largest, after))))
    return 0


def report_soak(application, engine, edits):
    begin = time()

    def progress(edit, now):
        if edit % 50000 == 0:
            sys.stderr.write("soak: Python %s, %d edits, %.0f s, %s\n" % (
                platform.python_version(), edit, time() - begin, mebibytes(now)))

    with silence():
        settled, largest, last = soak(application, engine, edits, progress)
    grew = largest - settled > BOUND
    print("| Python | edits | seconds | at %d edits | largest | last | |\n|---|---|---|---|---|---|---|" % SETTLED)
    print("| %s | %d | %.0f | %s | %s | %s | %s |" % (
        platform.python_version(), edits, time() - begin, mebibytes(settled), mebibytes(largest), mebibytes(last),
        "**grew**" if grew else "flat"))
    return 1 if grew else 0


def main(arguments):
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("folder", help="where Vantorelix_engine.py and its compiled part are")
    parser.add_argument("--edits", type=int, default=1000000)
    parser.add_argument("--peak", type=int, nargs=2, metavar=("TRAILS", "FRAMES"))
    options = parser.parse_args(arguments)
    if options.edits < SETTLED:
        parser.error("--edits must be at least %d, so that the memory can settle" % SETTLED)
    trails, frames = options.peak or (2, 3)
    application = Application(trails, frames)
    sys.path.insert(0, os.path.abspath(options.folder))
    engine = importlib.import_module("Vantorelix_engine")
    engine.time = application.clock
    return report_peak(application, engine, trails, frames) if options.peak else report_soak(application, engine,
                                                                                             options.edits)


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
