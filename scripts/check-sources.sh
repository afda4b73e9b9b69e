#!/usr/bin/env bash
# Sources are listed by name, so a forgotten file is not built, and its tests are not run, and only this check
# notices: every .cpp, and every header of the library, is named in the nearest CMakeLists.txt above it, or by its
# path from the root in any CMake file.
#
#   scripts/check-sources.sh [ROOT]      prints the files that are not; status 1 if there is one
set -euo pipefail
root="${1:-$(dirname "$0")/..}"
# shellcheck source=scripts/files.sh
source "$(dirname "$0")/files.sh"

cd "$root"
# The words of the given files, without comments; what follows the root's variable is a path from the root.
words() { sed -e 's/#.*//' -e 's/\${PROJECT_SOURCE_DIR}\///' "$@" | tr -s ' \t()"' '\n'; }

mapfile -t cmake_files < <(files . '*CMakeLists.txt' '*.cmake')
paths="$(words "${cmake_files[@]}" /dev/null)"
found=0
while IFS= read -r file; do
    case "$file" in
    model/*.h | engine/*.h) ;;
    *.h) continue ;;
    esac
    if grep -qxF -e "$file" <<<"$paths"; then continue; fi
    # The CMakeLists.txt of a folder also lists the files of its rooms, as room/File.cpp.
    folder="$(dirname "$file")"
    while [ "$folder" != . ] && [ ! -f "$folder/CMakeLists.txt" ]; do folder="$(dirname "$folder")"; done
    if [ "$folder" = . ]; then
        echo "$file: no CMakeLists.txt in its folder"
        found=1
    elif ! grep -qxF -e "${file#"$folder"/}" <<<"$(words "$folder/CMakeLists.txt")"; then
        echo "$file: not in $folder/CMakeLists.txt"
        found=1
    fi
done < <(files . '*.cpp' '*.h')
exit "$found"
