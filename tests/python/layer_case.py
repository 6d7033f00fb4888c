"""What the tests of the commands in front of Maya's share."""

import contextlib
import io
import os
import sys
import unittest
from unittest import mock

from companion import COMPANION, HostTest
from support import import_engine

LAYER = ("Vantorelix_layer", "Vantorelix_undo", "Vantorelix_trails", "Vantorelix_names")


def forget_layer():
    for name in LAYER:
        sys.modules.pop(name, None)


@unittest.skipUnless("VANTORELIX_MODULE" in os.environ, "VANTORELIX_MODULE names no folder")
class LayerTest(HostTest):
    """The engine with the files beside it, on a clock of the test's own."""

    batch = False
    TICK = 0.0005  # how long a reading of the clock takes

    def setUp(self):
        super(LayerTest, self).setUp()
        self.host.restart(batch=self.batch)
        forget_layer()
        self.addCleanup(forget_layer)
        sys.path.insert(0, COMPANION)
        self.addCleanup(sys.path.remove, COMPANION)
        quiet = contextlib.redirect_stdout(io.StringIO())
        quiet.__enter__()
        self.addCleanup(quiet.__exit__, None, None, None)
        self.now = 1000.0
        clock = mock.patch("time.time", self.time)
        clock.start()
        self.addCleanup(clock.stop)
        self.start_engine()

    def start_engine(self):
        self.engine = import_engine()
        self.told = []
        self.engine._set_msg_handler(self.told.append)

    def time(self):
        self.now += self.TICK
        return self.now

    def balls(self, count=1):
        self.cmds.undoInfo(infinity=True)
        names = ["ball%d" % number for number in range(count)]
        for place, name in enumerate(names):
            self.cmds.createNode("transform", name=name)
            for frame, value in ((1, place), (24, 10.0)):
                self.cmds.setKeyframe(name, at="tx", t=frame, v=value)
        return names

    def trails(self, count=1):
        """Trails of balls, all exact, with nothing to undo."""
        names = self.balls(count)
        self.cmds.select(names)
        self.engine.create_trail()
        self.pump()
        self.assertEqual(len(self.engine._REGISTRY), count)
        self.cmds.flushUndo()
        del self.told[:]
        return names

    def pump(self):
        """Lets the quiet time pass, and everything that waits run."""
        self.now += 1
        self.utils.processIdleEvents()
        self.assertFalse(self.engine._PENDING)
        self.assertEqual(self.host.failures, 0)

    def key(self, name, value):
        self.cmds.setKeyframe(name, at="tx", t=24, v=value)

    def step(self, name):
        return sys.modules["Vantorelix_undo"].step(self.cmds, name)

    @contextlib.contextmanager
    def unrecorded(self):
        self.cmds.undoInfo(stateWithoutFlush=False)
        yield
        self.cmds.undoInfo(stateWithoutFlush=True)

    def count(self):
        return self.cmds.undoInfo(query=True)

    def points(self, name):
        return [triple[0] for triple in self.cmds.getAttr("vlx_%s_vizShape.points" % name)]

    def assert_exact(self, names):
        for name in names:
            self.assertEqual(self.points(name), [
                self.cmds.getAttr(name + ".worldMatrix[0]", time=frame)[12] for frame in range(1, 25)])

    def assert_live(self, names):
        """They follow edits. Both queues are as before."""
        self.assertEqual(sorted(self.engine._REGISTRY), sorted("vlx_%s_viz" % name for name in names))
        for value in (99, 10):
            with self.unrecorded():
                for name in names:
                    self.key(name, value)
            self.pump()
            self.assertEqual({self.points(name)[-1] for name in names}, {value})
            self.assert_exact(names)
