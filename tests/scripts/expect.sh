# Sourced by the tests of the scripts: a folder of one's own, and what is expected of a command.
set -euo pipefail
tree="$(mktemp -d)"
trap 'rm -rf "$tree"' EXIT
failures=0

# put FILE: writes standard input to a file of the tree.
put() {
    mkdir -p "$(dirname "$tree/$1")"
    cat >"$tree/$1"
}

# expect STATUS TEXT COMMAND...: the command ends with the status, and its output, both streams, is the text.
expect() {
    local status="$1" text="$2" got=0 output
    shift 2
    output="$("$@" 2>&1)" || got=$?
    if [ "$got" != "$status" ] || [ "$output" != "$text" ]; then
        printf 'FAILED: %s\n  expected status %s:\n%s\n  got status %s:\n%s\n' \
            "$*" "$status" "$text" "$got" "$output"
        failures=$((failures + 1))
    fi
}

finish() {
    [ "$failures" -eq 0 ] || exit 1
}
