"""Runs independent checks side by side and reports them."""

import concurrent.futures
import os
import pathlib


def files_below(root):
    """Yields (name, path) of every file below root that is not about the others."""
    for path in sorted(path for path in root.rglob("*") if path.is_file()):
        name = path.relative_to(root).as_posix()
        if path.suffix not in (".md", ".tsv") and not name.startswith("LICENSES/"):
            yield name, path


def report(results):
    """Takes (kind, name, complaint), where the complaint is None when all is well.

    Prints a line each and at the end "N passed, M failed"; returns the exit status.
    """
    passed = failed = 0
    for kind, name, complaint in results:
        passed += complaint is None
        failed += complaint is not None
        print(f"{'FAILED' if complaint is not None else 'ok':6} {kind:8} {name}"
              + (f"\n       {complaint}" if complaint else ""))
    print(f"{passed} passed, {failed} failed")
    return 1 if failed or not passed else 0


def result_of(check):
    try:
        return check.result()
    except Exception as error:  # the other reader may fail in its own ways
        return f"{type(error).__name__}: {error}"


def run_checks(checks):
    """Runs and reports (kind, name, function, arguments), several at a time; a function returns a
    complaint or None."""
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        running = [(kind, name, pool.submit(function, *arguments))
                   for kind, name, function, arguments in checks]
        return report((kind, name, result_of(check)) for kind, name, check in running)


def run_comparison(data, checks_of, tools, sample_tools):
    """Runs the checks of a directory of test data, which becomes the current one, and of the samples.

    checks_of(root, *tools) gives the checks of all files below root. Returns the exit status.
    """
    os.chdir(data)
    checks = list(checks_of(data, *tools))
    samples = os.environ.get("PGKIT_SAMPLES")
    if samples:
        checks += checks_of(pathlib.Path(samples).resolve(), *sample_tools)
    return run_checks(checks)
