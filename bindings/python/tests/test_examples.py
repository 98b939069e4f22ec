"""The examples do what they say, on one machine and on a cluster."""

import pathlib
import shutil
import signal
import sqlite3
import os
import subprocess
import sys
import unittest

from test_data_set import DATA, MR, TemporaryDirectory

EXAMPLES = pathlib.Path(__file__).resolve().parents[3] / "examples/python"
sys.path.insert(0, str(EXAMPLES))

try:
    import distributed
except ImportError:
    distributed = None


def rows_of(path):
    database = sqlite3.connect(path)
    rows = database.execute("SELECT * FROM instances ORDER BY path").fetchall()
    database.close()
    return rows


class Index(TemporaryDirectory):
    def setUp(self):
        super().setUp()
        self.files = self.directory / "files"
        self.files.mkdir()
        for number in range(60):
            shutil.copy(MR, self.files / f"{number:03}.dcm")
        for path in (DATA / "sequences").iterdir():
            shutil.copy(path, self.files / path.name)
        (self.files / "notes.txt").write_text("no image, " * 50)

    def run_example(self, name, database):
        return subprocess.run([sys.executable, EXAMPLES / name, database, self.files],
                              capture_output=True, text=True, timeout=120, check=False)

    def test_a_folder_is_indexed(self):
        database = self.directory / "index.sqlite"
        for _ in range(2):  # again changes nothing
            finished = self.run_example("index_folder.py", database)
            self.assertEqual((finished.returncode, finished.stderr), (0, ""))
            count = 60 + len(list((DATA / "sequences").iterdir()))
            self.assertEqual(finished.stdout, f"{count} instances, 1 other files left out\n")
        row = rows_of(database)[0]
        self.assertEqual(row[3:5], ("4MR1", "CompressedSamples^MR1"))
        self.assertEqual(row[-2:], ("64", "64"))

    @unittest.skipUnless(distributed, "distributed is not installed")
    def test_a_cluster_makes_the_same_index_also_when_a_worker_is_killed(self):
        expected = self.directory / "expected.sqlite"
        self.assertEqual(self.run_example("index_folder.py", expected).returncode, 0)
        finished = subprocess.run(
            [sys.executable, "-W", "ignore", __file__, "--cluster", self.files,
             self.directory / "index.sqlite"], capture_output=True, text=True, timeout=180,
            check=False)
        self.assertEqual(finished.returncode, 0, finished.stderr)
        self.assertIn("killed one of 2 workers", finished.stdout)
        self.assertEqual(rows_of(self.directory / "index.sqlite"), rows_of(expected))


def run_cluster(files, database):
    """Kills one of two workers while the index is made."""
    import threading

    import index_on_cluster
    from distributed import Client, LocalCluster

    with LocalCluster(n_workers=2, threads_per_worker=1, dashboard_address=None) as cluster, \
            Client(cluster) as client:
        client.upload_file(str(EXAMPLES / "index_folder.py"))
        client.upload_file(str(EXAMPLES / "index_on_cluster.py"))
        victims = list(client.run(os.getpid).values())
        done_by = threading.Event()
        as_stored = index_on_cluster.index_folder.store

        def store(database, rows):
            as_stored(database, rows)
            if not done_by.is_set():  # the first batch is there: the others are on their way
                done_by.set()
                os.kill(victims[0], signal.SIGKILL)
                print(f"killed one of {len(victims)} workers")

        index_on_cluster.index_folder.store = store
        index_on_cluster.index(client, database, [files], size=2)


if __name__ == "__main__":
    if sys.argv[1:2] == ["--cluster"]:
        run_cluster(*sys.argv[2:])
    else:
        unittest.main()
