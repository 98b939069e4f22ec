"""What makes wheels and source distributions: setuptools.

Tools that build with requirements of their own need no network where the system has setuptools and wheel:
they are taken from there.
"""

import importlib.util
import sys
import sysconfig

_REQUIREMENTS = {"setuptools": "setuptools>=61", "wheel": "wheel"}


def _missing():
    return [requirement for name, requirement in _REQUIREMENTS.items()
            if importlib.util.find_spec(name) is None]


def _folders_of_the_system():
    """Where Python's packages of the system lie, which an environment for builds does not see."""
    schemes = [name for name in ("deb_system", "posix_prefix", "nt")
               if name in sysconfig.get_scheme_names()]
    return [sysconfig.get_path("purelib", name, {"base": sys.base_prefix}) for name in schemes]


if _missing():
    sys.path += _folders_of_the_system()


def get_requires_for_build_wheel(config_settings=None):
    return _missing()


get_requires_for_build_sdist = get_requires_for_build_editable = get_requires_for_build_wheel


def __getattr__(name):
    """All other functions of a backend, those of setuptools."""
    from setuptools import build_meta

    return getattr(build_meta, name)
