#!/usr/bin/env bash
# Builds fuzzers and runs one after the other, starting from the texts in fuzz/corpus and what earlier runs found.
#
#   scripts/fuzz.sh SECONDS [NAME...]    for all of them together; names as in fuzz/NAME_fuzzer.cpp, by default all
#
# Status 1 when one of them found something: the text is in build/fuzz/found/NAME, and a note explains how to
# reproduce the failure.
set -euo pipefail
cd "$(dirname "$0")/.."

seconds=${1:-}
if ! [[ $seconds =~ ^[1-9][0-9]*$ ]]; then
    echo 'fuzz.sh: for how many seconds? scripts/fuzz.sh SECONDS [NAME...]' >&2
    exit 2
fi
shift
if [ $# -eq 0 ]; then
    for fuzzer in fuzz/*_fuzzer.cpp; do
        fuzzer=${fuzzer#fuzz/}
        set -- "$@" "${fuzzer%_fuzzer.cpp}"
    done
fi
each=$(((seconds + $# - 1) / $#))
targets=()
for name in "$@"; do
    if [ ! -f "fuzz/${name}_fuzzer.cpp" ]; then
        echo "fuzz.sh: there is no fuzz/${name}_fuzzer.cpp" >&2
        exit 2
    fi
    targets+=("itms_fuzz_$name")
done

cmake -S . -B build/fuzz -G Ninja -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_CXX_FLAGS_RELWITHDEBINFO="-O1 -g1" \
    -DCMAKE_UNITY_BUILD=ON -DCMAKE_UNITY_BUILD_BATCH_SIZE=8 -DITMS_BUILD_FUZZ=ON -DITMS_BUILD_TESTS=OFF
cmake --build build/fuzz -j "${JOBS:-2}" --target "${targets[@]}"

failed=0
for name in "$@"; do
    found="build/fuzz/found/$name"
    mkdir -p "$found"
    options=(-max_len=4096 -timeout=10 -max_total_time="$each" -print_final_stats=1
        -artifact_prefix="$found/stopped-")
    if [ -f "fuzz/$name.dict" ]; then options+=(-dict="fuzz/$name.dict"); fi
    echo "== $name, $each s"
    if ! "build/fuzz/bin/itms_fuzz_$name" "${options[@]}" "$found" "fuzz/corpus/$name"; then
        echo "fuzz.sh: see it again with build/fuzz/bin/itms_fuzz_$name $found/stopped-..." >&2
        failed=1
    fi
done
exit $failed
