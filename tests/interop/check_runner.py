"""Runs independent checks side by side and reports them."""

import concurrent.futures
import os


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
