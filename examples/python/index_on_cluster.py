#!/usr/bin/env python3
"""The same index made by the workers of a Dask cluster: index_on_cluster.py DATABASE FOLDER...

Without a scheduler in DASK_SCHEDULER_ADDRESS two worker processes are started here. Dask runs what a
lost worker has not finished on another one; the database is written by this process alone.
"""

import os
import sqlite3
import sys

import index_folder

# So many files are one task.
BATCH = 50


def files_below(folders):
    """All files, in order."""
    for folder in folders:
        for place, folders_below, names in os.walk(folder):
            folders_below.sort()
            for name in sorted(names):
                yield os.path.join(place, name)


def batches(paths, size=BATCH):
    """Lists of so many paths."""
    paths = list(paths)
    return [paths[start : start + size] for start in range(0, len(paths), size)]


def rows_of(paths):
    """What a worker does: the rows of a batch, and how many files are none and could not be read."""
    import pgkit

    scan = pgkit.scan(paths, index_folder.KEYS, jobs=1)
    rows = [index_folder.row_of(values) for values in scan]
    return rows, scan.left_out, scan.failed


def index(client, path, folders, size=BATCH):
    """Makes the index with the workers of a client; the number of instances, of other files, and the
    files that failed."""
    from distributed import as_completed

    database = sqlite3.connect(path)
    index_folder.create(database)
    tasks = client.map(rows_of, batches(files_below(folders), size), pure=False, retries=3)
    left_out, failed = 0, []
    for _, (rows, others, errors) in as_completed(tasks, with_results=True):
        index_folder.store(database, rows)
        left_out += others
        failed += errors
    (count,) = database.execute("SELECT count(*) FROM instances").fetchone()
    database.close()
    return count, left_out, failed


def main(path, folders):
    from distributed import Client, LocalCluster

    address = os.environ.get("DASK_SCHEDULER_ADDRESS")
    cluster = None if address else LocalCluster(n_workers=2, threads_per_worker=1,
                                                dashboard_address=None)
    with Client(address or cluster) as client:
        client.upload_file(index_folder.__file__)
        client.upload_file(os.path.abspath(__file__))
        count, left_out, failed = index(client, path, folders)
    if cluster is not None:
        cluster.close()
    for name, reason in failed:
        print(f"{name}: {reason}", file=sys.stderr)
    print(f"{count} instances, {left_out} other files left out")
    return 1 if failed else 0


if __name__ == "__main__":
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    sys.exit(main(sys.argv[1], sys.argv[2:]))
