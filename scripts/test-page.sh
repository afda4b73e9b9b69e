#!/usr/bin/env bash
# Tests the page of itms report: that what is committed is what its sources make, and that it works in a browser.
#
#     scripts/test-page.sh [PROGRAM]      build/release/bin/itms without
#
# Needs node, npm and Chromium (scripts/install-packages.sh --page), and the packages of report/page/package-lock.json, which npm
# fetches once. Where one of them cannot be had it says so, and ends with status 0; with ITMS_PAGE_TESTS=required, with status 1.
set -euo pipefail
cd "$(dirname "$0")/.."

skip() {
    echo "test-page.sh: skipped: $1" >&2
    if [ "${ITMS_PAGE_TESTS:-}" = required ]; then exit 1; fi
    exit 0
}

ITMS="$(realpath "${1:-build/release/bin/itms}")"
export ITMS
if [ ! -x "$ITMS" ]; then
    echo "test-page.sh: no program $ITMS: make demo builds it" >&2
    exit 2
fi
command -v node >/dev/null || skip 'there is no node'
command -v npm >/dev/null || skip 'there is no npm'
if [ -z "${ITMS_BROWSER:-}" ]; then
    for browser in chromium chromium-browser google-chrome; do
        if ITMS_BROWSER="$(command -v "$browser")"; then break; fi
    done
fi
[ -n "${ITMS_BROWSER:-}" ] || skip 'there is no Chromium'
export ITMS_BROWSER

cd report/page
# The lock file says what is there; npm is asked only where that is something else.
if ! cmp -s package-lock.json node_modules/.installed; then
    npm ci --ignore-scripts --silent || skip 'npm cannot fetch the packages'
    cp package-lock.json node_modules/.installed
fi
echo '== types, and the bundle is what the sources make'
npm run --silent check
echo '== in the browser'
node --test test/
