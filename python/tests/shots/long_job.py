"""The job for farms: an Open Job Description template, which its own tools accept and play."""

import os
import shutil
import subprocess
import sys
import unittest

import yaml

from support import ShotsTest, write
from vantorelix.shots.listing import read_shots
from vantorelix.shots.store import Store

OPENJD = os.path.join(os.path.dirname(sys.executable), "openjd")


class Job(ShotsTest):
    def setUp(self):
        super().setUp()
        self.make_clips(*("s%d.bvh" % number for number in range(5)))
        write(os.path.join(self.clips, "bad.bvh"), "nothing")
        self.job = os.path.join(self.folder, "job.yaml")

    def make(self, *options):
        return self.command(self.clips, "--out", self.out, "--job", self.job, "--chunk", "2", *options)

    @unittest.skipUnless(os.path.exists(OPENJD), "openjd-cli is not installed")
    def test_it_is_accepted_and_played(self):
        self.assertEqual(self.make("--samples-per-frame", "2")[0], 0)
        self.assertEqual(os.listdir(os.path.join(self.out, "shots")), [])
        command = write(os.path.join(self.folder, "command"), '#!/bin/sh\nexec "%s" -m vantorelix._shots_command "$@"\n'
                        % sys.executable)
        os.chmod(command, 0o755)
        check = subprocess.run([OPENJD, "check", self.job], stdout=subprocess.PIPE, universal_newlines=True)
        self.assertEqual(check.returncode, 0, check.stdout)
        run = subprocess.run([OPENJD, "run", self.job, "--step", "Report", "--run-dependencies", "-p", "Command=" + command],
                             stdout=subprocess.PIPE, stderr=subprocess.STDOUT, universal_newlines=True, cwd=self.folder)
        self.assertEqual(run.returncode, 0, run.stdout)
        self.assertRegex(run.stdout, r"openjd_status: 2 of 2 shots done, 0 failed|openjd_status: 1 of 2 shots done, 1 failed")
        self.assertIn("openjd_progress: 100.0", run.stdout)
        self.assertWhole(read_shots([self.clips]))
        self.assertEqual({row["samples_per_frame"] for row in self.rows("measures")}, {2})
        self.assertTrue(os.path.exists(os.path.join(self.out, "report.html")))

    def test_a_task_does_its_shots_and_no_report(self):
        self.make()
        code, shown, said = self.command(os.path.join(self.out, "list.parquet"), "--out", self.out, "--only", "0-1")
        self.assertEqual(code, 0, said)
        self.assertEqual(len(os.listdir(os.path.join(self.out, "shots"))), 2)
        self.assertIn("openjd_status: 1 of 2 shots done, 1 failed", shown)
        self.assertFalse(os.path.exists(os.path.join(self.out, "report.html")))

    def test_a_task_that_cannot_write_fails_with_a_message(self):
        self.make()
        shutil.rmtree(os.path.join(self.out, "samples"))
        write(os.path.join(self.out, "samples"), "")
        code, shown, _ = self.command(os.path.join(self.out, "list.parquet"), "--out", self.out, "--only", "3-4")
        self.assertEqual(code, 1)
        self.assertIn("openjd_fail: ", shown)

    def test_every_shot_is_in_a_task_and_the_report_waits_for_them(self):
        self.make()
        with open(self.job) as file:
            job = yaml.safe_load(file)
        (index,) = job["steps"][0]["parameterSpace"]["taskParameterDefinitions"]
        self.assertEqual((index["range"], index["chunks"]["defaultTaskCount"]), ("0-5", 2))
        self.assertEqual(job["steps"][1]["dependencies"], [{"dependsOn": "Shots"}])

    def test_indices_beyond_the_list_are_refused(self):
        code, _, said = self.command(self.clips, "--out", self.out, "--only", "4-6")
        self.assertEqual(code, 2)
        self.assertIn("there is no shot 6; the list has 6, from 0", said)

    def test_patterns_that_a_job_would_misread_are_refused(self):
        code, _, said = self.make("--select", "{{a,b},c}")
        self.assertEqual(code, 2)
        self.assertIn("'{{' has a meaning of its own", said)


if __name__ == "__main__":
    unittest.main()
