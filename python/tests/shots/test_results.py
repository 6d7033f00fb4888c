"""What a shot's files hold, and which shots a run does again."""

import csv
import io
import os
import shutil
import subprocess
import unittest
from unittest import mock

import pyarrow.parquet
import vantorelix

from support import CHECKOUT, ShotsTest, clip, misbehaving, write
from vantorelix.shots import plan, schemas
from vantorelix.shots.listing import read_shots
from vantorelix.shots.shot import Settings, Shot
from vantorelix.shots.store import Store, WriteError, file_name

WALK = os.path.join(CHECKOUT, "examples", "walk.bvh")
CRANE = os.path.join(CHECKOUT, "examples", "crane.gltf")


def program_rows(path, *options):
    """The lines of the program's CSV of a scene."""
    words = [os.environ["VANTORELIX_PROGRAM"], "trails", path, "--out=-.csv", "--quiet", "--csv-columns", "speed"]
    return list(csv.DictReader(io.StringIO(subprocess.check_output(words + list(options), universal_newlines=True))))


class Results(ShotsTest):
    def test_samples_are_those_of_the_programs_csv(self):
        self.do([Shot("walk", WALK)], settings=Settings(samples_per_frame=2, select=("*Foot",)))
        wanted = program_rows(WALK, "--samples-per-frame", "2", "--select", "*Foot")
        found = self.rows("samples")
        self.assertEqual(len(found), len(wanted))
        for row, line in zip(found, wanted):
            self.assertEqual((row["shot"], row["source"], str(row["sample"])), ("walk", line["source"], line["sample"]))
            for name in ("frame", "x", "y", "z"):
                self.assertEqual(row[name], float(line[name]), name)
            if line["speed"]:
                self.assertAlmostEqual(row["speed"], float(line["speed"]), delta=1e-9 * abs(float(line["speed"])) + 1e-12)
            else:
                self.assertIsNone(row["speed"])

    def test_keys_and_measures_are_those_of_the_trails(self):
        self.do([Shot("walk", WALK)])
        with vantorelix.open(WALK) as scene:
            trails = scene.trails()
        measures, keys = self.rows("measures"), self.rows("keys")
        self.assertEqual([row["source"] for row in measures], [trail.source for trail in trails])
        self.assertEqual([row["top_speed"] for row in measures], [trail.top_speed for trail in trails])
        self.assertEqual([row["parent"] for row in measures], [trail.parent for trail in trails])
        self.assertEqual([row["frame"] for row in keys], [time for trail in trails for time in trail.key_times])
        points = [point for trail in trails if len(trail.key_points) for point in trail.key_points.tolist()]
        self.assertEqual([[row[axis] for axis in "xyz"] for row in keys], points)

    def test_a_record_tells_what_was_measured(self):
        self.do([Shot("walk", WALK, range=(10.0, 20.0), free=(("artist", "Ada"),))])
        (record,) = self.rows("shots")
        self.assertEqual((record["shot"], record["state"], record["error"], record["artist"]), ("walk", "done", None, "Ada"))
        self.assertEqual((record["first_frame"], record["last_frame"], record["up_axis"]), (10.0, 20.0, "y"))
        tops = [row["top_speed"] for row in self.rows("measures")]
        self.assertAlmostEqual(max(speed for speed in record["speeds"] if speed is not None), max(tops), delta=1e-6)

    def test_a_record_has_the_worst_value_of_each_measure_and_the_first_object_that_has_it(self):
        self.do([Shot("walk", WALK)])
        (record,) = self.rows("shots")
        measures = self.rows("measures")
        self.assertIn("top_speed", [worst["measure"] for worst in record["worst"]])
        self.assertNotIn("top_speed_frame", [worst["measure"] for worst in record["worst"]])
        for worst in record["worst"]:
            found = [(abs(row[worst["measure"]]), row) for row in measures if row[worst["measure"]] is not None]
            farthest = next(row for value, row in found if value == max(value for value, _ in found))
            self.assertEqual((worst["value"], worst["source"]), (farthest[worst["measure"]], farthest["source"]))
        units = {worst["measure"]: worst["unit"] for worst in record["worst"]}
        self.assertEqual((units["top_speed"], units["sparc"]), ("unit per second", "1"))

    def test_every_column_is_described_and_compressed(self):
        self.do([Shot("walk", WALK)])
        for kind in schemas.KINDS:
            file = pyarrow.parquet.ParquetFile(os.path.join(self.out, kind, file_name("walk")))
            for field in file.schema_arrow:
                self.assertIn(b"about", field.metadata, field.name)
                self.assertNotIn("dictionary", str(field.type))
            self.assertEqual(file.metadata.row_group(0).column(0).compression, "ZSTD")
        samples = pyarrow.parquet.read_schema(os.path.join(self.out, "samples", file_name("walk")))
        self.assertEqual(samples.field("x").metadata[b"unit"], b"unit")
        self.assertEqual(str(samples.field("x").type), "double")

    def test_a_shot_without_keys_has_files_all_the_same(self):
        self.make_clips("one.bvh", frames=2)
        self.do([Shot("one", os.path.join(self.clips, "one.bvh"), select=("End Site of foot",))])
        self.assertEqual(self.rows("shots")[0]["state"], "done")

    def test_a_shot_that_fails_is_recorded_and_stops_nobody(self):
        self.make_clips("a.bvh", "c.bvh")
        write(os.path.join(self.clips, "b.bvh"), "HIERARCHY\nROOT\n")
        outcomes = self.do(read_shots([self.clips]))
        self.assertEqual([outcome.error is None for outcome in outcomes], [True, False, True])
        states = {record["shot"]: record for record in self.rows("shots")}
        self.assertEqual(states["b.bvh"]["state"], "failed")
        self.assertIn("b.bvh:", states["b.bvh"]["error"])
        self.assertWhole(read_shots([self.clips]))

    def test_a_shot_that_fails_after_it_was_done_has_no_results_left(self):
        self.make_clips("a.bvh")
        shots = read_shots([self.clips])
        self.do(shots)
        write(shots[0].path, "nothing")
        self.do(shots)
        self.assertEqual(os.listdir(os.path.join(self.out, "samples")), [])

    def test_an_error_of_another_kind_is_recorded_with_its_kind(self):
        self.make_clips("guilty.bvh")
        (outcome,) = self.do(read_shots([self.clips]), misbehaving)
        self.assertEqual(outcome.error, "RuntimeError: as the test wants it")

    def test_options_go_to_the_formats_that_have_a_use_for_them(self):
        settings = Settings(fps=30.0, axis="z-up", unit="m")
        outcomes = self.do([Shot("walk", WALK), Shot("crane", CRANE)], settings=settings)
        self.assertEqual([outcome.error for outcome in outcomes], [None, None])
        rates = {record["shot"]: record["fps"] for record in self.rows("shots")}
        self.assertEqual(rates["crane"], 30.0)

    def test_a_write_that_is_cut_short_leaves_the_file_that_was_there(self):
        store = Store(self.out)
        store.prepare()
        path = write(os.path.join(self.out, "samples", "x.parquet"), "before")

        def half(temporary):
            write(temporary, "ha")
            raise OSError(28, "No space left on device")

        with self.assertRaisesRegex(WriteError, "x.parquet cannot be written .No space left on device.; .*again"):
            store.replace(path, half)
        with open(path) as file:
            self.assertEqual(file.read(), "before")
        self.assertEqual(os.listdir(os.path.join(self.out, "work")), [])

    def test_the_end_of_a_run_takes_away_what_was_half_written_in_it_and_nothing_of_others(self):
        ours, theirs = Store(self.out, "ours"), Store(self.out, "theirs")
        ours.prepare()

        def killed(temporary):
            write(temporary, "ha")
            raise SystemExit

        for store in (ours, theirs):
            with mock.patch("os.unlink"), self.assertRaises(SystemExit):
                store.replace(os.path.join(self.out, "samples", "x.parquet"), killed)
        ours.end_run()
        (left,) = os.listdir(os.path.join(self.out, "work"))
        self.assertTrue(left.startswith("theirs-"))

    def test_names_that_read_alike_have_files_of_their_own(self):
        names = ["a/b", "a_b", "a b", "A/b", "x" * 300, "x" * 301, "\u00e9", "..", ""]
        self.assertEqual(len({file_name(name).lower() for name in names}), len(names))
        self.assertTrue(all(len(file_name(name)) < 120 and "/" not in file_name(name) for name in names))


class Plans(ShotsTest):
    def setUp(self):
        super().setUp()
        self.make_clips("a.bvh", "b.bvh", "c.bvh")
        self.shots = read_shots([self.clips])
        self.do(self.shots)

    def todo(self, shots=None, settings=Settings(), **options):
        made = plan.make(shots or self.shots, settings, Store(self.out), **options)
        return [shot.name for shot in made.todo]

    def test_nothing_is_to_do_where_nothing_changed(self):
        self.assertEqual(self.todo(), [])

    def test_what_changed_is_to_do(self):
        write(self.shots[1].path, clip(height=2.0))
        self.assertEqual(self.todo(), ["b.bvh"])

    def test_a_file_that_was_only_touched_is_not(self):
        os.utime(self.shots[1].path, (1, 1))
        self.assertEqual(self.todo(), [])

    def test_what_is_missing_is_to_do(self):
        os.unlink(os.path.join(self.out, "shots", file_name("c.bvh")))
        self.assertEqual(self.todo(), ["c.bvh"])

    def test_other_options_make_all_of_it_to_do(self):
        self.assertEqual(len(self.todo(settings=Settings(samples_per_frame=2))), 3)
        self.assertEqual(self.todo([Shot("a.bvh", self.shots[0].path, range=(1.0, 5.0))]), ["a.bvh"])

    def test_a_failed_shot_is_done_again_when_it_changes_or_when_that_is_asked_for(self):
        write(self.shots[0].path, "nothing")
        self.do(self.shots)
        self.assertEqual((self.todo(), self.todo(again=True)), ([], ["a.bvh"]))
        write(self.shots[0].path, clip())
        self.assertEqual(self.todo(), ["a.bvh"])

    def test_a_scene_that_is_not_there_is_looked_for_each_time(self):
        os.unlink(self.shots[0].path)
        self.do(self.shots)
        self.assertEqual(self.todo(), ["a.bvh"])

    def test_a_buffer_beside_a_gltf_is_a_part_of_it(self):
        folder = os.path.join(CHECKOUT, "tests", "cases", "formats")
        for name in ("beside.gltf", "beside.bin"):
            shutil.copy(os.path.join(folder, name), self.clips)
        shot = Shot("g", os.path.join(self.clips, "beside.gltf"))
        self.do([shot])
        self.assertEqual(self.todo([shot]), [])
        with open(os.path.join(self.clips, "beside.bin"), "r+b") as file:
            first = file.read(1)
            file.seek(0)
            file.write(bytes([first[0] ^ 1]))
        self.assertEqual(self.todo([shot]), ["g"])

    def test_other_free_columns_change_the_record_and_nothing_else(self):
        shots = [Shot(shot.name, shot.path, free=(("artist", "Ada"),)) for shot in self.shots]
        made = plan.make(shots, Settings(), Store(self.out))
        self.assertEqual((made.todo, made.relabelled), ([], shots))

    def test_groups_hold_enough_work_and_every_shot_once(self):
        shots = [Shot(str(number), "x") for number in range(100)]
        seconds = {shot.name: 0.4 for shot in shots}
        made = plan.groups(plan.Plan(shots, seconds, [], [], []))
        self.assertEqual([shot for group in made for shot in group], shots)
        self.assertTrue(all(sum(seconds[shot.name] for shot in group) >= plan.GROUP_SECONDS for group in made[:-1]))
        self.assertEqual(len(made), 25)


if __name__ == "__main__":
    unittest.main()
