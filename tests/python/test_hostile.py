"""The module lives through whatever scripts, tools and callbacks do while it works.

The cases and what they do are in `hostile`. VANTORELIX_HOSTILE=full runs all of them, otherwise a part of the larger
groups runs, the same one each time.
"""

import os
import unittest

from hostile import runner

FULL = os.environ.get("VANTORELIX_HOSTILE") == "full"
SHOWN = 10  # failures that are told at length


@unittest.skipUnless("VANTORELIX_MODULE" in os.environ and "VANTORELIX_HOST" in os.environ,
                     "VANTORELIX_MODULE and VANTORELIX_HOST name no folders")
@unittest.skipIf(os.name == "nt", "the cases' processes tell of themselves through a pipe that they cannot be handed there")
class Hostile(unittest.TestCase):
    def expect_none(self, group, least):
        """That no case of a group fails, and that there are as many as there should be."""
        outcome = runner.run(group, FULL)
        failures = sorted(outcome.failures.items())
        told = ["%s: %s" % failure for failure in failures[:SHOWN]] + [name for name, _ in failures[SHOWN:]]
        if failures:
            self.fail("\n\n".join(["%d of %d" % (len(failures), outcome.run)] + told))
        self.assertGreaterEqual(outcome.run, least)

    def test_every_call_survives_every_disturbance_inside_it(self):
        self.expect_none("calls", 9000 if FULL else 300)

    def test_every_answer_and_error_of_a_call_is_survived(self):
        self.expect_none("answers", 3000 if FULL else 200)

    def test_every_function_and_every_place_survives_every_value(self):
        self.expect_none("values", 10000 if FULL else 500)

    def test_every_field_of_every_item_is_readable_at_any_time(self):
        self.expect_none("items", 144 if FULL else 36)

    def test_what_once_brought_it_down_does_so_no_more(self):
        self.expect_none("named", 15)

    def test_objects_survive_what_scripts_do_with_them(self):
        self.expect_none("objects", 10)

    def test_the_end_of_the_process_other_interpreters_and_threads_are_survived(self):
        self.expect_none("processes", 10)

    def test_a_crash_a_hang_and_a_failure_are_told_apart(self):
        seconds, runner.SECONDS = runner.SECONDS, 15  # enough for a crash under sanitizers on a busy machine
        self.addCleanup(setattr, runner, "SECONDS", seconds)
        outcome = runner.run("planted", True)
        told = {name: text.split("\n")[0] for name, text in outcome.failures.items()}
        self.assertEqual(outcome.run, 6)
        self.assertEqual(told.pop("a wrong result"), "Traceback (most recent call last):")
        self.assertRegex(told.pop("a crash"), "SIGSEGV|SIGABRT|exit code")
        self.assertEqual(told, {"an exit": "exit code 3", "no end": "no end in 15 seconds"})


if __name__ == "__main__":
    unittest.main()
