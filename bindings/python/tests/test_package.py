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

from test_data_set import DATA, MR, TemporaryDirectory

SOURCES = pathlib.Path(__file__).resolve().parents[1]
PAGE = SOURCES.parents[1] / "docs/coming_from_pydicom.md"
SPEED = pathlib.Path(pgkit.library_path()).parent / ("_speed.pyd" if os.name == "nt" else "_speed.abi3.so")

try:
    import pip
    import wheel
except ImportError:
    pip = wheel = None
build = importlib.util.find_spec("build") and shutil.which("cmake")


class Wheel(TemporaryDirectory):
    @unittest.skipUnless(pip and wheel, "pip and wheel are not installed")
    def test_an_installed_wheel_finds_the_library_in_itself(self):
        copied = self.directory / "sources"
        shutil.copytree(SOURCES, copied, ignore=shutil.ignore_patterns("__pycache__", "build"))
        self.pip("wheel", copied, "--no-deps", "-w", self.directory)
        (made,) = self.directory.glob("*.whl")
        self.assertRegex(made.name, r"^pgkit-%s-py3-none-\w+\.whl$" % re.escape(pgkit.__version__))
        self.assertNotIn("-any", made.name)
        root = self.directory / "root"
        self.pip("install", "--no-deps", "--no-index", "--target", root, made)
        environment = {key: value for key, value in os.environ.items()
                       if key not in ("PGKIT_LIBRARY", "PYTHONPATH")}
        code = (f"import sys; sys.path.insert(0, {str(root)!r}); import pgkit; "
                f"print(pgkit.library_path(), pgkit.open({str(MR)!r}).Rows, pgkit._bases.is_native)")
        told = subprocess.run([sys.executable, "-I", "-c", code], env=environment, cwd="/",
                              capture_output=True, text=True, check=True).stdout.split()
        self.assertEqual(pathlib.Path(told[0]).parent, root / "pgkit")
        self.assertEqual(told[1:], ["64", str(SPEED.is_file())])
        self.assertGreater((root / "pgkit/private.dic").stat().st_size, 500000)

    @unittest.skipUnless(pip and wheel and build, "build is not installed")
    def test_a_source_distribution_has_what_the_library_is_built_of(self):
        self.addCleanup(shutil.rmtree, SOURCES / "pgkit.egg-info", ignore_errors=True)
        self.run_module("build", "--sdist", "--outdir", self.directory, SOURCES)
        (made,) = self.directory.glob("*.tar.gz")
        shutil.unpack_archive(made, self.directory)
        unpacked = self.directory / made.name[: -len(".tar.gz")]
        self.pip("wheel", unpacked, "--no-deps", "-w", self.directory)
        # Every file that is compiled is looked for.
        subprocess.run(["cmake", "-S", unpacked / "native", "-B", self.directory / "build",
                        "-DPGKIT_BUILD_TOOLS=OFF", "-DPGKIT_BUILD_EXAMPLES=OFF"],
                       check=True, capture_output=True)

    def pip(self, *arguments):
        self.run_module("pip", "--quiet", "--disable-pip-version-check", *arguments)

    def run_module(self, *arguments):
        # Nobody asks an index for the tools: the system's do.
        subprocess.run([sys.executable, "-m", *arguments], check=True, capture_output=True,
                       env={**os.environ, "PIP_NO_INDEX": "1"})


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


def told_by(code, **environment):
    """What a process prints that runs some code."""
    environment = {**os.environ, "PYTHONPATH": str(SOURCES), "PGKIT_PURE_PYTHON": "", **environment}
    return subprocess.run([sys.executable, "-c", code], env=environment, capture_output=True, text=True,
                          check=True).stdout


@unittest.skipUnless(SPEED.is_file(), "the part in C++ was not built")
class Speed(TemporaryDirectory):
    # Everything that a data set or an item says of the attributes that the samples have.
    ATTRIBUTES = """
import pathlib, sys, warnings
warnings.simplefilter("ignore")
import pgkit

def told(item, name):
    try:
        value = getattr(item, name)
    except Exception as error:
        return f"{type(error).__name__}: {error}"
    return f"{type(value).__name__} {value!r}"

for path in sorted(pathlib.Path(sys.argv[1]).rglob("*")):
    try:
        data_set = pgkit.open(path)
    except (OSError, pgkit.PgkitError):
        continue
    items = [data_set] + [item for element in data_set.walk() for item in element.items]
    for item in items:
        names = [element.keyword for element in item if element.keyword]
        for name in [*names, "PatientsName", "AcquisitionNumber", "no_such_name", "Nö", "closed"] * 2:
            print(path.name, name, told(item, name))
"""

    def test_is_used_where_it_lies_beside_the_library(self):
        code = "import pgkit; print(pgkit._bases.is_native)"
        self.assertEqual(told_by(code), "True\n")
        self.assertEqual(told_by(code, PGKIT_PURE_PYTHON="1"), "False\n")

    def test_says_the_same_as_python(self):
        code = self.ATTRIBUTES.replace("sys.argv[1]", repr(str(DATA)))
        natively = told_by(code).splitlines()
        self.assertGreater(len(natively), 8000)
        kinds = {line.split()[2] for line in natively}
        self.assertGreaterEqual(kinds, {"str", "int", "float", "PersonName", "MultiValue", "Sequence",
                                        "bytes", "NoneType", "AttributeError:", "bool"})
        self.assertEqual(natively, told_by(code, PGKIT_PURE_PYTHON="1").splitlines())

    def test_one_that_cannot_be_loaded_is_left_alone(self):
        library = self.directory / pathlib.Path(pgkit.library_path()).name
        shutil.copyfile(pgkit.library_path(), library)
        (self.directory / SPEED.name).write_bytes(b"no module")
        code = f"import pgkit; print(pgkit._bases.is_native, pgkit.open({str(MR)!r}).Rows)"
        self.assertEqual(told_by(code, PGKIT_LIBRARY=str(library)), "False 64\n")


class Imports(unittest.TestCase):
    def test_sub_interpreters_are_refused(self):
        code = ("try:\n    import _interpreters as interpreters\n"
                "except ImportError:\n    import _xxsubinterpreters as interpreters\n"
                "interpreters.run_string(interpreters.create(), '''\n"
                "try:\n    import pgkit\nexcept ImportError as error:\n    print(error, flush=True)\n''')")
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
