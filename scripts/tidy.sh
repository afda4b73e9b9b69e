#!/usr/bin/env bash
# clang-tidy over the sources of the library, the toolkit and the program, with the commands of the tidy build (which only
# needs to be configured): several files at once, since most of the time goes into the headers that they share. Prints what it
# finds; status 1 if there is anything.
#
#   scripts/tidy.sh [REGEX]              only compiled units whose path matches; by default all of them
set -euo pipefail
cd "$(dirname "$0")/.."
only="${1:-.}"
if [ ! -f build/tidy/compile_commands.json ]; then
    echo "tidy.sh: no build/tidy/compile_commands.json: run cmake --preset tidy first" >&2
    exit 2
fi

log="$(mktemp)"
trap 'rm -f "$log"' EXIT
folders='(text|model|engine|plant|language|netlist|telemetry|monitor|simulate|session|assess|report|app)'
root="$(pwd -P)"
status=0
units="$(grep -oE '"file": "[^"]*"' build/tidy/compile_commands.json | cut -d'"' -f4 |
    grep -E "^$root/(build/tidy/)?$folders/" | grep -E -e "$only" || true)"
if [ -z "$units" ]; then
    echo "tidy.sh: no unit matches $only" >&2
    exit 2
fi
# The files of a unit are included, so the analyser has to look at more than the main file; the bound on what it explores in a
# function costs it the rarest paths of the longest functions, and saves four fifths of the time.
analyser=(-Xclang -analyzer-opt-analyze-headers -Xclang -analyzer-config -Xclang max-nodes=40000)
# One unit per process, two at a time; the summary lines of clang-tidy are noise. The commands are those of the
# compiler, not all of whose warnings clang knows.
xargs -d '\n' -n 1 -P "${JOBS:-2}" clang-tidy -quiet --checks=-bugprone-suspicious-include \
    --extra-arg=-Wno-unknown-warning-option "${analyser[@]/#/--extra-arg=}" -p build/tidy <<<"$units" >"$log" 2>&1 || status=1
grep -vE '^[0-9]+ warnings?( and [0-9]+ errors?)? (generated|treated as errors)|^Suppressed |^Use -header-filter' "$log" || true
exit "$status"
