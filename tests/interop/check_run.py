"""Runs the checks of a comparison, several at a time, and prints a line for each."""

import concurrent.futures
import os


def files_below(root):
    """Yields (name, path) of every file below root that is not about the others."""
    for path in sorted(path for path in root.rglob("*") if path.is_file()):
        name = path.relative_to(root).as_posix()
        if path.suffix not in (".md", ".tsv") and not name.startswith("LICENSES/"):
            yield name, path


def run_checks(checks):
    """Takes (kind, name, function, arguments); the function gives a complaint, or None when all is
    well. The last line is "N passed, M failed"; the result is the exit status."""
    failed = 0
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        results = [(kind, name, pool.submit(function, *arguments))
                   for kind, name, function, arguments in checks]
        for kind, name, result in results:
            try:
                complaint = result.result()
            except Exception as error:  # the other reader may fail in its own ways
                complaint = f"{type(error).__name__}: {error}"
            failed += complaint is not None
            print(f"{'FAILED' if complaint else 'ok':6} {kind:7} {name}"
                  + (f"\n       {complaint}" if complaint else ""))
    print(f"{len(checks) - failed} passed, {failed} failed")
    return 1 if failed or not checks else 0
