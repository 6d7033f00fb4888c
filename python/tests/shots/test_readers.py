"""The dataset in the hands of others: Arrow, pandas and DuckDB read it as it is."""

import os
import unittest

from support import ShotsTest, write
from vantorelix.shots.listing import read_shots

try:
    import duckdb
except ImportError:
    duckdb = None
try:
    import pandas
except ImportError:
    pandas = None


class Readers(ShotsTest):
    def setUp(self):
        super().setUp()
        self.make_clips("a/one.bvh", "a/two.bvh")
        write(os.path.join(self.clips, "bad.bvh"), "nothing")
        table = write(os.path.join(self.folder, "list.csv"),
                      "path,artist\nclips/a/one.bvh,Ada\nclips/a/two.bvh,Bo\nclips/bad.bvh,\n")
        self.do(read_shots([table]))
        self.where = os.path.join(self.out, "%s")

    def test_arrow(self):
        self.assertEqual(len(self.rows("samples")), 2 * 3 * 12)
        self.assertEqual(sorted(row["artist"] for row in self.rows("shots")), ["", "Ada", "Bo"])

    @unittest.skipUnless(pandas, "pandas is not installed")
    def test_pandas(self):
        samples = pandas.read_parquet(self.where % "samples")
        self.assertEqual(sorted(samples.groupby("shot").size().to_dict().items()), [("a/one.bvh", 36), ("a/two.bvh", 36)])
        self.assertEqual(str(samples["x"].dtype), "float64")
        shots = pandas.read_parquet(self.where % "shots")
        joined = pandas.read_parquet(self.where % "measures").merge(shots, on="shot")
        self.assertEqual(set(joined["artist"]), {"Ada", "Bo"})

    @unittest.skipUnless(duckdb, "duckdb is not installed")
    def test_duckdb(self):
        query = ("SELECT artist, count(*) FROM '%s/*.parquet' JOIN '%s/*.parquet' AS shots USING (shot) GROUP BY ALL ORDER BY ALL"
                 % (self.where % "samples", self.where % "shots"))
        self.assertEqual(duckdb.sql(query).fetchall(), [("Ada", 36), ("Bo", 36)])
        kinds = duckdb.sql("DESCRIBE FROM '%s/*.parquet'" % (self.where % "samples")).fetchall()
        self.assertEqual({row[1] for row in kinds}, {"VARCHAR", "BIGINT", "DOUBLE"})


if __name__ == "__main__":
    unittest.main()
