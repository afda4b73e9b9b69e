#!/usr/bin/env bash
# The main job on a real example. This is the one place that defines what `make demo` runs.
set -euo pipefail
cd "$(dirname "$0")/.."
program=build/release/bin/itms
water=examples/water
circuits=examples/circuits

say() { printf '\n%s\n\n' "$*"; }

say 'A pumping station: a tank, two pumps with their valves, and a main; 24 components.
Each minute its sensors are read. At t = 600 s valve B is asked to open, and sticks.
What the sensors tell of it, step by step:'
cat <<END
  itms run $water/station.itms $water/stuck-valve.jsonl --format table

END
"$program" run "$water/station.itms" "$water/stuck-valve.jsonl" --format table

say 'Each block is a step at which the explanations changed; p is how probable each is.
One request without effect: valves of this kind ignore one now and then. The second one
at 660 s: it is stuck, and was at step 11. From 720 s on, when the pump behind it runs
dry, the limit switch is out of the question.'

say 'The same for a circuit: an interrupt controller of 160 gates, one of them faulty.
Its inputs and outputs are known; which gates can it be?'
cat <<END
  sed -n 2p $circuits/c432.jsonl |
      itms diagnose $circuits/c432.bench --problems - --format table

END
sed -n 2p "$circuits/c432.jsonl" |
    "$program" diagnose "$circuits/c432.bench" --problems - --format table

say 'docs/guide.md goes on from here: a plant of your own in twenty minutes.'
