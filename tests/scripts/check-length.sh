#!/usr/bin/env bash
source "$(dirname "$0")/expect.sh"
check="$1/check-length.sh"

seq 1000 | put engine/longest.cpp
seq 1001 | put examples/data.csv
expect 0 '' "$check" "$tree"

seq 1001 | put engine/long.cpp
seq 1200 | put docs/manual.md
expect 1 'docs/manual.md: 1200 lines, more than 1000
engine/long.cpp: 1001 lines, more than 1000' "$check" "$tree"
finish
