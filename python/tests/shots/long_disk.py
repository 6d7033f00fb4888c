"""A disk that is full: a clear error, and no broken file."""

import os
import resource
import unittest

from processes import LIMIT, LIMITED
from support import ShotsTest, broken_in
from vantorelix.shots.group import Task, do
from vantorelix.shots.listing import read_shots
from vantorelix.shots.shot import Settings
from vantorelix.shots.store import Store, WriteError


class FullDisk(ShotsTest):
    def setUp(self):
        super().setUp()
        self.make_clips("a.bvh", "b.bvh")
        self.make_clips("large.bvh", frames=3000)
        self.shots = read_shots([self.clips])

    def assertNothingBroken(self):
        self.assertEqual(broken_in(self.out), [])

    def limit(self):
        before = resource.getrlimit(resource.RLIMIT_FSIZE)
        resource.setrlimit(resource.RLIMIT_FSIZE, (LIMIT, before[1]))
        self.addCleanup(resource.setrlimit, resource.RLIMIT_FSIZE, before)

    def test_the_work_ends_with_a_clear_error_and_whole_files(self):
        Store(self.out).prepare()
        self.limit()
        with self.assertRaisesRegex(WriteError, "samples/large.bvh.* cannot be written .*run the same command again"):
            do(Task(self.shots, Settings(), self.out))
        self.assertNothingBroken()
        self.assertEqual(sorted(row["shot"] for row in self.rows("shots")), ["a.bvh", "b.bvh"])

    def test_the_command_says_so_once_and_the_next_run_continues(self):
        self.words = lambda *rest: LIMITED + list(rest)
        code, _, said = self.command(self.clips, "--out", self.out, "--workers", "2")
        self.assertEqual(code, 1, said)
        self.assertEqual(said.count("cannot be written"), 1, said)
        self.assertNotIn("Traceback", said)
        self.assertNothingBroken()
        del self.words
        code, _, said = self.command(self.clips, "--out", self.out, "--workers", "2")
        self.assertEqual(code, 0, said)
        self.assertWhole(self.shots)

    def test_a_folder_that_cannot_be_made_is_an_error(self):
        with open(os.path.join(self.folder, "file"), "w"):
            pass
        code, _, said = self.command(self.clips, "--out", os.path.join(self.folder, "file", "show"))
        self.assertEqual(code, 1)
        self.assertIn("cannot be written", said)


if __name__ == "__main__":
    unittest.main()
