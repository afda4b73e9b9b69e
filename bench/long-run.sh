#!/usr/bin/env bash
# A long run: steps of a simulated plant, with a fault half-way, followed live. Says for each tenth of the run how long it took
# and how much memory the program then had.
#
#     bench/long-run.sh [STEPS [PROGRAM]]      1000000 and build/release/bin/itms without
set -euo pipefail
cd "$(dirname "$0")/.."

steps=${1:-1000000}
itms=${2:-build/release/bin/itms}
tenth=$((steps / 10))
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkfifo "$work/telemetry" "$work/answer"

"$itms" simulate examples/power/grid.itms --steps "$steps" --input mains.voltage=live \
    --fault "motor[1]/load.state=shorted@$((steps / 2))" >"$work/telemetry" &
"$itms" run examples/power/grid.itms "$work/telemetry" --format jsonl -n 1 >"$work/answer" &
run=$!

# CPU time, since another program may be at work: clock ticks of user and system together.
cpu() {
    awk -v ticks="$(getconf CLK_TCK)" '{ sub(/.*\) /, ""); print ($12 + $13) / ticks }' "/proc/$run/stat"
}

printf '%12s %12s %12s %12s\n' steps 'CPU seconds' 'us a step' 'memory MB'
last=0
while IFS= read -r step; do
    if [ "$step" -lt "$steps" ]; then
        now=$(cpu)
        awk -v step="$step" -v now="$now" -v last="$last" -v n="$tenth" \
            -v memory="$(awk '/VmRSS/ { print $2 / 1024 }' "/proc/$run/status")" \
            'BEGIN { printf "%12d %12.2f %12.2f %12.1f\n", step, now - last, (now - last) / n * 1e6, memory }'
        last=$now
    fi
done < <(awk -v n="$tenth" 'NR % n == 0 { print NR; fflush() }' "$work/answer")
wait "$run"
