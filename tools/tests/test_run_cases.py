"""A runner that overlooks a wrong result would make every case worthless: each kind of mismatch fails here."""

import pathlib
import subprocess
import sys
import tempfile
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent))
import run_cases  # noqa: E402


class RunCasesTest(unittest.TestCase):
    def complaints(self, **files):
        """What the runner says about a case of these files; "__" in a name stands for a dot or the folder."""
        with tempfile.TemporaryDirectory() as folder:
            case = pathlib.Path(folder) / "case"
            (case / "files").mkdir(parents=True)
            scenes = pathlib.Path(folder) / "scenes"
            scenes.mkdir()
            (scenes / "shared.txt").write_text("shared\n")
            for name, text in files.items():
                path = case / name.replace("files__", "files/").replace("__", ".")
                path.write_text(text)
            return run_cases.run_case(case, pathlib.Path(sys.executable), scenes)

    def test_what_is_as_expected_passes(self):
        self.assertEqual([], self.complaints(cmd="cat input; cat shared.txt >&2; echo 1 > made; exit 3", input="hello\n",
                                             scenes="shared.txt\n", exit="3\n", stdout="hello\n", stderr="shared\n",
                                             files__made="1\n"))

    def test_a_wrong_exit_code_fails(self):
        self.assertIn("exit code 0 instead of 1", self.complaints(cmd="true", exit="1\n"))
        self.assertIn("exit code 1 instead of 0", self.complaints(cmd="false"))

    def test_a_wrong_text_fails(self):
        self.assertTrue(self.complaints(cmd="echo hullo", stdout="hello\n"))
        self.assertTrue(self.complaints(cmd="echo hullo >&2", stderr="hello\n"))

    def test_a_text_that_nobody_expects_fails(self):
        self.assertTrue(self.complaints(cmd="echo hello"))
        self.assertTrue(self.complaints(cmd="echo hello >&2"))

    def test_a_missing_part_of_a_text_fails(self):
        self.assertEqual([], self.complaints(cmd="echo hello world", stdout__has="world\nhello\n"))
        self.assertTrue(self.complaints(cmd="echo hello world", stdout__has="world\nmoon\n"))

    def test_a_missing_surplus_or_different_file_fails(self):
        self.assertEqual(["a file was not made: made"], self.complaints(cmd="true", files__made="1\n"))
        self.assertEqual(["a file was not made: made"], self.complaints(cmd="true", makes="made\n"))
        self.assertEqual(["an unexpected file was made: made"], self.complaints(cmd="echo 1 > made"))
        self.assertTrue(self.complaints(cmd="echo 2 > made", files__made="1\n"))
        self.assertEqual([], self.complaints(cmd="echo 2 > made", makes="made\n"))

    def test_a_failing_check_fails(self):
        check = "assert open('stdout.got').read() == 'hello\\n'"
        self.assertEqual([], self.complaints(cmd="echo hello", stdout="hello\n", check__py=check))
        self.assertTrue(self.complaints(cmd="echo hullo", stdout="hullo\n", check__py=check))

    def test_a_case_for_posix_is_left_out_on_windows_and_only_there(self):
        with tempfile.TemporaryDirectory() as folder:
            for name, files in {"both": {"cmd": "true"}, "ours": {"cmd": "false", "posix": "It sends a signal.\n"}}.items():
                case = pathlib.Path(folder) / name
                case.mkdir()
                for file, text in files.items():
                    (case / file).write_text(text)
            command = [sys.executable, run_cases.__file__, "--program", sys.executable, "--cases", folder]
            here = subprocess.run(command, stdout=subprocess.PIPE, universal_newlines=True)
            self.assertEqual((1, True), (here.returncode, "FAIL ours" in here.stdout))
            there = subprocess.run(command + ["--windows"], stdout=subprocess.PIPE, universal_newlines=True)
            self.assertEqual((0, "skip ours: It sends a signal.\nok   both\n1 of 1 cases passed, 1 skipped\n"),
                             (there.returncode, there.stdout))


if __name__ == "__main__":
    unittest.main()
