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
import collections, json, os, pathlib

root = pathlib.Path.cwd()
folders = collections.defaultdict(list)
for entry in json.loads((root / "build/native/compile_commands.json").read_text()):
    path = pathlib.Path(entry["file"])
    top = os.path.relpath(path, root).split(os.sep)[0]
    if path.suffix == ".cpp" and top in ("src", "imaging", "tools", "examples", "bindings"):
        # Objects of the imaging module are compiled twice.
        key = path if top == "examples" else path.parent
        if entry["file"] not in [other["file"] for other in folders[key]]:
            folders[key].append(entry)
commands = []
for key, entries in folders.items():
    made = root / "build/lint" / (str(key.relative_to(root)).replace(os.sep, "_") + ".cc")
    made.write_text("".join(f'#include "{entry["file"]}"\n' for entry in entries))
    command = entries[0]["command"].replace(entries[0]["file"], str(made))
    # clang knows all options of the build but one.
    command = command.replace(" -fno-lifetime-dse", "")
    commands.append(dict(entries[0], file=str(made), command=command))
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
cppcheck -j "$(nproc)" --quiet --error-exitcode=1 --std=c++20 --language=c++ -I include -I src \
    --enable=warning,performance,portability \
    --suppress=internalAstError --suppress=cppcheckError --suppress=syntaxError \
    --suppress=uninitMemberVar --suppress=uninitvar --suppress=legacyUninitvar \
    --suppress=CastIntegerToAddressAtReturn --suppress=returnDanglingLifetime \
    --suppress=invalidContainer \
    src imaging tools bindings || status=1
exit $status
