#!/usr/bin/env bash
# Formats the C++ files of the tree, or with --check prints what formatting would change (status 1 if there is anything).
set -euo pipefail
cd "$(dirname "$0")/.."
# shellcheck source=scripts/files.sh
source scripts/files.sh

case "${1:-}" in
--check) mode=(--dry-run -Werror) ;;
'') mode=(-i) ;;
*)
    echo "format.sh: unknown option $1 (--check)" >&2
    exit 2
    ;;
esac
files . '*.h' '*.cpp' | xargs -r -d '\n' clang-format "${mode[@]}" --style=file
