"""The list of shots: what it may be, how its shots are named, and what it refuses."""

import os
import unittest

import pyarrow
import pyarrow.parquet

from support import ShotsTest, write
from vantorelix.shots.listing import read_shots
from vantorelix.shots.shot import UsageError
from vantorelix.shots.tables import list_table


class Lists(ShotsTest):
    def table(self, text, name="shots.csv"):
        return write(os.path.join(self.folder, name), text)

    def assertRefused(self, given, *words, **options):
        with self.assertRaises(UsageError) as caught:
            read_shots([given], **options)
        for word in words:
            self.assertIn(word, str(caught.exception))

    def test_a_folder_stands_for_every_scene_below_it(self):
        self.make_clips("b/one.bvh", "a/two.BVH", "three.bvh")
        write(os.path.join(self.clips, "notes.txt"), "nothing")
        shots = read_shots([self.clips])
        self.assertEqual([shot.name for shot in shots], ["three.bvh", "a/two.BVH", "b/one.bvh"])
        self.assertEqual(shots[1].path, os.path.join(self.clips, "a", "two.BVH"))

    def test_a_pattern_stands_for_the_files_that_match(self):
        self.make_clips("a/x1.bvh", "b/x2.bvh", "b/y.bvh")
        names = [shot.name for shot in read_shots([os.path.join(self.clips, "*", "x*.bvh")])]
        self.assertEqual(names, ["a/x1.bvh", "b/x2.bvh"])

    def test_a_scene_alone_goes_by_its_file_name(self):
        self.make_clips("a/one.bvh")
        self.assertEqual([shot.name for shot in read_shots([os.path.join(self.clips, "a", "one.bvh")])], ["one.bvh"])

    def test_a_table_gives_take_range_patterns_and_free_columns(self):
        table = self.table("path,take,range,select,artist\nclips/a.fbx,wave,10:20.5,Foot*; *Hand,Ada\nclips/b.bvh,,5:,,\n")
        first, second = read_shots([table])
        self.assertEqual(first.path, os.path.join(self.clips, "a.fbx"))
        self.assertEqual((first.name, first.take, first.range), ("a.fbx:wave", "wave", (10.0, 20.5)))
        self.assertEqual((first.select, first.free), (("Foot*", "*Hand"), (("artist", "Ada"),)))
        self.assertEqual((second.take, second.range, second.select, second.free), (None, (5.0, None), (), (("artist", ""),)))

    def test_a_column_of_names_comes_before_paths(self):
        table = self.table("shot,path\nsq10_0010,x/a.bvh\n,x/b.bvh\n")
        self.assertEqual([shot.name for shot in read_shots([table])], ["sq10_0010", "b.bvh"])

    def test_a_list_written_as_parquet_reads_back_the_same(self):
        table = self.table('shot,path,take,range,select,note\nA,a.fbx,wave,:20,"Foot*;Hand",say "x"\nB,b.bvh,,0.1:7,,\n')
        shots = read_shots([table])
        path = os.path.join(self.folder, "list.parquet")
        pyarrow.parquet.write_table(list_table(shots), path)
        self.assertEqual(read_shots([path]), shots)

    def test_numbers_and_gaps_in_parquet_are_texts(self):
        path = os.path.join(self.folder, "list.parquet")
        pyarrow.parquet.write_table(pyarrow.table({"path": ["a.bvh"], "number": [7], "none": pyarrow.nulls(1)}), path)
        self.assertEqual(read_shots([path])[0].free, (("number", "7"), ("none", "")))

    def test_two_takes_of_a_file_are_two_shots(self):
        table = self.table("path,take\nx.fbx,a\nx.fbx,b\n")
        self.assertEqual([shot.name for shot in read_shots([table])], ["x.fbx:a", "x.fbx:b"])

    def test_names_that_are_not_unique_are_refused(self):
        self.assertRefused(self.table("path,range\nx.bvh,1:5\nx.bvh,5:9\n"), "'x.bvh'", "column 'shot'")

    def test_a_table_without_paths_is_refused(self):
        self.assertRefused(self.table("file,take\nx.bvh,\n"), "no column 'path'", "file, take")
        self.assertRefused(self.table("path,take\n,a\n"), "row 1", "path is missing")

    def test_a_range_that_is_none_is_refused_with_its_row(self):
        self.assertRefused(self.table("path,range\na.bvh,1:2\nb.bvh,ten\n"), "row 2", "'ten' is not a range")

    def test_columns_that_the_results_use_are_refused(self):
        self.assertRefused(self.table("path,state\na.bvh,x\n"), "'state'", "rename", taken=["state"])

    def test_a_row_of_another_length_is_refused(self):
        self.assertRefused(self.table("path,note\na.bvh\n"), "row 1 has 1 cells")

    def test_what_is_not_parquet_is_refused(self):
        self.assertRefused(self.table("path\na.bvh\n", "list.parquet"), "cannot be read")

    def test_nothing_is_refused(self):
        os.makedirs(self.clips)
        self.assertRefused(self.clips, "there are no shots")
        self.assertRefused(os.path.join(self.clips, "*.bvh"), "there are no shots")
        self.assertRefused(os.path.join(self.clips, "missing"), "no such file")


if __name__ == "__main__":
    unittest.main()
