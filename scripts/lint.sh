#!/usr/bin/env bash
# Runs every check of the source that is not a test, even after a failure; status 1 if one fails.
set -euo pipefail
cd "$(dirname "$0")/.."

failed=()
check() {
    local name="$1"
    shift
    echo "== $name"
    local start=$SECONDS
    if "$@"; then
        echo "   passed ($((SECONDS - start)) s)"
    else
        echo "   FAILED"
        failed+=("$name")
    fi
}

check 'includes go up the list of folders' scripts/check-includes.sh
check 'words' scripts/check-words.sh
check 'sources are listed' scripts/check-sources.sh
check 'length of files' scripts/check-length.sh
check 'format' scripts/format.sh --check
check 'headers stand alone' cmake --build --preset lint --target all_verify_interface_header_sets -- --quiet
check 'sources compile by themselves' scripts/check-standalone.sh
check 'clang-tidy' scripts/tidy.sh

if [ ${#failed[@]} -gt 0 ]; then
    echo "failed: ${failed[*]}" >&2
    exit 1
fi
