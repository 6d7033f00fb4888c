"""A disk that is full: a clear error, and no broken file."""

import os
import resource
import sys
import unittest

import pyarrow.parquet

from support import ShotsTest
from vantorelix.shots.group import Task, do
from vantorelix.shots.listing import read_shots
from vantorelix.shots.shot import Settings
from vantorelix.shots.store import Store, WriteError

LIMITED = ("import resource, sys; resource.setrlimit(resource.RLIMIT_FSIZE, (20000, 20000));"
           "from vantorelix.shots.command import main; sys.exit(main(sys.argv[1:]))")


class FullDisk(ShotsTest):
    def setUp(self):
        super().setUp()
        self.make_clips("a.bvh", "b.bvh")
        self.make_clips("large.bvh", frames=3000)
        self.shots = read_shots([self.clips])

    def assertNothingBroken(self):
        for place, _, names in os.walk(self.out):
            for name in names:
                self.assertTrue(name.endswith(".parquet"), name)
                pyarrow.parquet.ParquetFile(os.path.join(place, name)).read()

    def limit(self):
        before = resource.getrlimit(resource.RLIMIT_FSIZE)
        resource.setrlimit(resource.RLIMIT_FSIZE, (20000, before[1]))
        self.addCleanup(resource.setrlimit, resource.RLIMIT_FSIZE, before)

    def test_the_work_ends_with_a_clear_error_and_whole_files(self):
        Store(self.out).prepare()
        self.limit()
        with self.assertRaisesRegex(WriteError, "samples/large.bvh.* cannot be written .*run the same command again"):
            do(Task(self.shots, Settings(), self.out))
        self.assertNothingBroken()
        self.assertEqual(sorted(row["shot"] for row in self.rows("shots")), ["a.bvh", "b.bvh"])

    def test_the_command_says_so_once_and_the_next_run_continues(self):
        self.words = lambda *rest: [sys.executable, "-c", LIMITED] + list(rest)
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
