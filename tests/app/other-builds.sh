#!/usr/bin/env bash
# Every verb says the same whatever builds the program: g++ with -O2 and with -O0, clang++ with -O2. The bytes are the same, but for the
# last digits of numbers, since compilers may add up in another order. Not part of a test run: it builds the program as often, in
# build/other.
#
#     tests/app/other-builds.sh [BUILD...]        at the root of the project, with others such as clang++-O0; the first one is
#                                                 what the others are compared with. Status 1 where something else differs
set -euo pipefail
root=$PWD
builds=("$@")
if [ $# -eq 0 ]; then builds=(g++-O2 g++-O0 clang++-O2); fi
for build in "${builds[@]}"; do
    # Without what the release adds to it, so that the optimisation is the one that is named.
    cmake -S . -B "build/other/$build" -G Ninja -DCMAKE_CXX_COMPILER="${build%-O*}" -DCMAKE_BUILD_TYPE=Plain \
        -DCMAKE_CXX_FLAGS="-O${build##*-O} -DNDEBUG" -DCMAKE_UNITY_BUILD=ON -DITMS_BUILD_TESTS=OFF -DITMS_HARDEN=OFF >/dev/null
    cmake --build "build/other/$build" -j "${JOBS:-2}" --target itms_program
done

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
tests/app/every-verb.sh >"$folder/commands"
for build in "${builds[@]}"; do
    while read -r command; do
        echo "\$ itms $command"
        # Words on purpose: the commands have no quotes. The engine's own trace shows the addresses of clauses, and
        # the sign of what is not a number, which has none.
        # shellcheck disable=SC2086
        { "$root/build/other/$build/bin/itms" $command 2>&1 || echo "status $?"; } </dev/null |
            sed 's/0x[0-9a-f]\{8,\}/ADDRESS/g; s/-nan/nan/g'
    done <"$folder/commands" >"$folder/$build"
done
python3 tests/app/same_but_last_digits.py "${builds[@]/#/$folder/}"
