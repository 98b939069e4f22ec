"""Makes a wheel with the library inside.

The library and its companion for images are those beside the file that the environment variable
PGKIT_LIBRARY names, or are built with CMake: from the sources that this folder lies in, or from those
that a source distribution brings along.
"""

import os
import pathlib
import shutil
import subprocess
import sys

from setuptools import Distribution, setup
from setuptools.command.build_py import build_py
from setuptools.command.sdist import sdist
from wheel.bdist_wheel import bdist_wheel

HERE = pathlib.Path(__file__).resolve().parent
BROUGHT_ALONG = HERE / "native"
SOURCES = ["CMakeLists.txt", "LICENSE", "NOTICE", "README.md", "CHANGELOG.md", "cmake", "data", "docs",
           "include", "imaging", "src", "bindings/python/speed"]
NAMED = os.environ.get("PGKIT_LIBRARY")
# A library that was built for Windows makes a wheel for Windows, wherever that is made.
WINDOWS = NAMED.lower().endswith(".dll") if NAMED else os.name == "nt"
LIBRARY = "pgkit.dll" if WINDOWS else "libpgkit.so.2"
# What goes into the package if it is beside the library: its companion, and the part of this module in
# C++, which is for every Python.
COMPANIONS = ("pgview32.dll", "_speed.pyd") if WINDOWS else ("pgview32.so", "_speed.abi3.so")


def source_folder():
    """Where the sources of the library are."""
    for folder in (BROUGHT_ALONG, HERE.parent.parent):
        if (folder / "src/pgkit.def").is_file():
            return folder
    raise SystemExit("pgkit: there are no sources of the library here; PGKIT_LIBRARY may name its file")


def built_library(folder):
    """Builds the libraries below a folder."""
    subprocess.run(
        ["cmake", "-S", str(source_folder()), "-B", str(folder), "-DCMAKE_BUILD_TYPE=RelWithDebInfo",
         "-DPGKIT_BUILD_TOOLS=OFF", "-DPGKIT_BUILD_TESTS=OFF", "-DPGKIT_BUILD_EXAMPLES=OFF"],
        check=True)
    subprocess.run(["cmake", "--build", str(folder), "--parallel", str(os.cpu_count() or 1),
                    "--target", "pgkit_python"], check=True)
    return folder / "bin" / LIBRARY


def copy_private_elements(library, package):
    """The list of private elements, from the sources or from where the library lies."""
    for folder in (BROUGHT_ALONG / "data", HERE.parent.parent / "data", library.parent,
                   library.parent.parent / "share/pgkit", library.parent.parent.parent / "share/pgkit"):
        if (folder / "private.dic").is_file():
            shutil.copyfile(folder / "private.dic", package / "private.dic")
            return
    print("pgkit: there is no private.dic: the wheel will know no private elements", file=sys.stderr)


class BuildWithLibraries(build_py):
    def run(self):
        super().run()
        folder = pathlib.Path(self.get_finalized_command("build").build_temp).resolve() / "native"
        package = pathlib.Path(self.build_lib) / "pgkit"
        library = pathlib.Path(NAMED).resolve(strict=True) if NAMED else built_library(folder)
        self.put(library, package / LIBRARY)
        for name in COMPANIONS:
            if (library.parent / name).is_file():
                self.put(library.parent / name, package / name)
        copy_private_elements(library, package)

    @staticmethod
    def put(file, place):
        """Copies a module without its debug information; STRIP names the tool that takes that out of
        modules for another machine."""
        shutil.copyfile(file, place)
        strip = os.environ.get("STRIP") or (None if WINDOWS else shutil.which("strip"))
        if strip:
            subprocess.run([strip, "--strip-unneeded", str(place)], check=True)


class SourcesWithLibrary(sdist):
    def make_release_tree(self, base_dir, files):
        super().make_release_tree(base_dir, files)
        target = pathlib.Path(base_dir) / "native"
        for name in SOURCES:
            source = source_folder() / name
            (target / name).parent.mkdir(parents=True, exist_ok=True)
            if source.is_dir():
                shutil.copytree(source, target / name)
            elif source.is_file():
                shutil.copyfile(source, target / name)


class WheelOfPlatform(bdist_wheel):
    def get_tag(self):
        # The library is loaded at run time: any Python will do, and only the library's platform.
        platform = "win_amd64" if WINDOWS and os.name != "nt" else super().get_tag()[2]
        return ("py3", "none", platform)


class WithLibraries(Distribution):
    def has_ext_modules(self):
        return True


if sys.version_info < (3, 9):
    raise SystemExit("pgkit needs Python 3.9 or later")
setup(distclass=WithLibraries,
      cmdclass={"build_py": BuildWithLibraries, "sdist": SourcesWithLibrary,
                "bdist_wheel": WheelOfPlatform})
