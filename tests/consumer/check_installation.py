#!/usr/bin/python3
"""Installs and packages both builds, moves what came out, and builds and runs hosts against it.

    check_installation.py NATIVE_BUILD WINDOWS_BUILD WINE_SCRIPT

The last line is "N passed, M failed".
"""
import base64
import csv
import hashlib
import os
import pathlib
import re
import shlex
import subprocess
import sys
import tarfile
import tempfile
import zipfile

HERE = pathlib.Path(__file__).resolve().parent
ROOT = HERE.parent.parent
sys.path.insert(0, str(HERE.parent / "support"))
import first_steps  # noqa: E402
from check_runner import run_checks  # noqa: E402
from markdown_links import dead_links  # noqa: E402
from windows_files import check_manifest, check_runtime, check_version_resources  # noqa: E402
from windows_prompt import Prompt  # noqa: E402

TOOLCHAIN = ROOT / "cmake/mingw-w64-x86_64.cmake"
RLE_IMAGE = ROOT / "tests/data/encapsulated/rtdose_rle_15frames_no_bot.dcm"
MR_IMAGE = ROOT / "tests/data/native/mr_implicit_le.dcm"
VERSION = "2.86e 24-mar-2o15"
EXAMPLES = ("read_and_print", "anonymize_folder", "frames_to_raw", "disc_to_json", "json_to_file",
            "read_with_classes", "edit_and_save", "build_data_set", "browse_disc", "make_disc",
            "read_in_c")


def run(*command, **options):
    """Runs a command and returns what it printed; raises with the end of that when it fails."""
    done = subprocess.run([str(word) for word in command], stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, text=True, timeout=300, check=False,
                          stdin=subprocess.DEVNULL, **options)
    if done.returncode != 0:
        raise RuntimeError(f"{command[0]} gave {done.returncode}: {done.stdout[-2000:]}")
    return done.stdout


class Kit:
    """An installed pgkit, at a prefix that the build knew nothing of."""

    def __init__(self, name, prefix, work, wine=None):
        self.name = name
        self.prefix = prefix
        self.work = work / ("work-" + name)
        self.wine = wine
        self.suffix = ".exe" if wine else ""

    def run(self, program, *arguments, cwd):
        return run(*([self.wine] if self.wine else []), f"{program}{self.suffix}", *arguments,
                   cwd=cwd)

    def build(self, source, name):
        directory = self.work / name
        run("cmake", "-G", "Ninja", "-S", source, "-B", directory,
            f"-DCMAKE_PREFIX_PATH={self.prefix}", "-DCMAKE_FIND_USE_PACKAGE_REGISTRY=OFF",
            *([f"-DCMAKE_TOOLCHAIN_FILE={TOOLCHAIN}"] if self.wine else []))
        run("cmake", "--build", directory)
        return directory


def complain_unless(found, expected):
    return None if found == expected else f"expected {expected!r}, found {found!r}"


def check_consumer(kit):
    directory = kit.build(HERE, "consumer")
    image = os.path.relpath(RLE_IMAGE, directory)
    return complain_unless(
        [kit.run("./consumer", "made.dcm", cwd=directory).strip(),
         kit.run("./layer_consumer", "layer.dcm", cwd=directory).strip(),
         kit.run("./consumer_in_c", cwd=directory).strip(),
         kit.run("./imaging_consumer", image, cwd=directory).strip()],
        [f"{VERSION}: DOE^JANE", "DOE^JANE", "PixelData OWOB", "15 frames"])


def check_examples(kit):
    directory = kit.build(kit.prefix / "share/doc/pgkit/examples", "examples")
    missing = [name for name in EXAMPLES if not (directory / (name + kit.suffix)).is_file()]
    if missing:
        return f"not built: {missing}"
    kit.run("./build_data_set", "wedge.dcm", cwd=directory)
    printed = kit.run("./read_and_print", "wedge.dcm", cwd=directory)
    return complain_unless(printed.splitlines()[:2], ["Patient: TEST^WEDGE", "Image: 64 x 64"])


def check_pkg_config(kit):
    environment = dict(os.environ, PKG_CONFIG_PATH=str(kit.prefix / "lib/pkgconfig"))
    flags = run("pkg-config", "--cflags", "--libs", "pgkit", env=environment)
    kit.work.mkdir(exist_ok=True)
    for name in ("consumer", "layer_consumer"):
        run("g++", "-std=c++17", HERE / f"{name}.cpp", "-o", f"{name}_by_pkg_config", *shlex.split(flags),
            f"-Wl,-rpath,{kit.prefix}/lib", cwd=kit.work)
    return complain_unless(
        [kit.run("./consumer_by_pkg_config", "consumer.dcm", cwd=kit.work).strip(),
         kit.run("./layer_consumer_by_pkg_config", "layer.dcm", cwd=kit.work).strip()],
        [f"{VERSION}: DOE^JANE", "DOE^JANE"])


def check_tool(kit):
    printed = kit.run(kit.prefix / "bin/pgtool", "--version", cwd=kit.prefix)
    return complain_unless(printed.strip(), f"pgkit {VERSION}")


def check_definitions(kit):
    """The .def file makes an import library that a host can be linked with."""
    directory = kit.work / "definitions"
    directory.mkdir(parents=True)
    run("x86_64-w64-mingw32-dlltool", "-d", kit.prefix / "lib/pgkit.def", "-D", "pgkit.dll",
        "-l", directory / "pgkit.lib")
    run("x86_64-w64-mingw32-gcc", f"-I{kit.prefix}/include", HERE / "consumer_in_c.c",
        "-o", directory / "host.exe", directory / "pgkit.lib")
    (directory / "pgkit.dll").write_bytes((kit.prefix / "bin/pgkit.dll").read_bytes())
    return complain_unless(kit.run("./host", cwd=directory).strip(), "PixelData OWOB")


def check_python(kit):
    """The installed module finds the library of its own installation."""
    environment = dict(os.environ, PYTHONPATH=str(kit.prefix / "share/pgkit/python"),
                       PYTHONDONTWRITEBYTECODE="1")
    environment.pop("PGKIT_LIBRARY", None)
    script = "import pgkit; print(pgkit.library_version(), pgkit.library_path())"
    return complain_unless(run("python3", "-c", script, env=environment).strip(),
                           f"{VERSION} {kit.prefix.resolve()}/lib/libpgkit.so.2")


def check_first_steps(kit, name, transcript):
    """What newcomers do with the packages, with an installation in their place."""
    directory = kit.work / "first" / name
    first_steps.prepare(directory)
    prefix = directory / "prefix"  # a name that a shell need not quote
    prefix.symlink_to(kit.prefix)
    environment = dict(os.environ, PATH=f"{prefix}/bin:/usr/bin:/bin", CMAKE_PREFIX_PATH=str(prefix),
                       LD_LIBRARY_PATH=f"{prefix}/lib", PKG_CONFIG_PATH=f"{prefix}/lib/pkgconfig",
                       PYTHONPATH=f"{prefix}/share/pgkit/python", PYTHONDONTWRITEBYTECODE="1")
    environment.pop("PGKIT_LIBRARY", None)
    return first_steps.complaint_about(
        transcript.replace("/usr/share/doc/libpgkit-dev", f"{prefix}/share/doc/pgkit"),
        first_steps.shell(cwd=directory, env=environment))


def check_first_steps_on_windows(kit, transcript):
    directory = kit.work / "first"
    first_steps.prepare(directory)
    (directory / "pgkit").symlink_to(kit.prefix)
    return first_steps.complaint_about(transcript, Prompt(directory, kit.wine).run)


def wheel_of(kit):
    (wheel,) = (kit.prefix / "share/pgkit").glob("*.whl")
    return wheel


def check_wheel_content(kit):
    """The wheel has the module with both libraries, and says so truly."""
    with zipfile.ZipFile(wheel_of(kit)) as content:
        files = {name: content.read(name) for name in content.namelist()}
    (info,) = {name.split("/")[0] for name in files if ".dist-info/" in name}
    expected = {f"pgkit/{path.name}" for path in ROOT.glob("bindings/python/pgkit/*.py")}
    expected |= {f"pgkit/{name}" for name in ("pgkit.dll", "pgview32.dll", "private.dic", "py.typed")}
    expected |= {f"{info}/{name}" for name in ("METADATA", "RECORD", "WHEEL", "top_level.txt")}
    if set(files) != expected:
        return f"too much or missing: {sorted(set(files) ^ expected)}"
    if wheel_of(kit).name != f"{info.removesuffix('.dist-info')}-py3-none-win_amd64.whl":
        return f"is called {wheel_of(kit).name}"
    if "\nTag: py3-none-win_amd64\n" not in files[f"{info}/WHEEL"].decode():
        return files[f"{info}/WHEEL"].decode()
    for name, told, _ in csv.reader(files[f"{info}/RECORD"].decode().splitlines()):
        digest = base64.urlsafe_b64encode(hashlib.sha256(files[name]).digest()).decode().rstrip("=")
        if told not in (f"sha256={digest}", "") or (not told and name != f"{info}/RECORD"):
            return f"{name} is not what the record tells"
    # Without debug information, which is most of a library as it is built.
    large = [name for name in files if name.endswith(".dll") and len(files[name]) > 4_000_000]
    return f"are not stripped: {large}" if large else None


def check_wheel_installation(kit):
    """pip takes the wheel for Windows, and a host runs with the libraries that it brings."""
    target = kit.work / "wheel"
    run("/usr/bin/python3", "-m", "pip", "--disable-pip-version-check", "install", "--no-index", "--no-deps",
        "--platform", "win_amd64", "--only-binary", ":all:", "--target", target, wheel_of(kit))
    package = target / "pgkit"
    run("x86_64-w64-mingw32-g++", "-static", f"-I{kit.prefix}/include", HERE / "imaging_consumer.cpp",
        "-o", package / "host.exe", package / "pgview32.dll")
    return complain_unless(
        kit.run("./host", os.path.relpath(RLE_IMAGE, package), cwd=package).strip(), "15 frames")


def names_path(text, path):
    """Whether a text names this path, or one below it, from the root on. "/include/pgkit" does not
    name "/pgkit", but "-I/pgkit/include" does."""
    return re.search(rf"(?:^|(?<![\w}})./~-])|(?<=-[IL])){re.escape(str(path))}(?![\w.-])",
                     text) is not None


def check_names_path():
    wrong = [text for text, expected in (
        ('set(x "/pgkit")', True), ("-I/pgkit/include", True), ("/pgkit/build;/usr", True),
        ("a=/pgkit", True), ("${prefix}/pgkit", False), ("lib/cmake/pgkit", False),
        ("/opt/pgkit/include", False), ("/pgkit-2", False), ("/pgkit.pc", False))
             if names_path(text, "/pgkit") != expected]
    return f"are taken wrongly: {wrong}" if wrong else None


def check_content(kit):
    """What a developer expects is there, nothing else is beside it, and no file tells whence."""
    modules = (["bin/pgkit.dll", "bin/pgview32.dll", "bin/pgtool.exe", "lib/libpgkit.dll.a",
                "lib/libpgview32.dll.a", "lib/pgkit.def", "lib/pgview32.def", "bin/private.dic",
                f"share/pgkit/{wheel_of(kit).name}"]
               if kit.wine else
               ["share/pgkit/private.dic", "bin/pgtool", "lib/libpgkit.so", "lib/libpgkit.so.2", "lib/pgview32.so"])
    documents = ["LICENSE", "NOTICE", "README.md", "CHANGELOG.md", "SECURITY.md", "docs/api.md",
                 "docs/files.md", "docs/ownership.md", "docs/architecture.md",
                 "examples/CMakeLists.txt"]
    expected = (modules + [f"share/doc/pgkit/{name}" for name in documents]
                + [f"include/pgkit/{path.name}" for path in ROOT.glob("include/pgkit/*.h*")]
                + [f"include/pgkit/cpp/{path.name}"
                   for path in ROOT.glob("include/pgkit/cpp/*.hpp")]
                + ["share/pgkit/python/pgkit/__init__.py", "share/pgkit/debugger/pgkit.natvis",
                   "lib/cmake/pgkit/pgkitConfig.cmake", "lib/pkgconfig/pgkit.pc",
                   "lib/pkgconfig/pgview32.pc"])
    found = {path.relative_to(kit.prefix).as_posix(): path
             for path in kit.prefix.rglob("*") if path.is_file()}
    missing = [name for name in expected if name not in found]
    if missing:
        return f"missing: {missing}"
    odd = [name for name in found if not name.startswith(("include/pgkit/", "share/", "lib/cmake/",
                                                          "lib/pkgconfig/")) and name not in modules]
    if odd:
        return f"not expected: {odd}"
    telling = [name for name, path in found.items() if path.suffix in (".cmake", ".pc")
               and any(names_path(path.read_text(), origin)
                       for origin in (ROOT, kit.work.parent / "first"))]
    return f"name their origin: {telling}" if telling else None


def check_links(kit):
    """Links between the installed documents lead to what is installed."""
    dead = [f"{path.relative_to(kit.prefix)}: {target}" for path in kit.prefix.rglob("*.md")
            for target in dead_links(path)]
    return f"lead nowhere: {dead}" if dead else None


def install(build, work, name):
    """Installs a build and moves the prefix; blanks in its name must not matter."""
    first = work / "first" / name
    run("cmake", "--install", build, "--prefix", first)
    moved = work / f"moved {name}"
    first.rename(moved)
    return moved


def package(build, work, pattern):
    run("cpack", "--config", build / "CPackConfig.cmake", "-B", work / "packages")
    (made,) = (work / "packages").glob(pattern)
    return made


def prepare(native, windows, wine, work):
    yield Kit("linux", install(native, work, "linux"), work)
    yield Kit("windows", install(windows, work, "windows"), work, wine)
    archive = package(native, work, "pgkit-*-linux-*.tar.gz")
    with tarfile.open(archive) as content:
        content.extractall(work / "tar")
    yield Kit("tar", work / "tar" / archive.name.removesuffix(".tar.gz"), work)
    archive = package(windows, work, "pgkit-*-windows-x64.zip")
    with zipfile.ZipFile(archive) as content:
        content.extractall(work / "zip")
    yield Kit("zip", work / "zip" / archive.stem, work, wine)


def main(native, windows, wine):
    native, windows, wine = (pathlib.Path(path).resolve() for path in (native, windows, wine))
    with tempfile.TemporaryDirectory(prefix="pgkit-install-") as directory:
        kits = {kit.name: kit for kit in prepare(native, windows, wine, pathlib.Path(directory))}
        checks = [(name, check.__name__, check, (kits[name],)) for name, check in [
            *((name, check) for name in kits for check in (check_consumer, check_content,
                                                            check_links)),
            *((name, check) for name in ("linux", "windows") for check in (check_examples,
                                                                           check_tool)),
            ("linux", check_pkg_config), ("linux", check_python),
            ("windows", check_definitions),
            *((name, check) for name in ("windows", "zip") for check in (check_wheel_content,
                                                                         check_wheel_installation))]]
        for name, transcript in first_steps.sections().items():
            if name in first_steps.FOR_WINDOWS:
                checks.append(("zip", f"first steps: {name}", check_first_steps_on_windows,
                               (kits["zip"], transcript)))
            elif name not in first_steps.FROM_SOURCES:
                checks.append(("linux", f"first steps: {name}", check_first_steps,
                               (kits["linux"], name, transcript)))
        folder = kits["zip"].prefix / "bin"
        checks += [("zip", "check_version_resources", check_version_resources,
                    (folder, kits["zip"].prefix.name.split("-")[1])),
                   ("zip", "check_manifest", check_manifest, (folder,)),
                   ("zip", "check_runtime", check_runtime, (folder,))]
        # Paths of a checkout that has the package's name, as in /pgkit, were once found everywhere.
        checks.append(("self", "check_names_path", check_names_path, ()))
        return run_checks(checks)


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
