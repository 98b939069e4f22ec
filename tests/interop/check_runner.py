"""Runs independent checks side by side and reports them."""

import concurrent.futures
import os
import pathlib
import sys


def files_below(root):
    """Yields (name, path) of every file below root that is not about the others."""
    for path in sorted(path for path in root.rglob("*") if path.is_file()):
        name = path.relative_to(root).as_posix()
        if path.suffix not in (".md", ".tsv") and not name.startswith("LICENSES/"):
            yield name, path


def run_checks(checks):
    """Checks are (kind, name, function, arguments); a function returns a complaint or None.

    Prints a line each and at the end "N passed, M failed"; returns the exit status.
    """
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


def run_comparison(data, checks_of):
    """Runs the checks of a directory of test data, which becomes the current one, and of the samples.

    checks_of(root, tool, sanitized_tool, windows_command) gives the checks of all files below root;
    the tools are those of the command line. Returns the exit status.
    """
    tool, sanitized, windows = sys.argv[1], sys.argv[2], sys.argv[3:]
    os.chdir(data)
    checks = list(checks_of(data, tool, sanitized, windows))
    samples = os.environ.get("PGKIT_SAMPLES")
    if samples:
        checks += checks_of(pathlib.Path(samples).resolve(), tool, sanitized, None)
    return run_checks(checks)
