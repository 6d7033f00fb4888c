"""Runs on a local cluster: shots that fail or kill, workers that are killed, interrupts, a scheduler that goes."""

import contextlib
import os
import signal
import subprocess
import threading
import unittest
from unittest import mock

import dask
import psutil
from distributed import KilledWorker
from distributed.comm import CommClosedError

from processes import MISBEHAVING, own_scheduler, recorded, wait_until, workers_of
from support import HERE, HOOK, RUN, SLOW, ShotsTest, files_in, misbehaving, write
from vantorelix.shots import alone, cluster
from vantorelix.shots.cluster import ClusterError
from vantorelix.shots.group import Task
from vantorelix.shots.listing import read_shots
from vantorelix.shots.shot import Settings
from vantorelix.shots.store import Store


class ClusterTest(ShotsTest):
    def setUp(self):
        super().setUp()
        paths = os.pathsep.join([HERE, os.environ.get("PYTHONPATH", "")])
        self.enterContextOf(mock.patch.dict(os.environ, PYTHONPATH=paths))

    def enterContextOf(self, manager):
        manager.__enter__()
        self.addCleanup(manager.__exit__, None, None, None)

    def hook(self, what):
        self.enterContextOf(mock.patch.dict(os.environ, {HOOK: what}))

    def many(self, count):
        self.make_clips(*("s%03d.bvh" % number for number in range(count)))

    def recorded(self):
        return recorded(self.out)


class Deaths(ClusterTest):
    def test_a_shot_that_kills_its_worker_fails_alone(self):
        self.hook("kill")
        self.many(6)
        self.make_clips("s003-guilty.bvh")
        shots = read_shots([self.clips])
        progress = self.measure(shots, misbehaving, size=7)
        self.assertEqual((progress.done, progress.failed), (6, 1))
        self.assertWhole(shots)
        (failed,) = [record for record in self.rows("shots") if record["state"] == "failed"]
        self.assertEqual(failed["shot"], "s003-guilty.bvh")
        self.assertIn("SIGKILL, %d times" % alone.ATTEMPTS, failed["error"])

    def test_killed_workers_lose_no_shot_and_mark_none_as_failed(self):
        self.hook(SLOW + " 0.1")
        self.many(24)
        shots = read_shots([self.clips])
        kills = []

        def kill():
            for number in (2, 8, 14):
                wait_until(lambda: self.recorded() >= number)
                victims = workers_of(os.getpid())
                victims[0].kill()
                kills.append(victims[0].pid)

        killer = threading.Thread(target=kill)
        killer.start()
        progress = self.measure(shots, misbehaving, size=4)
        killer.join()
        self.assertEqual((len(set(kills)), progress.done, progress.failed), (3, 24, 0))
        self.assertWhole(shots)

    def test_what_was_being_written_when_workers_were_killed_goes_at_the_end(self):
        self.many(1)
        for name in (RUN + "-1", "another-1"):
            write(os.path.join(self.out, "work", name), "half a ta")
        self.measure(read_shots([self.clips]))
        self.assertEqual([os.path.basename(path) for path in files_in(self.out, "work")], ["another-1"])

    def test_a_result_that_is_lost_with_its_worker_is_no_end(self):
        run = cluster._Run(mock.Mock(), Task([], Settings(), self.out), mock.Mock())
        lost = mock.Mock(status="finished", **{"result.side_effect": KilledWorker("task", mock.Mock(address="x"), 1)})
        self.assertEqual(len(run._take(lost, ["one", "two", "three"])), 2)
        gone = mock.Mock(status="finished", **{"result.side_effect": CommClosedError("closed")})
        with self.assertRaisesRegex(ClusterError, "the scheduler is gone"):
            run._take(gone, ["one"])

    def test_workers_that_the_cluster_gives_up_are_started_anew(self):
        self.hook("kill")
        self.many(3)
        self.make_clips("s001-guilty.bvh")
        with dask.config.set({"distributed.deploy.lost-worker-timeout": "1ms"}):
            progress = self.measure(read_shots([self.clips]), misbehaving, size=4, workers=1)
        self.assertEqual((progress.done, progress.failed), (3, 1))

    def test_a_shot_whose_workers_are_killed_each_time_is_not_to_blame(self):
        self.hook(SLOW + " 0.1")
        self.many(1)
        (shot,) = read_shots([self.clips])
        run = cluster._Run(mock.Mock(), Task([], Settings(), self.out), mock.Mock())
        for _ in range(10):
            run._divided([shot])
        asked = [call[0][0] for call in run._client.submit.call_args_list]
        self.assertEqual(asked, [alone.do_alone] * 10)
        with self.assertRaisesRegex(ClusterError, "workers keep dying"):
            run._divided([shot])
        self.assertEqual(self.recorded(), 0)

    def test_in_a_task_of_a_job_a_killing_shot_fails_alone_too(self):
        self.hook("kill")
        self.many(4)
        self.make_clips("s001-guilty.bvh")
        shots = read_shots([self.clips])
        Store(self.out).prepare()
        told = []
        alone.do_guarded(Task(shots, Settings(), self.out, misbehaving), told.append)
        self.assertEqual(sorted(outcome.shot for outcome in told), [shot.name for shot in shots])
        self.assertEqual([outcome.shot for outcome in told if outcome.error], ["s001-guilty.bvh"])
        self.assertWhole(shots)


class Interrupts(ClusterTest):
    def start(self, *arguments):
        """The command with slow work, in a process group of its own, as a terminal has it."""
        words = MISBEHAVING + [self.clips, "--out", self.out] + list(arguments)
        run = subprocess.Popen(words, stdout=subprocess.PIPE, stderr=subprocess.PIPE, universal_newlines=True,
                               start_new_session=True)
        self.addCleanup(run.stdout.close)
        self.addCleanup(run.stderr.close)
        self.addCleanup(self.end, run)
        return run

    @staticmethod
    def end(run):
        """Leaves nothing running where a test failed midway."""
        with contextlib.suppress(ProcessLookupError):
            os.killpg(run.pid, signal.SIGKILL)
        run.wait()

    def assertContinues(self, count):
        self.assertGreater(count, 0)
        self.assertLess(count, 40)
        before = self.times()
        code, _, said = self.command(self.clips, "--out", self.out, "--workers", "2")
        self.assertEqual(code, 0, said)
        self.assertIn("40 shots, %d to do" % (40 - count), said)
        after = self.times()
        self.assertEqual({name: after[name] for name in before}, before)
        self.assertEqual(sorted(row["shot"] for row in self.rows("shots")), [s.name for s in read_shots([self.clips])])

    def test_ctrl_c_leaves_a_state_that_the_next_run_continues(self):
        self.hook(SLOW + " 0.1")
        self.many(40)
        run = self.start("--workers", "2")
        wait_until(lambda: self.recorded() >= 6)
        os.killpg(run.pid, signal.SIGINT)
        _, said = run.communicate(timeout=60)
        self.assertEqual(run.returncode, 130, said)
        self.assertIn("the same command continues", said)
        self.assertNotIn("Traceback", said)
        self.assertContinues(self.recorded())

    def test_after_a_run_that_was_killed_the_next_one_completes(self):
        self.hook(SLOW + " 0.1")
        self.many(40)
        run = self.start("--workers", "2")
        wait_until(lambda: self.recorded() >= 6)
        workers = workers_of(run.pid)
        run.kill()
        run.communicate()
        psutil.wait_procs(workers, timeout=60)
        self.assertContinues(self.recorded())

    def test_a_scheduler_that_is_killed_is_an_error_and_the_next_run_completes(self):
        self.hook(SLOW + " 0.1")
        self.many(40)
        with own_scheduler(self.folder) as (scheduler, address):
            run = self.start("--scheduler", address)
            wait_until(lambda: self.recorded() >= 4)
            scheduler.kill()
            _, said = run.communicate(timeout=120)
        self.assertEqual(run.returncode, 1, said)
        self.assertIn("the scheduler is gone", said)
        self.assertContinues(self.recorded())

    def test_a_scheduler_that_is_not_there_is_an_error(self):
        self.many(1)
        code, _, said = self.command(self.clips, "--out", self.out, "--scheduler", "tcp://127.0.0.1:9")
        self.assertEqual(code, 1)
        self.assertIn("no scheduler answers", said)


if __name__ == "__main__":
    unittest.main()
