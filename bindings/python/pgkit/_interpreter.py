"""Refuses interpreters other than the main one of a process, before anything else is imported: the
library has one edition for a process, and its callbacks run in the main interpreter."""

import importlib


def _refuse_sub_interpreters() -> None:
    for name in ("_interpreters", "_xxsubinterpreters"):
        try:
            interpreters = importlib.import_module(name)
        except ImportError:
            continue
        if interpreters.get_current() != interpreters.get_main():
            raise ImportError("pgkit: only the main interpreter of a process can use the library")
        return


_refuse_sub_interpreters()
