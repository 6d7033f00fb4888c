"""What is said where the extra `shots` is not installed."""

import subprocess
import sys
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

    def test_the_package_itself_does_not_need_it(self):
        self.assertEqual(run("import vantorelix; print(vantorelix.open.__name__)")[:2], (0, "open\n"))


if __name__ == "__main__":
    unittest.main()
