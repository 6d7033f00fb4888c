"""The examples of docs/python.md run, one after another, and print what the page says."""

import contextlib
import io
import os
import re
import shutil
import tempfile
import unittest

from support import CHECKOUT, EXAMPLES

BLOCK = re.compile(r"^```python ?(\w*)\n(.*?)^```\n(?:\nprints\n\n```\n(.*?)^```\n)?", re.DOTALL | re.MULTILINE)


def there(module):
    try:
        __import__(module)
    except ImportError:
        return False
    return True


class PythonPage(unittest.TestCase):
    def setUp(self):
        with open(os.path.join(CHECKOUT, "docs", "python.md"), encoding="utf-8") as file:
            self.blocks = BLOCK.findall(file.read())
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        for name in os.listdir(EXAMPLES):
            shutil.copy(os.path.join(EXAMPLES, name), folder.name)
        self.addCleanup(os.chdir, os.getcwd())
        os.chdir(folder.name)

    def test_its_examples_print_what_it_says(self):
        names, ran = {}, 0
        for needs, code, wanted in self.blocks:
            if needs and not there(needs):
                continue
            shown = io.StringIO()
            with contextlib.redirect_stdout(shown):
                exec(compile(code, "docs/python.md", "exec"), names)
            ran += 1
            if wanted:
                self.assertEqual(shown.getvalue(), wanted)
        self.assertGreaterEqual(ran, 7)
        names["scene"].close()
        names["made"].close()


if __name__ == "__main__":
    unittest.main()
