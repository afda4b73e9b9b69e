#!/usr/bin/env bash
# A day at 10 Hz: a simulated plant whose parts break and are repaired, followed once in one go and once by runs that are killed
# (SIGKILL) each hour and resumed. Says for each hour what a step cost, how much memory the program had and how many files were open,
# and compares the two answers byte by byte; status 1 where they differ.
#
#     bench/soak.sh [STEPS [KILLS [PROGRAM]]]      864000, 24 and build/release/bin/itms without
set -euo pipefail
cd "$(dirname "$0")/.."

steps=${1:-864000}
kills=${2:-24}
itms=${3:-build/release/bin/itms}
work=$(mktemp -d)
run=
trap 'test -z "$run" || kill -9 "$run" 2>/dev/null; rm -rf "$work"' EXIT

# examples/power, ten steps a second, and somebody who repairs what is broken.
sed 's/step 1 s/step 0.1 s/' examples/power/grid.itms >"$work/grid.itms"
awk '{ print }
     /^component/ { part = $2 }
     match($0, /[a-zA-Z]+ +initial/) { good = substr($0, RSTART, RLENGTH); sub(/ .*/, "", good) }
     /^    fault/ {
         match($0, /-> [a-zA-Z]+/)
         broken = substr($0, RSTART + 3, RLENGTH - 3)
         if (!((part, broken) in repaired)) printf "    repair %s -> %s : 60 per hour\n", broken, good
         repaired[part, broken] = 1
     }' examples/power/library.itms >"$work/library.itms"
"$itms" simulate "$work/grid.itms" --steps "$steps" --commands none --random 5 --input mains.voltage=live >"$work/telemetry.jsonl"

follow=(run "$work/grid.itms" "$work/telemetry.jsonl" --format jsonl -n 1 -q --final)
"$itms" "${follow[@]}" -o "$work/whole.jsonl" || test $? = 3

written() {
    if [ -f "$work/answer.jsonl" ]; then wc -l <"$work/answer.jsonl"; else echo 0; fi
}
# CPU time: clock ticks of user and system together.
cpu() {
    awk -v ticks="$(getconf CLK_TCK)" '{ sub(/.*\) /, ""); print ($12 + $13) / ticks }' "/proc/$run/stat"
}

printf '%12s %12s %12s %8s\n' steps 'us a step' 'memory MB' files
for ((hour = 1; hour < kills; ++hour)); do
    begin=$(written)
    "$itms" "${follow[@]}" -o "$work/answer.jsonl" --checkpoint "$work/memory" --resume 2>/dev/null &
    run=$!
    until [ "$(written)" -ge $((steps * hour / kills)) ]; do sleep 0.02; done
    end=$(written)
    awk -v end="$end" -v n=$((end - begin)) -v cpu="$(cpu)" -v files="$(find "/proc/$run/fd" -type l | wc -l)" \
        -v memory="$(awk '/VmRSS/ { print $2 / 1024 }' "/proc/$run/status")" \
        'BEGIN { printf "%12d %12.1f %12.1f %8d\n", end, cpu / n * 1e6, memory, files }'
    kill -9 "$run"
    wait "$run" 2>/dev/null || true
done
run=
"$itms" "${follow[@]}" -o "$work/answer.jsonl" --checkpoint "$work/memory" --resume || test $? = 3

awk '{ match($0, /"status":"[a-z]+"/); ++count[substr($0, RSTART + 10, RLENGTH - 11)] }
     END { for (status in count) printf "%s %d  ", status, count[status]; print "" }' "$work/whole.jsonl"
cmp "$work/whole.jsonl" "$work/answer.jsonl"
echo 'the answers are the same'
