import math
import os
import sys
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
sys.path.insert(0, os.path.dirname(os.path.dirname(os.path.abspath(__file__))))

import mathematics_references
import mathematics_tables


def words(text):
    """Without the spaces and line breaks, which the formatter chooses."""
    return "".join(text.split())


def committed(name):
    with open(os.path.join(ROOT, "base", "mathematics", name), encoding="utf-8") as file:
        return words(file.read())


class MathematicsTables(unittest.TestCase):
    def test_the_committed_tables_are_what_the_program_prints(self):
        self.assertEqual(committed("mathematics_tables.h"), words(mathematics_tables.text()))

    def test_the_committed_references_are_what_the_program_prints(self):
        self.assertEqual(committed("mathematics_test_references.h"), words(mathematics_references.text()))

    def test_the_series_agree_with_the_functions_of_python(self):
        one = mathematics_tables.ONE
        for x in (0.01, 0.3, -0.4):
            fixed = mathematics_references.fixed(x)
            for series, function in ((mathematics_tables.sine, math.sin), (mathematics_tables.cosine, math.cos),
                                     (mathematics_tables.arc_tangent, math.atan),
                                     (mathematics_tables.exponential, math.exp)):
                self.assertAlmostEqual(series(fixed) / one, function(x), places=14)
            self.assertAlmostEqual(mathematics_tables.logarithm(one + fixed) / one, math.log(1 + x), places=14)


if __name__ == "__main__":
    unittest.main()
