#!/usr/bin/env bash
# Runs every benchmark of the bench build, one after another. Arguments are passed on to each of them.
set -euo pipefail
cd "$(dirname "$0")/.."

found=no
for program in build/bench/bin/itms_bench*; do
    if [ -x "$program" ]; then
        found=yes
        "$program" "$@"
    fi
done
if [ "$found" = no ]; then
    echo 'bench.sh: no benchmark in build/bench/bin' >&2
    exit 1
fi
