#!/usr/bin/env bash
# clang-tidy over the sources of the library, the toolkit and the program, with the commands of the lint
# build (which only needs to be configured). Prints what it finds; status 1 if there is anything.
#
#   scripts/tidy.sh [REGEX]              only files whose path matches; by default all of them
set -euo pipefail
cd "$(dirname "$0")/.."
only="${1:-.}"
if [ ! -f build/lint/compile_commands.json ]; then
    echo "tidy.sh: no build/lint/compile_commands.json: run cmake --preset lint first" >&2
    exit 2
fi

log="$(mktemp)"
trap 'rm -f "$log"' EXIT
folders='(text|model|engine|plant|language|netlist|telemetry|monitor|simulate|session|report|app)'
root="$(pwd -P)"
status=0
files="$(grep -oE '"file": "[^"]*"' build/lint/compile_commands.json | cut -d'"' -f4 |
    grep -E "^$root/$folders/" | grep -E -e "$only" || true)"
if [ -z "$files" ]; then
    echo "tidy.sh: no source matches $only" >&2
    exit 2
fi
# One file per process, two at a time; the summary lines of clang-tidy are noise. The commands are those of the
# compiler, not all of whose warnings clang knows.
xargs -d '\n' -n 1 -P "${JOBS:-2}" clang-tidy -quiet \
    --extra-arg=-Wno-unknown-warning-option -p build/lint <<<"$files" >"$log" 2>&1 || status=1
grep -vE '^[0-9]+ warnings?( and [0-9]+ errors?)? (generated|treated as errors)|^Suppressed |^Use -header-filter' "$log" || true
exit "$status"
