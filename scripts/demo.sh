#!/usr/bin/env bash
# The main job on a real example. This is the one place that says what `make demo` runs.
set -euo pipefail
cd "$(dirname "$0")/.."

exec build/release/bin/itms diagnose examples/circuits/c432.bench \
    --problems examples/circuits/c432-demo.jsonl
