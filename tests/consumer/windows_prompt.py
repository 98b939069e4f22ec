"""A prompt for developers on Windows, as far as one machine with Wine and clang can be one: lib, cl and
copy, and programs. In the place of Microsoft's compiler, its headers and libraries are clang in that
compiler's manner, the headers that mingw-w64 has, and what tests/compilers/msvc adds to them."""
import pathlib
import shutil
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
sys.path.insert(0, str(ROOT / "tests/compilers"))
from check_compilers import standard_headers  # noqa: E402

MSVC = ROOT / "tests/compilers/msvc"
CL = ["clang++", "--driver-mode=cl", "--target=x86_64-pc-windows-msvc", "-fuse-ld=lld"]
# Those headers are of a GNU library, and nothing here has the support that exceptions ask for.
FOR_THE_HEADERS = ["-fms-compatibility-version=0", "-Xclang", "-fgnuc-version=12.2", "-Wno-#warnings",
                   "/X", "/EHs-c-", "/GR-", "/GS-", "/Zc:threadSafeInit-",
                   "/clang:-mno-stack-arg-probe"]
FOR_THE_LINKER = ["/link", "-nodefaultlib", "-entry:Start", "-subsystem:console"]


class Prompt:
    """What is typed in a directory."""

    def __init__(self, directory, wine):
        self._directory = directory
        self._wine = wine
        self._libraries_made = False

    def run(self, command):
        """Runs a command; its exit status and what it printed."""
        program, *words = command.replace("\\", "/").split()
        own = {"lib": self._lib, "cl": self._cl, "copy": self._copy}.get(program)
        return own(words) if own else self._start(self._wine, f"./{program}.exe", *words)

    def _start(self, *words):
        done = subprocess.run([str(word) for word in words], cwd=self._directory, check=False,
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, timeout=300)
        return done.returncode, done.stdout.decode("utf-8", "replace").replace("\r", "")

    def _lib(self, words):
        named = dict(word.split(":", 1) for word in words if ":" in word)
        assert named["/machine"] == "x64"
        return self._start("llvm-dlltool", "-m", "i386:x86-64", "-D", named["/name"],
                           "-d", named["/def"], "-l", named["/out"])

    def _copy(self, words):
        source, target = (self._directory / word for word in words)
        shutil.copy(source, target)
        return 0, "        1 file(s) copied.\n"

    def _cl(self, words):
        headers = ["-imsvc" if word == "-isystem" else word for word in standard_headers()]
        if not self._libraries_made:
            self._libraries_made = True
            self._start("llvm-dlltool", "-m", "i386:x86-64", "-d", MSVC / "msvcrt.def", "-l", "msvcrt.lib")
            shutil.copy(MSVC / "standard_library.cpp", self._directory)
            self._start(*CL, "/c", "/w", "/O2", "/std:c++17", *FOR_THE_HEADERS, *headers,
                        "standard_library.cpp")
        return self._start(*CL, *words, *FOR_THE_HEADERS, *headers, "standard_library.obj", "msvcrt.lib",
                           *FOR_THE_LINKER)
