"""The package: a wheel with the library inside, and where it can be imported."""

import importlib.util
import os
import pathlib
import re
import shutil
import subprocess
import sys
import unittest

import pgkit

from test_data_set import MR, TemporaryDirectory

SOURCES = pathlib.Path(__file__).resolve().parents[1]
PAGE = SOURCES.parents[1] / "docs/coming_from_pydicom.md"

try:
    import pip
    import wheel
except ImportError:
    pip = wheel = None


class Wheel(TemporaryDirectory):
    @unittest.skipUnless(pip and wheel, "pip and wheel are not installed")
    def test_an_installed_wheel_finds_the_library_in_itself(self):
        copied = self.directory / "sources"
        shutil.copytree(SOURCES, copied, ignore=shutil.ignore_patterns("__pycache__", "build"))
        self.pip("wheel", copied, "--no-build-isolation", "--no-deps", "-w", self.directory)
        (made,) = self.directory.glob("*.whl")
        self.assertRegex(made.name, r"^pgkit-%s-py3-none-\w+\.whl$" % re.escape(pgkit.__version__))
        self.assertNotIn("-any", made.name)
        root = self.directory / "root"
        self.pip("install", "--no-deps", "--no-index", "--target", root, made)
        environment = {key: value for key, value in os.environ.items()
                       if key not in ("PGKIT_LIBRARY", "PYTHONPATH")}
        code = (f"import sys; sys.path.insert(0, {str(root)!r}); import pgkit; "
                f"print(pgkit.library_path(), pgkit.open({str(MR)!r}).Rows)")
        told = subprocess.run([sys.executable, "-I", "-c", code], env=environment, cwd="/",
                              capture_output=True, text=True, check=True).stdout.split()
        self.assertEqual(pathlib.Path(told[0]).parent, root / "pgkit")
        self.assertEqual(told[1], "64")
        self.assertGreater((root / "pgkit/private.dic").stat().st_size, 500000)

    def pip(self, *arguments):
        subprocess.run([sys.executable, "-m", "pip", "--quiet", "--disable-pip-version-check",
                        *arguments], check=True, capture_output=True)


class Types(TemporaryDirectory):
    @unittest.skipUnless(importlib.util.find_spec("mypy"), "mypy is not installed")
    def test_the_types_are_strict_and_those_of_users_are_found(self):
        user = self.directory / "user.py"
        user.write_text("import pgkit\n"
                        "def name(path: str) -> pgkit.PersonName:\n"
                        "    with pgkit.open(path) as ds:\n"
                        "        return pgkit.PersonName(ds.PatientName)\n"
                        "rows: list[pgkit.Row] = list(pgkit.scan(['x'], ['Rows'], jobs=2))\n")
        environment = {**os.environ, "MYPYPATH": str(SOURCES)}
        told = subprocess.run([sys.executable, "-m", "mypy", "--strict", "--cache-dir",
                               self.directory / "cache", SOURCES / "pgkit", user],
                              env=environment, capture_output=True, text=True, check=False)
        self.assertEqual((told.returncode, told.stderr), (0, ""), told.stdout)


class Imports(unittest.TestCase):
    def test_sub_interpreters_are_refused(self):
        code = ("import _xxsubinterpreters as interpreters\n"
                "interpreters.run_string(interpreters.create(), '''\n"
                "try:\n    import pgkit\nexcept ImportError as error:\n    print(error)\n''')")
        told = subprocess.run([sys.executable, "-c", code], capture_output=True, text=True,
                              check=False)
        if "_xxsubinterpreters" in told.stderr:
            self.skipTest("this Python has no such module")
        self.assertIn("only the main interpreter", told.stdout)

    def test_the_page_for_users_of_another_module_names_what_there_is(self):
        text = PAGE.read_text(encoding="utf-8")
        names = set(re.findall(r"pgkit\.(\w+)", text))
        self.assertGreater(len(names), 8)
        for name in names:
            self.assertTrue(hasattr(pgkit, name), name)
        with pgkit.open(MR) as data_set:
            known = dir(data_set) + dir(data_set["Rows"])
            ours = "".join(line.split("|")[3] for line in text.splitlines() if line.count("|") == 4)
            for name in re.findall(r"(?:ds|\])\.([a-z]\w+)", ours):
                self.assertIn(name, known)


if __name__ == "__main__":
    unittest.main()
