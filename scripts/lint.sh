#!/usr/bin/env bash
# Static analysis of the module, the imaging module, the tool, the examples and the Python module; silent
# when nothing is found. Needs clang-tidy and cppcheck, and a native build for its compile commands.
set -euo pipefail
cd "$(dirname "$0")/.."

for tool in clang-tidy cppcheck; do
    command -v "$tool" >/dev/null || { echo "lint.sh: $tool is not installed" >&2; exit 127; }
done
[[ -f build/native/compile_commands.json ]] || cmake --preset native >/dev/null

# A folder is one file to clang-tidy: most of its time would go into reading the same headers again.
# Examples are programs, each by itself.
rm -rf build/lint
mkdir -p build/lint
python3 - <<'SCRIPT'
import collections, json, os, pathlib, re

root = pathlib.Path.cwd()
folders = collections.defaultdict(dict)  # by source file the command that compiles it


def sources(file):
    """Some are compiled several at a time, by a file that includes them."""
    if "Unity" not in pathlib.Path(file).parts:
        return [file]
    return re.findall(r'#include "(.*)"', pathlib.Path(file).read_text())


for entry in json.loads((root / "build/native/compile_commands.json").read_text()):
    for source in sources(entry["file"]):
        path = pathlib.Path(source)
        top = os.path.relpath(path, root).split(os.sep)[0]
        if path.suffix == ".cpp" and top in ("src", "imaging", "tools", "examples", "bindings"):
            # Objects of the imaging module are compiled twice.
            folders[path if top == "examples" else path.parent].setdefault(source, entry)
missing = {"src", "imaging", "tools"} - {key.relative_to(root).parts[0] for key in folders}
assert not missing, f"no commands for {missing}"
commands = []
for key, entries in folders.items():
    made = root / "build/lint" / (str(key.relative_to(root)).replace(os.sep, "_") + ".cc")
    made.write_text("".join(f'#include "{source}"\n' for source in entries))
    entry = next(iter(entries.values()))
    # clang knows all options of the build but two.
    command = entry["command"].replace(entry["file"], str(made))
    for option in ("-fno-lifetime-dse", "-Wno-subobject-linkage"):
        command = command.replace(f" {option}", "")
    commands.append(dict(entry, file=str(made), command=command))
(root / "build/lint/compile_commands.json").write_text(json.dumps(commands))
SCRIPT
status=0
find build/lint -name '*.cc' -printf '%s %p\n' | sort -rn | cut -d ' ' -f 2 |
    xargs -P "$(nproc)" -I '{}' sh -c \
        'clang-tidy -quiet -p build/lint --checks=-bugprone-suspicious-include "$1" \
            >"$1.log" 2>"$1.err" || echo "clang-tidy failed: $1"' sh '{}' >build/lint/failed.txt
if [[ -s build/lint/failed.txt ]]; then
    cat build/lint/failed.txt
    grep -h -A 4 -E '(warning|error):' build/lint/*.log || cat build/lint/*.err
    status=1
fi

# What cppcheck 2.10 takes for errors: arrays that a call fills, casts to scoped enumerations, an
# initialisation by a lambda, results that are values, and a container that a call has filled.
# What is passed by value without need is left to it, because clang-tidy takes as long for that as for
# all the rest. It reads a file once: without a definition it reads it for every condition of the
# headers, of which the sources themselves have none.
cppcheck -j "$(nproc)" --quiet --error-exitcode=1 --std=c++20 --language=c++ -I include -I src \
    -D__cplusplus=202002L -D__linux__ \
    --enable=warning,performance,portability \
    --suppress=internalAstError --suppress=cppcheckError --suppress=syntaxError \
    --suppress=uninitMemberVar --suppress=uninitvar --suppress=legacyUninitvar \
    --suppress=CastIntegerToAddressAtReturn --suppress=returnDanglingLifetime \
    --suppress=invalidContainer \
    src imaging tools bindings || status=1
exit $status
