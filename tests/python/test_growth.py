"""Nothing is kept that is not needed: many rounds leave no growth."""

import gc
import sys
import tracemalloc
import unittest

from support import EngineTest


class Growth(EngineTest):
    ROUNDS = 1000

    def round(self):
        e = self.engine
        e.create_trail()
        self.edit()
        for _ in range(3):
            self.maya.run_deferred()
        if e._WORK:
            [dict(item) for item in e._WORK["items"]]
        e._REGISTRY["vlx_ball_viz"]["note"] = object()
        dict(e._REGISTRY)
        try:
            e._rebuild_one("vlx_ball_viz", {"source": "|ball"})
        except KeyError:
            pass
        list(e._bisect_indices(9))
        e._make_fast_sampler("|ball")(1.0)
        e._push_data_to_viz("vlx_ball_viz", ([], [], [], []), key_times=["no number"])
        e.clear_trails()
        self.run_queue()
        self.maya.calls = []
        del self.printed[:]

    def test_a_thousand_rounds_leave_no_objects_and_no_memory(self):
        none = sys.getrefcount(None)
        for _ in range(20):
            self.round()
        gc.collect()
        tracemalloc.start()
        self.addCleanup(tracemalloc.stop)
        self.round()
        gc.collect()
        objects, memory = len(gc.get_objects()), tracemalloc.get_traced_memory()[0]
        none = sys.getrefcount(None)
        for _ in range(self.ROUNDS):
            self.round()
        gc.collect()
        self.assertLess(len(gc.get_objects()) - objects, 50)
        self.assertLess(tracemalloc.get_traced_memory()[0] - memory, 20000)
        self.assertLess(abs(sys.getrefcount(None) - none), 200)

    def test_reloading_leaves_no_functions_behind(self):
        import importlib
        for _ in range(3):
            importlib.reload(self.engine)
        gc.collect()
        objects = len(gc.get_objects())
        for _ in range(50):
            importlib.reload(self.engine)
        gc.collect()
        self.assertLess(len(gc.get_objects()) - objects, 50)


if __name__ == "__main__":
    unittest.main()
