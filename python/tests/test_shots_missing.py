"""What is said where the extra `shots` is not installed."""

import os
import subprocess
import sys
import tempfile
import unittest

WITHOUT = "import sys; sys.modules['distributed'] = None; "
NEEDS = "vantorelix.shots needs Dask and Arrow on CPython 3.10 or later; install them with: pip install 'vantorelix[shots]'"


def run(script):
    done = subprocess.run([sys.executable, "-c", WITHOUT + script], stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                          universal_newlines=True)
    return done.returncode, done.stdout, done.stderr


class WithoutTheExtra(unittest.TestCase):
    def test_the_command_says_what_to_install_in_one_line(self):
        code, shown, said = run("from vantorelix._shots_command import main; sys.exit(main(['x', '--out', 'y']))")
        self.assertEqual((code, shown, said.count("\n")), (1, "", 1))
        self.assertTrue(said.startswith(NEEDS), said)

    def test_importing_it_says_so_too(self):
        code, _, said = run("import vantorelix.shots")
        self.assertEqual(code, 1)
        self.assertIn("ImportError: " + NEEDS, said)

    def test_so_does_python_with_the_name_of_the_module(self):
        with tempfile.TemporaryDirectory() as folder:
            with open(os.path.join(folder, "distributed.py"), "w") as file:
                file.write("raise ImportError('No module named distributed')")
            paths = os.pathsep.join([folder, os.environ.get("PYTHONPATH", "")])
            done = subprocess.run([sys.executable, "-m", "vantorelix.shots", "x", "--out", "y"], stdout=subprocess.PIPE,
                                  stderr=subprocess.PIPE, universal_newlines=True, env=dict(os.environ, PYTHONPATH=paths))
        self.assertEqual((done.returncode, done.stdout, done.stderr.count("\n")), (1, "", 1), done.stderr)
        self.assertTrue(done.stderr.startswith(NEEDS), done.stderr)

    def test_the_package_itself_does_not_need_it(self):
        self.assertEqual(run("import vantorelix; print(vantorelix.open.__name__)")[:2], (0, "open\n"))


if __name__ == "__main__":
    unittest.main()
