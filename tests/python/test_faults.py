"""A session with each call of Maya failing in turn: nothing but what was raised comes out, and later edits mend all."""

import unittest

from support import EngineTest


class Odd(Exception):
    pass


class EveryCallFailing(EngineTest):
    """Create, edit, rebuild in slices, change density and display, convert, clear."""

    def steps(self):
        e, maya = self.engine, self.maya
        yield lambda: e.create_trail(color_mode=1)
        yield lambda: maya.send("addAnimCurveEditedCallback")
        for _ in range(4):
            yield maya.run_deferred
        yield lambda: e._set_pref_samples(2)
        yield lambda: e.apply_prefs_to_existing_trails(True)
        yield maya.run_deferred
        yield lambda: e.set_color_mode(3)
        yield e.toggle_ghost
        yield e.convert_to_nurbs
        yield e.clear_trails

    def session(self):
        """Runs every step whatever happens; the errors that came out."""
        raised = []
        for step in self.steps():
            self.maya.now += 0.5
            try:
                step()
            except BaseException as error:  # interrupts too are looked at below
                raised.append(error)
        return raised

    def start(self):
        super(EveryCallFailing, self).setUp()
        self.maya.selection = ["|ball", "|cube"]
        self.maya.tick = 0.002

    def expect_exact(self, why):
        e, maya = self.engine, self.maya
        maya.tick = 0.0
        e.clear_trails()
        maya.run_deferred()
        maya.selection = ["|ball"]
        e.create_trail(samples_per_frame=1)
        maya.motions["|ball"] = lambda t: (2.0 * t, 1.0, 0.0)
        self.edit()
        self.run_queue()
        self.assertEqual(self.points(), [(2.0 * t, 1.0, 0.0) for t in (1.0, 2.0, 3.0, 4.0, 5.0)], why)
        self.assertEqual((e._PENDING, e._WORK, e._REBUILDING), (False, None, False), why)

    def sweep(self, make_error):
        self.start()
        self.assertEqual(self.session(), [])
        total = self.maya.count
        self.assertGreater(total, 500)
        for k in range(1, total + 1):
            self.doCleanups()
            self.start()
            error = make_error(k)
            self.maya.fail(k, error)
            raised = self.session()
            self.assertIn(raised, ([], [error]), "call %d" % k)
            if raised:
                self.assertIs(raised[0], error, "call %d" % k)
            yield k, error, raised

    def setUp(self):
        pass  # each round starts anew

    def test_an_error_is_swallowed_or_comes_out_as_it_was(self):
        came_out = 0
        for k, _, raised in self.sweep(lambda k: Odd("call %d" % k)):
            came_out += len(raised)
            self.expect_exact("call %d" % k)
        self.assertGreater(came_out, 50)

    def test_an_interrupt_always_comes_out(self):
        for k, error, raised in self.sweep(lambda k: KeyboardInterrupt("call %d" % k)):
            self.assertEqual(raised, [error], "call %d" % k)


if __name__ == "__main__":
    unittest.main()
