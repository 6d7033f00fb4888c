"""Interrupts, threads and memory."""

import gc
import os
import resource
import signal
import subprocess
import sys
import threading
import time
import unittest

import vantorelix
from support import SCENES, SceneTest, example, rows

LONG = dict(samples_per_frame=2000)


class Stopped(Exception):
    pass


def stop(number, frame):
    raise Stopped()


class Interrupts(SceneTest):
    def on_alarm(self, handler):
        self.addCleanup(signal.signal, signal.SIGALRM, signal.signal(signal.SIGALRM, handler))
        self.addCleanup(signal.setitimer, signal.ITIMER_REAL, 0)

    def assertEndsSoon(self, kind, call, *arguments, **options):
        """An alarm ends a call that would take seconds."""
        start = time.monotonic()
        signal.setitimer(signal.ITIMER_REAL, 0.2)
        with self.assertRaises(kind):
            call(*arguments, **options)
        self.assertLess(time.monotonic() - start, 3.0)

    def test_ctrl_c_ends_trails_and_the_scene_stays_usable(self):
        scene = self.open(self.large())
        (kept,) = scene.trails(range=(0, 50))
        self.on_alarm(signal.default_int_handler)
        self.assertEndsSoon(KeyboardInterrupt, scene.trails, **LONG)
        (trail,) = scene.trails(range=(0, 50))
        scene.set_key("ball", "tx", 7, 99.0)
        scene.follow()
        for each in (trail, kept):
            self.assertEqual((len(each), each.points[7, 0]), (51, 99.0))
            self.assertExact(scene, each)

    def test_following_that_was_interrupted_goes_on_next_time(self):
        scene = self.open(self.large(3000))
        (trail,) = scene.trails(**LONG)
        old = trail.points
        scene.set_key("ball", "tx", 7, 99.0)
        self.on_alarm(stop)
        self.assertEndsSoon(Stopped, scene.follow)
        self.assertIs(trail.points, old)
        scene.follow()
        self.assertEqual((len(trail), trail.points[14000, 0]), (len(old), 99.0))

    def test_a_handler_that_raises_nothing_stops_nothing(self):
        scene, came = self.open(self.large(500)), []
        self.on_alarm(lambda number, frame: came.append(number))
        signal.setitimer(signal.ITIMER_REAL, 0.05, 0.05)
        self.assertEqual(len(scene.trails(**LONG)[0]), 499 * 2000 + 1)
        self.assertGreater(len(came), 0)

    def test_a_call_inside_a_call_is_refused(self):
        scene, refused = self.open(self.large(3000)), []

        def call(number, frame):
            with self.assertRaisesRegex(vantorelix.Error, "at work further out"):
                scene.key_times("ball")
            refused.append(number)
            raise Stopped()

        self.on_alarm(call)
        self.assertEndsSoon(Stopped, scene.trails, **LONG)
        self.assertEqual(len(refused), 1)
        self.assertEqual(len(scene.key_times("ball")), 3000)

    def test_a_scene_closed_inside_its_own_call_goes_after_it(self):
        scene = self.open(self.large(3000))

        def close(number, frame):
            scene.close()
            raise Stopped()

        self.on_alarm(close)
        self.assertEndsSoon(Stopped, scene.trails, **LONG)
        with self.assertRaises(vantorelix.ClosedError):
            scene.trails()

    def test_ctrl_c_ends_a_script(self):
        script = ("import sys, vantorelix; scene = vantorelix.open(sys.argv[1]); print(1, flush=True);"
                  "scene.trails(samples_per_frame=2000)")
        child = subprocess.Popen([sys.executable, "-c", script, self.large()], stdout=subprocess.PIPE,
                                 stderr=subprocess.PIPE, universal_newlines=True)
        child.stdout.readline()
        time.sleep(0.3)
        child.send_signal(signal.SIGINT)
        _, shown = child.communicate(timeout=60)
        self.assertIn("KeyboardInterrupt", shown)
        self.assertNotEqual(child.returncode, 0)


class Threads(SceneTest):
    def test_threads_get_what_they_would_get_alone(self):
        wanted = {name: [rows(trail.points) for trail in self.open(example(name)).trails()] for name in SCENES}
        right = []

        def work(name):
            for _ in range(5):
                right.append([rows(trail.points) for trail in vantorelix.open(example(name)).trails()] == wanted[name])

        threads = [threading.Thread(target=work, args=[name]) for name in SCENES]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        self.assertEqual(right, [True] * 5 * len(SCENES))

    def test_other_threads_run_while_the_library_works(self):
        scene = self.open(self.large(500))
        thread = threading.Thread(target=scene.trails, kwargs=LONG)
        thread.start()
        count = 0
        while thread.is_alive():
            count += 1
            time.sleep(0.001)
        self.assertGreater(count, 20)

    def test_a_scene_closed_by_another_thread_is_closed_after_the_call(self):
        scene, made = self.open(self.large(500)), []
        thread = threading.Thread(target=lambda: made.extend(scene.trails(**LONG)))
        thread.start()
        time.sleep(0.1)
        scene.close()
        thread.join()
        self.assertEqual([len(trail) for trail in made], [499 * 2000 + 1])


def resident():
    with open("/proc/self/statm") as file:
        return int(file.read().split()[1]) * resource.getpagesize()


@unittest.skipUnless(os.path.exists("/proc/self/statm"), "the memory of a process is read from /proc")
@unittest.skipIf("LD_PRELOAD" in os.environ, "the sanitizer keeps what is freed")
class Growth(SceneTest):
    def assertNoGrowth(self, work, rounds=40, limit=2 << 20):
        for _ in range(rounds):
            work()
        gc.collect()
        before = resident()
        for _ in range(4 * rounds):
            work()
        gc.collect()
        self.assertLess(resident() - before, limit)

    def test_opening_and_closing_leaves_nothing(self):
        self.assertNoGrowth(lambda: vantorelix.open(example("walk.bvh")).trails())

    def test_trails_of_one_scene_leave_nothing(self):
        scene = self.open(self.twins())
        self.assertNoGrowth(lambda: scene.trails(samples_per_frame=200))

    def test_edits_leave_nothing(self):
        scene = self.open(self.twins())
        trails = scene.trails(samples_per_frame=200)

        def edit():
            scene.set_key("body", "tx", 7, 3.0)
            scene.follow()
            scene.world_matrices("body", range(2000))

        self.assertNoGrowth(edit)
        self.assertExact(scene, trails[0])

    def test_failures_leave_nothing(self):
        path = self.clip("HIERARCHY\nROOT a {\nOFFSET 0 0 x\n")

        def fail():
            for name in (path, "no.bvh"):
                with self.assertRaises(vantorelix.Error):
                    vantorelix.open(name)

        self.assertNoGrowth(fail)


if __name__ == "__main__":
    unittest.main()
