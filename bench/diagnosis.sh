#!/usr/bin/env bash
# How long `itms diagnose` takes for files of problems: for every NAME.bench in a folder with a NAME.jsonl next to it,
# how many problems are solved completely within a time, and the median and the worst of the times.
#
#   bench/diagnosis.sh [--program FILE] [--seconds S] [FOLDER...]
#
# The program is build/release/bin/itms and the time 60 s unless told otherwise; without a folder, examples/circuits. Every
# problem is a run of its own, so that its time holds the reading of the circuit.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
program="$root/build/release/bin/itms"
seconds=60
folders=()
while [ $# -gt 0 ]; do
    case "$1" in
    --program | --seconds)
        [ $# -gt 1 ] || { echo "diagnosis.sh: $1: its value is missing" >&2; exit 2; }
        if [ "$1" = --program ]; then program="$2"; else seconds="$2"; fi
        shift 2
        ;;
    -*)
        echo "diagnosis.sh: unknown option $1 (--program, --seconds)" >&2
        exit 2
        ;;
    *)
        folders+=("$1")
        shift
        ;;
    esac
done
[ ${#folders[@]} -gt 0 ] || folders=("$root/examples/circuits")
[ -x "$program" ] || { echo "diagnosis.sh: no program $program: build it, or name it with --program" >&2; exit 2; }

# Prints a problem's seconds and whether it was solved completely.
solve() {
    local start=$EPOCHREALTIME answer solved=no
    answer="$("$program" diagnose "$1" --problems - --format jsonl --max-seconds "$seconds" <<<"$2" || true)"
    local end=$EPOCHREALTIME
    if [[ $answer == *'"complete":true'* && $answer != *'"status":"inconsistent"'* ]]; then solved=yes; fi
    awk -v start="$start" -v end="$end" -v solved=$solved 'BEGIN { printf "%.3f %s\n", end - start, solved }'
}

printf '%-12s %9s %9s %10s %10s\n' circuit problems solved 'median s' 'worst s'
found=no
for folder in "${folders[@]}"; do
    for circuit in "$folder"/*.bench; do
        problems="${circuit%.bench}.jsonl"
        [ -f "$problems" ] || continue
        found=yes
        while IFS= read -r problem; do
            if [ -n "$problem" ]; then solve "$circuit" "$problem"; fi
        done <"$problems" | sort -n | awk -v name="$(basename "$circuit" .bench)" '
            { seconds[NR] = $1; if ($2 == "yes") ++solved }
            END {
                median = NR % 2 ? seconds[(NR + 1) / 2] : (seconds[NR / 2] + seconds[NR / 2 + 1]) / 2
                printf "%-12s %9d %9d %10.3f %10.3f\n", name, NR, solved, median, seconds[NR]
            }'
    done
done
[ "$found" = yes ] || { echo "diagnosis.sh: no circuit with problems in ${folders[*]}" >&2; exit 1; }
