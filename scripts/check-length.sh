#!/usr/bin/env bash
# No file that people write is longer than 1,000 lines.
#
#   scripts/check-length.sh [ROOT]       prints the files that are; status 1 if there is one
set -euo pipefail
root="${1:-$(dirname "$0")/..}"
# shellcheck source=scripts/files.sh
source "$(dirname "$0")/files.sh"

limit=1000
found=0
while IFS= read -r file; do
    lines="$(wc -l <"$root/$file")"
    if [ "$lines" -gt "$limit" ]; then
        echo "$file: $lines lines, more than $limit"
        found=1
    fi
done < <(files "$root" '*.h' '*.cpp' '*.cmake' '*CMakeLists.txt' '*.sh' '*.md' '*Makefile' '*.py')
exit "$found"
