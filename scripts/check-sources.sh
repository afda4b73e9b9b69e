#!/usr/bin/env bash
# Sources are listed by name, so a file that is forgotten is not built, and its tests are not run, without a
# word from anybody but this check: every .cpp, and every header of the library, is named in the
# CMakeLists.txt of its folder.
#
#   scripts/check-sources.sh [ROOT]      prints the files that are not; status 1 if there is one
set -euo pipefail
root="${1:-$(dirname "$0")/..}"
# shellcheck source=scripts/files.sh
source "$(dirname "$0")/files.sh"

found=0
while IFS= read -r file; do
    folder="$(dirname "$file")"
    name="$(basename "$file")"
    case "$file" in
    *.h)
        case "$folder" in
        model | engine | probability | query) ;;
        *) continue ;;
        esac
        ;;
    esac
    list="$root/$folder/CMakeLists.txt"
    if [ ! -f "$list" ]; then
        echo "$file: no CMakeLists.txt in its folder"
        found=1
    elif ! sed 's/#.*//' "$list" | tr -s ' \t()"' '\n' | grep -qxF -e "$name"; then
        echo "$file: not in $folder/CMakeLists.txt"
        found=1
    fi
done < <(files "$root" '*.cpp' '*.h')
exit "$found"
