"""One small run of the command on a local cluster."""

import os
import unittest

from support import ShotsTest, write
from vantorelix.shots.listing import read_shots


class SmallRun(ShotsTest):
    def test_a_folder_becomes_a_dataset_and_a_report(self):
        self.make_clips("a/one.bvh", "a/two.bvh", "b/three.bvh")
        write(os.path.join(self.clips, "b", "bad.bvh"), "nothing")
        code, shown, said = self.command(self.clips, "--out", self.out, "--workers", "2")
        self.assertEqual(code, 1, said)
        self.assertIn("4 shots, 4 to do", said)
        self.assertIn("3 shots done, 1 failed", said)
        self.assertRegex(said, r"b/bad\.bvh: .*bad\.bvh")
        self.assertEqual(shown.strip(), os.path.join(self.out, "report.html"))
        self.assertWhole(read_shots([self.clips]))
        before = self.times()
        self.make_clips("b/bad.bvh")
        code, shown, said = self.command(self.clips, "--out", self.out, "--workers", "1")
        self.assertEqual(code, 0, said)
        self.assertIn("4 shots, 1 to do", said)
        changed = [name for name, when in self.times().items() if when != before[name]]
        self.assertEqual(changed, ["b_bad.bvh"])
        self.assertWhole(read_shots([self.clips]))


if __name__ == "__main__":
    unittest.main()
