#!/usr/bin/env bash
# Checks the examples in a page of the documentation.
#
#     check.sh PAGE PROGRAM-FOLDER
#
# A fenced block that follows the line `<!-- file: PATH -->` is the whole of that file. One that follows
# `<!-- run: COMMAND -->` is what COMMAND prints (stdout, then stderr), run at the root of the project with the
# folder of the built programs in PATH. One that follows `<!-- session -->` is what a terminal shows: lines that begin with
# `$ ` are commands (a `\` at the end of a line continues it), and below each stands what it prints. All sessions of a
# page are one shell: variables and functions of one are there in the next. Every difference is shown. With
# ITMS_REGENERATE=1 the blocks of commands are written anew instead.
set -euo pipefail

page=$1
export PATH="$2:$PATH"
cd "$(dirname "$0")/../.."
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# Takes the page apart: block-N.want is the text of block N, block-N.how its comment line.
awk -v work="$work" '
    /^<!-- ((file|run): .*|session) -->$/ { how = $0; next }
    /^```/ && inside { inside = 0; how = ""; next }
    /^```/ && how != "" { n++; inside = 1; print how > (work "/block-" n ".how"); printf "" > (work "/block-" n ".want"); next }
    inside { print > (work "/block-" n ".want") }
    /^$/ || inside { next }
    { how = "" }
    END { print n + 0 > (work "/count") }
' "$page"

# Reads a session, writes the shell commands that play it.
player() {
    local line command=""
    while IFS= read -r line; do
        if [ -n "$command" ]; then
            command+=$'\n'$line
        elif [[ $line == '$ '* ]]; then
            command=${line#'$ '}
        else
            continue
        fi
        [[ $line == *\\ ]] && continue
        printf 'printf "%%s\\n" %q\neval %q\n' "\$ $command" "$command"
        command=""
    done
}

count=$(cat "$work/count")
for ((n = 1; n <= count; n++)); do
    if grep -qxF '<!-- session -->' "$work/block-$n.how"; then
        printf 'exec >%q 2>&1\n' "$work/block-$n.got"
        player <"$work/block-$n.want"
    fi
done >"$work/sessions.sh"
bash "$work/sessions.sh" </dev/null || true

failed=0
for ((n = 1; n <= count; n++)); do
    how=$(sed -E 's/^<!-- (file|run|session):? ?(.*) -->$/\1 \2/' "$work/block-$n.how")
    what=${how#* }
    if [ "${how%% *}" = session ]; then
        what="session $n"
    elif [ "${how%% *}" = file ]; then
        cp "$what" "$work/block-$n.got"
    else
        { bash -c "$what" 2>"$work/stderr" || true; cat "$work/stderr"; } >"$work/block-$n.got"
    fi
    if ! diff -u --label "$page: $what" --label "now" "$work/block-$n.want" "$work/block-$n.got"; then
        failed=1
    fi
done

if [ "${ITMS_REGENERATE:-}" = 1 ] && [ "$failed" = 1 ]; then
    awk -v work="$work" '
        /^<!-- ((file|run): .*|session) -->$/ { how = $0; print; next }
        /^```/ && inside { inside = 0; how = ""; print; next }
        /^```/ && how != "" {
            n++; inside = 1; print
            while ((getline line < (work "/block-" n ".got")) > 0) print line
            next
        }
        inside { next }
        { print }
        !/^$/ { how = "" }
    ' "$page" >"$work/page"
    cp "$work/page" "$page"
    echo "$page: examples written anew"
    exit 0
fi
if [ "$count" = 0 ]; then
    echo "$page: no example found" >&2
    exit 1
fi
exit "$failed"
