"""The `maya` of C types that the benchmark of bench/python runs on, and the benchmark."""

import os
import shlex
import shutil
import subprocess
import sys
import unittest
from contextlib import redirect_stdout

from support import MODULE, import_engine

BENCH = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "bench", "python")
COMPILER = shlex.split(os.environ.get("CXX", "c++"))[0]


@unittest.skipUnless("VANTORELIX_MODULE" in os.environ, "VANTORELIX_MODULE names no folder")
@unittest.skipUnless(shutil.which(COMPILER), "no compiler: CXX names none that is installed, and there is no c++")
class SilentTypes(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        sys.path.insert(0, BENCH)
        try:
            import silent_maya
            silent_maya.install()
            import plain
        finally:
            sys.path.remove(BENCH)
        cls.plain = plain
        cls.engine = import_engine()

    def test_samples_are_those_of_the_plain_loop(self):
        samples = self.engine._sample_positions("|ball", 1.0, 50.0, 0.5)
        self.assertEqual(samples, self.plain.sample_positions("|ball", 1.0, 50.0, 0.5))
        self.assertEqual(len(set(samples)), 99)

    def test_a_trail_is_made_and_follows_an_edit(self):
        e = self.engine
        with open(os.devnull, "w") as nowhere, redirect_stdout(nowhere):
            e.create_trail()
        self.assertEqual(list(e._REGISTRY), ["vlx_ball_viz"])
        e._schedule_rebuild()
        self.assertTrue(e._PENDING)
        e._LAST_EDIT = 0.0  # it has been quiet since
        for _ in range(1000):
            e._rebuild_step()
        self.assertFalse(e._PENDING)

    def test_the_benchmark_has_a_row_for_each_of_its_bars(self):
        table = subprocess.check_output([sys.executable, os.path.join(BENCH, "bench.py"), MODULE, "--before", MODULE,
                                         "--rounds", "1"], universal_newlines=True)
        rows = [[cell.strip() for cell in line.split("|")[1:-1]] for line in table.splitlines()[2:]]
        self.assertEqual([row[3].split(" (")[0] for row in rows],
                         ["2 T", "1.5 T", "2.5 T", "1 of the plain loop", "2 of the plain function"])
        for row in rows:
            self.assertGreater(float(row[1]), 0.0)
            self.assertIn(row[4], ("yes", "**no**"))
            self.assertIn("of that", row[5])


if __name__ == "__main__":
    unittest.main()
