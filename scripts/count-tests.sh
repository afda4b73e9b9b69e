#!/usr/bin/env bash
# Prints how many test cases the last run of CTest in each of some build folders passed. CTest counts programs.
#
#   scripts/count-tests.sh BUILD_FOLDER...
set -euo pipefail

for build in "$@"; do
    log="$build/Testing/Temporary/LastTest.log"
    if [ ! -f "$log" ]; then
        echo "count-tests.sh: no $log: run ctest first" >&2
        exit 2
    fi
    awk -v build="$build" '
        /^\[  PASSED  \] [0-9]+ tests?\.$/ { cases += $4 }
        /^Test Passed\.$/ { ++entries }
        END { printf "%s: %d test cases in programs of tests; %d entries of CTest passed\n", build, cases, entries }
    ' "$log"
done
