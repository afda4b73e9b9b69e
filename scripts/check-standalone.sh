#!/usr/bin/env bash
# Every source file of the library, the toolkit and the program compiles by itself, with what it includes: the builds compile several as one, where one file may live on
# what another includes. Needs the lint build to be configured. Prints what does not compile; status 1 if anything.
set -euo pipefail
cd "$(dirname "$0")/.."
if [ ! -f build/lint/compile_commands.json ]; then
    echo "check-standalone.sh: no build/lint/compile_commands.json: run cmake --preset lint first" >&2
    exit 2
fi
root="$(pwd -P)"
folders='(text|model|engine|plant|language|netlist|telemetry|monitor|simulate|session|assess|report|app)'
cd build/lint
grep -oE '"command": ".*"' compile_commands.json | cut -d'"' -f4- | sed 's/"$//; s/\\"/"/g; s/\\\\/\\/g' |
    grep -E " -c $root/$folders/" | sed -E 's/ -O[0-9] / /; s/ -o [^ ]+ / /; s/$/ -fsyntax-only/' |
    xargs -d '\n' -n 1 -P "${JOBS:-2}" sh -c
