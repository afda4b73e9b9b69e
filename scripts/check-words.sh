#!/usr/bin/env bash
# Some words and paths do not belong in the tree: the code is its own description, and no file depends on the
# machine on which it was written.
#
#   scripts/check-words.sh [ROOT]        prints the lines and file names that have one; status 1 if any
set -euo pipefail
root="${1:-$(dirname "$0")/..}"
# shellcheck source=scripts/files.sh
source "$(dirname "$0")/files.sh"

# In pieces, so that this file does not match itself.
s='sp''ec'
i='iss''ue'
patterns=(
    "\\b(${s}s?|${s}ifications?)\\b"
    "\\b${i}s?\\b"
    '\bP''art [0-9]+\.[0-9]+'
    '(^|[^[:alnum:]_.-])/wo''rk(/|\b)'
    '(^|[^[:alnum:]_.-])/ho''me/[a-z]'
)

mapfile -t all < <(files "$root")
cd "$root"
found=0
for pattern in "${patterns[@]}"; do
    if printf '%s\0' "${all[@]}" | xargs -0 grep -nIiHE -e "$pattern" --; then found=1; fi
    if printf '%s\n' "${all[@]}" | grep -iE -e "$pattern" --; then found=1; fi
done
exit "$found"
