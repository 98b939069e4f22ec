#!/usr/bin/env python3
"""The C++ layer with every compiler: the same programs, compiled by each of them as a host that uses
exceptions or does without, and linked with the module of its system, print the same.

    check_compilers.py NATIVE_BUILD WINDOWS_BUILD WINE

The last line is "N passed, M failed".
"""
import os
import pathlib
import subprocess
import sys
import tempfile

HERE = pathlib.Path(__file__).resolve().parent
ROOT = HERE.parent.parent
sys.path.insert(0, str(ROOT / "tests/support"))
from check_runner import run_checks  # noqa: E402

DATA = ROOT / "tests/data"
# Programs and what they are given; "." is a directory of the run's own.
PROGRAMS = {
    "tour": (HERE / "tour.cpp", [".", DATA / "dicomdir/DICOMDIR_implicit"]),
    "read_and_print": (ROOT / "examples/read_and_print.cpp", [DATA / "charset/japanese_ir87.dcm"]),
    "frames_to_raw": (ROOT / "examples/frames_to_raw.cpp",
                      [DATA / "encapsulated/rtdose_rle_15frames_no_bot.dcm", "frame"]),
}
WARNINGS = ["-Wall", "-Wextra", "-Wconversion", "-Wshadow", "-Wpedantic", "-Werror", "-O1"]
MINGW = "x86_64-w64-mingw32-g++"


def run(*command, cwd):
    done = subprocess.run([str(part) for part in command], cwd=cwd, stdout=subprocess.PIPE,
                          stderr=subprocess.PIPE)
    if done.returncode:
        raise RuntimeError(f"{command[0]} gives {done.returncode}:\n"
                           + (done.stdout + done.stderr).decode("utf-8", "replace")[-3000:])
    return done.stdout.decode("utf-8", "replace")


def compile_native(compiler, options):
    def build(source, directory, native, _):
        library = native / "bin"
        run(compiler, *WARNINGS, *options, f"-I{ROOT}/include", source, "-o", "program",
            f"-L{library}", "-lpgkit", f"-Wl,-rpath,{library}", cwd=directory)
        return ["./program"]
    return build


def compile_mingw(options):
    def build(source, directory, _, windows):
        run(MINGW, *WARNINGS, *options, f"-I{ROOT}/include", source, "-static", "-o", "program.exe",
            windows / "lib/libpgkit.dll.a", cwd=directory)
        return ["./program.exe"]
    return build


def standard_headers():
    """Headers of a C and a C++ library for Windows, and the compiler's own between them. Nothing of
    the C++ library but its headers is used: they compile for any ABI."""
    base = pathlib.Path(subprocess.check_output([MINGW, "-print-libgcc-file-name"],
                                                text=True).strip()).parent
    own = subprocess.check_output(["clang++", "-print-resource-dir"], text=True).strip()
    folders = [base / "include/c++", base / "include/c++/x86_64-w64-mingw32", f"{own}/include",
               "/usr/x86_64-w64-mingw32/include"]
    return [part for folder in folders for part in ("-isystem", folder)]


def compile_msvc(options):
    def build(source, directory, *_):
        compiler = ["clang++", "--target=x86_64-pc-windows-msvc", *options, *WARNINGS,
                    "-fno-exceptions", "-fno-rtti", "-fno-threadsafe-statics",
                    "-mno-stack-arg-probe", "-nostdinc", *standard_headers(),
                    # Of a compiler with these versions the headers know what it can.
                    "-fms-compatibility-version=0", "-fgnuc-version=12.2",
                    f"-I{ROOT}/include", "-c"]
        run(*compiler, source, "-o", "program.obj", cwd=directory)
        run(*compiler, "-w", HERE / "msvc/standard_library.cpp", "-o", "library.obj", cwd=directory)
        for definitions in (ROOT / "src/pgkit.def", HERE / "msvc/msvcrt.def"):
            run("llvm-dlltool", "-m", "i386:x86-64", "-d", definitions, "-l",
                f"{definitions.stem}.lib", cwd=directory)
        run("lld-link", "-nodefaultlib", "-entry:Start", "-subsystem:console", "-out:program.exe",
            "program.obj", "library.obj", "pgkit.lib", "msvcrt.lib", cwd=directory)
        return ["./program.exe"]
    return build


COMPILERS = {
    "g++": compile_native("g++", ["-std=c++17"]),
    "g++ C++20": compile_native("g++", ["-std=c++20", "-fno-exceptions"]),
    "clang++": compile_native("clang++", ["-std=c++17"]),
    "clang++ C++20": compile_native("clang++", ["-std=c++20", "-fno-exceptions", "-fno-rtti"]),
    "mingw": compile_mingw(["-std=c++17"]),
    "clang++ for Microsoft's ABI": compile_msvc(["-std=gnu++17"]),
}


# What the others are compared with.
FIRST = "g++"


def output_of(name, program, native, windows, wine):
    """What a program prints that this compiler made, line ends as on POSIX, without what the library
    prints by itself: a host with another C library has that in another place."""
    source, arguments = PROGRAMS[program]
    with tempfile.TemporaryDirectory(prefix="pgkit-compilers-") as directory:
        command = COMPILERS[name](source, directory, native, windows)
        if command[0].endswith(".exe"):
            command = [wine, *command]
            (pathlib.Path(directory) / "pgkit.dll").write_bytes(
                (windows / "bin/pgkit.dll").read_bytes())
        printed = run(*command, *arguments, cwd=directory).replace("\r", "").split("\n")
        return "\n".join(line for line in printed if not line.startswith("Patient created "))


def check(name, program, first, *builds):
    found = output_of(name, program, *builds)
    if found == first and found:
        return None
    return f"prints:\n{found[-1500:]}\nnot:\n{first[-1500:]}"


def main(native, windows, wine):
    builds = [pathlib.Path(path).resolve() for path in (native, windows, wine)]
    first = {program: output_of(FIRST, program, *builds) for program in PROGRAMS}
    if "Schädel" not in first["tour"]:
        sys.exit(f"the first compiler's program prints:\n{first['tour']}")
    return run_checks([(program, name, check, (name, program, first[program], *builds))
                       for name in COMPILERS if name != FIRST for program in PROGRAMS])


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
