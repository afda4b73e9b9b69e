#!/usr/bin/env bash
# The main job on a real example. This is the one place that says what `make demo` runs.
set -euo pipefail
cd "$(dirname "$0")/.."
program=build/release/bin/itms
circuits=examples/circuits

say() { printf '\n%s\n\n' "$*"; }

say 'A circuit of six gates. Its inputs are known, and both outputs are wrong:'
cat <<END
  itms diagnose $circuits/c17.bench \\
      --inputs G1gat=1,G2gat=0,G3gat=0,G6gat=0,G7gat=0 \\
      --outputs G22gat=1,G23gat=1

END
"$program" diagnose "$circuits/c17.bench" --format table \
    --inputs G1gat=1,G2gat=0,G3gat=0,G6gat=0,G7gat=0 --outputs G22gat=1,G23gat=1

say 'An interrupt controller of 160 gates, with one gate at fault and with two:'
cat <<END
  sed -n '2p; 6p' $circuits/c432.jsonl |
      itms diagnose $circuits/c432.bench --problems -

END
sed -n '2p; 6p' "$circuits/c432.jsonl" |
    "$program" diagnose "$circuits/c432.bench" --problems - --format table
