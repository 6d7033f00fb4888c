"""The report: what it says of shots, what changed, and the pages beside it."""

import json
import os
import re
import shlex
import subprocess
import sys
import unittest

from support import CHECKOUT, ShotsTest, clip, write
from vantorelix.shots import pages, report
from vantorelix.shots.listing import read_shots
from vantorelix.shots.shot import Settings, Shot
from vantorelix.shots.store import Store

sys.path.append(os.path.join(CHECKOUT, "tools"))
import browser  # noqa: E402

CHROMIUM = browser.find()


class Report(ShotsTest):
    def setUp(self):
        super().setUp()
        for number, height in enumerate((1.0, 2.0, 3.0)):
            self.make_clips("s%d.bvh" % number, frames=12 - number)
        self.shots = read_shots([self.clips])
        self.do(self.shots)

    def write(self, **options):
        """What the page holds, as its script reads it."""
        report.write(self.shots, Settings(), Store(self.out), **options)
        with open(os.path.join(self.out, "report.html"), encoding="utf-8") as file:
            self.html = file.read()
        return json.loads(re.search(r'id="data">(.*?)</script>', self.html, re.DOTALL).group(1))

    def change(self, name, text):
        write(os.path.join(self.clips, name), text)
        self.do(self.shots)

    def test_it_has_every_shot_with_the_value_farthest_from_zero(self):
        found = self.write()
        tops = {}
        for row in self.rows("measures"):
            tops[row["shot"]] = max(tops.get(row["shot"], 0.0), row["top_speed"])
        place = found["measures"].index("top_speed")
        self.assertEqual({line[0]: line[4][place] for line in found["shots"]},
                         {name: float("%.6g" % value) for name, value in tops.items()})

    def test_it_names_the_object_that_has_the_worst_value(self):
        self.make_clips("stiff.bvh", swing=0.0)  # every joint moves alike, so the first counts
        self.shots = read_shots([self.clips])
        self.do(self.shots)
        found = self.write()
        worst = {}
        for row in self.rows("measures"):
            for name in found["measures"]:
                if row[name] and abs(row[name]) > abs(worst.get((row["shot"], name), (0.0,))[0]):
                    worst[row["shot"], name] = row[name], row["source"]
        self.assertGreater(len({source for _, source in worst.values()}), 1)
        for line in found["shots"]:
            for name, value, place in zip(found["measures"], line[4], line[11]):
                told = (value, found["objects"][place]) if place is not None else None
                wanted = worst.get((line[0], name))
                self.assertEqual(told, wanted and (float("%.6g" % wanted[0]), wanted[1]), (line[0], name))

    def test_it_is_made_of_records_and_measures_alone(self):
        wanted = self.write()["shots"]
        for kind in ("samples", "keys"):
            for name in os.listdir(os.path.join(self.out, kind)):
                write(os.path.join(self.out, kind, name), "nobody reads this")
        self.assertEqual(self.write()["shots"], wanted)

    @unittest.skipUnless(CHROMIUM, "there is no browser")
    def test_a_browser_shows_the_worst_shot_first_with_its_object(self):
        found = self.write(order="top_speed")
        place = found["measures"].index("top_speed")
        worst = max(found["shots"], key=lambda line: line[4][place])
        source = found["objects"][worst[11][place]]
        shown = browser.page(CHROMIUM, os.path.join(self.out, "report.html"))
        rows = re.findall(r"<tr>(<td>.*?)</tr>", shown, re.DOTALL)
        self.assertEqual(len(rows), 3)
        self.assertIn(">%s</a>" % worst[0], rows[0])
        self.assertIn('<td title="%s">%s</td>' % (source, source.split("|")[-1]), rows[0])

    def test_it_needs_nothing_beside_it(self):
        self.write()
        self.assertNotRegex(self.html, r'(src|href)="|https?://(?!www\.w3\.org/2000/svg)|@import|url\(')

    def test_a_name_cannot_end_the_script(self):
        name = "</script><script>alert(1)</script>"
        self.shots = [Shot(name, self.shots[0].path)]
        self.do(self.shots)
        self.assertEqual(self.write()["shots"][0][0], name)
        self.assertEqual(self.html.count("</script>"), 2)

    def test_the_first_run_has_nothing_to_compare_with(self):
        self.assertFalse(self.write()["compared"])

    def test_it_tells_what_changed_since_the_run_before(self):
        self.write()
        self.change("s0.bvh", clip(frames=12, height=9.0).replace("30.0", "80.0").replace("0.04", "0.02"))
        self.change("s1.bvh", "nothing")
        self.make_clips("s9.bvh")
        gone = self.shots.pop()
        self.shots.append(read_shots([os.path.join(self.clips, "s9.bvh")])[0])
        self.do(self.shots)
        found = self.write()
        place = found["measures"].index("top_speed")
        lines = {line[0]: line for line in found["shots"]}
        self.assertTrue(found["compared"])
        self.assertGreater(lines["s0.bvh"][4][place], lines["s0.bvh"][5][place])
        self.assertEqual((lines["s1.bvh"][1], lines["s1.bvh"][6]), ("failed", "done"))
        self.assertRegex(lines["s1.bvh"][2], "^s1.bvh")
        self.assertIsNone(lines["s9.bvh"][5])
        self.assertEqual(found["gone"], [gone.name])

    def test_a_run_that_changes_nothing_keeps_what_the_run_before_said(self):
        self.write()
        self.change("s0.bvh", "nothing")
        first, second = self.write(), self.write()
        self.assertEqual(first["shots"], second["shots"])
        self.assertTrue(second["compared"])

    def test_a_shot_that_was_never_done_is_missing(self):
        self.shots.append(Shot("later", os.path.join(self.clips, "later.bvh")))
        self.assertEqual(self.write()["shots"][-1][:2], ["later", "missing"])

    def test_the_worst_have_pages_and_others_go(self):
        found = self.write(most=2)
        place = found["measures"].index("top_speed")
        worst = sorted(found["shots"], key=lambda line: -line[4][place])[:2]
        self.assertEqual({line[0] for line in found["shots"] if line[9]}, {line[0] for line in worst})
        for line in worst:
            with open(os.path.join(self.out, line[9]), encoding="utf-8") as page:
                self.assertIn(line[0], page.read())
        self.write(most=1)
        self.assertEqual(len(os.listdir(os.path.join(self.out, "pages"))), 1)

    def test_a_page_is_made_anew_only_for_a_shot_that_changed(self):
        self.write()
        folder = os.path.join(self.out, "pages")
        before = {name: os.stat(os.path.join(folder, name)).st_mtime_ns for name in os.listdir(folder)}
        self.change("s0.bvh", clip(height=5.0))
        self.write()
        after = {name: os.stat(os.path.join(folder, name)).st_mtime_ns for name in os.listdir(folder)}
        self.assertEqual(sum(before.get(name) == when for name, when in after.items()), 2)

    def test_the_command_of_a_shot_is_understood_by_the_program(self):
        shot = Shot("x", self.shots[0].path, range=(2.0, None), select=("|hips|foo?",))
        settings = Settings(exclude=("hips",), samples_per_frame=3)
        self.assertEqual(shlex.split(pages.command(shot, settings)), ["vantorelix", "view"] + pages.arguments(shot, settings))
        words = [pages.program(), "trails"] + pages.arguments(shot, settings)
        shown = json.loads(subprocess.check_output(words + ["--out=-.json", "--quiet"]))
        (trail,) = shown["trails"]
        self.assertEqual((trail["name"], trail["start_frame"], trail["samples_per_frame"]), ("foot", 2, 3))

    def test_an_unknown_order_is_refused_with_those_there_are(self):
        with self.assertRaisesRegex(ValueError, "no measure 'beauty'; there are length, "):
            self.write(order="beauty")

    def test_a_sparkline_has_the_height_of_each_part(self):
        self.assertEqual(report.sparkline([0.0, 61.0, None, 30.5]), "0z.U")
        self.assertEqual(report.sparkline([0.0, 0.0]), "00")
        self.assertEqual(report.sparkline([]), "")


if __name__ == "__main__":
    unittest.main()
