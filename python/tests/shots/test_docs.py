"""What docs/shots.md shows: its table of shots, its columns and its queries."""

import os
import re
import unittest

from support import CHECKOUT, ShotsTest, write
from vantorelix.shots import command, schemas
from vantorelix.shots.listing import read_shots

try:
    import duckdb
except ImportError:
    duckdb = None


class ShotsPage(ShotsTest):
    def setUp(self):
        super().setUp()
        with open(os.path.join(CHECKOUT, "docs", "shots.md"), encoding="utf-8") as file:
            self.page = file.read()

    def test_its_table_is_read(self):
        text = re.search(r"^    (shot,path.*?)\n\n", self.page, re.DOTALL | re.MULTILINE).group(1).replace("\n    ", "\n")
        first, second = read_shots([write(os.path.join(self.folder, "list.csv"), text + "\n")])
        self.assertEqual((first.name, first.free), ("sq010_0010", (("artist", "Ada"),)))
        self.assertEqual((second.range, second.select), ((101.0, 164.0), ("*Foot", "*Toe")))

    def test_it_knows_every_option_and_no_other(self):
        options = {word for action in command.parser()._actions for word in action.option_strings if word.startswith("--")}
        told = set(re.findall(r"`(--[a-z-]+)", self.page)) - {"--run-dependencies"}
        self.assertEqual(told, options - {"--help", "--version"})

    def test_it_knows_the_columns(self):
        for kind in ("samples", "keys"):
            told = re.search(r"show/%s/.*: (.*)" % kind, self.page).group(1).split(", ")
            self.assertEqual(told, [column.name for column in schemas.COLUMNS[kind]])
        for column in schemas.COLUMNS["shots"]:
            self.assertIn("`%s`" % column.name, self.page)

    @unittest.skipUnless(duckdb, "duckdb is not installed")
    def test_its_queries_give_answers(self):
        self.make_clips("a.bvh", "b.bvh")
        write(os.path.join(self.clips, "bad.bvh"), "nothing")
        self.do(read_shots([self.clips]))
        queries = re.findall(r"```sql\n(.*?)```", self.page, re.DOTALL)
        answers = [duckdb.sql(query.replace("'show/", "'%s/" % self.out)).fetchall() for query in queries]
        self.assertEqual(len(answers), 3)
        fastest, states, lowest = answers
        self.assertEqual(len(fastest), 6)
        self.assertEqual([row[2] for row in fastest], sorted((row[2] for row in fastest), reverse=True))
        self.assertEqual(sorted(row[:2] for row in states), [("done", 2), ("failed", 1)])
        self.assertEqual(sorted(row[0] for row in lowest), ["a.bvh", "b.bvh"])
        heights = [row["y"] for row in self.rows("samples") if row["shot"] == "a.bvh"]
        self.assertEqual({row[0]: row[3] for row in lowest}["a.bvh"], min(heights))


if __name__ == "__main__":
    unittest.main()
