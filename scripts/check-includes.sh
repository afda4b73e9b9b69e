#!/usr/bin/env bash
# An include goes up the list of folders or stays in its folder, never down.
#
#   scripts/check-includes.sh [ROOT]     prints every include that breaks a rule; status 1 if there is one
#
# The rules, for the folders and rooms in the list (tests/, bench/ and fuzz/ may include anything):
#   - our own headers are included as "folder/Header.h" or "folder/room/Header.h", from the root;
#   - model/ includes model/ only, engine/ model/ and itself, and both of them the standard library and nothing else;
#   - a room of the toolkit includes model/, the engine's public headers, its own headers, and those of rooms above it.
set -euo pipefail
root="${1:-$(dirname "$0")/..}"
# shellcheck source=scripts/files.sh
source "$(dirname "$0")/files.sh"

mapfile -t sources < <(files "$root" '*.h' '*.cpp')
if [ ${#sources[@]} -eq 0 ]; then
    echo "check-includes.sh: no source below $root" >&2
    exit 2
fi

cd "$root"
awk '
BEGIN {
    count = split("text model engine plant language/syntax language/meaning language/json language netlist telemetry " \
                  "monitor/labels monitor/step monitor/track monitor/why simulate session assess report app", folder, " ")
    for (i = 1; i <= count; ++i) place[folder[i]] = i
    library["model"] = library["engine"] = 1
    public["engine/itms.h"] = public["engine/ItmsRes.h"] = 1
}
function bad(why) {
    printf "%s:%d: %s: %s\n", FILENAME, FNR, header, why
    found = 1
}
# The room that a path is in, else its folder.
function room(path,   part) {
    if (match(path, /^[^\/]+\/[^\/]+\//) && (part = substr(path, 1, RLENGTH - 1)) in place) return part
    sub(/\/.*/, "", path)
    return path
}
FNR == 1 { own = room(FILENAME) }
(own in place) && /^[ \t]*#[ \t]*include[ \t]*[<"]/ {
    header = $0
    sub(/^[ \t]*#[ \t]*include[ \t]*/, "", header)
    quoted = substr(header, 1, 1) == "\""
    header = substr(header, 2)
    sub(/[>"].*/, "", header)
    other = room(header)
    if (other in place && header ~ /\//) {
        if (!quoted) bad("our own headers are included with quotes")
        if (place[other] > place[own]) bad(own "/ is above " other "/")
        else if (own in library && !(other in library)) bad("the library needs the standard library only")
        else if (other == "engine" && own != "engine" && !(header in public))
            bad(own "/ reaches the engine through its public headers only")
    } else if (quoted) {
        bad("not a header of ours as seen from the root")
    } else if (own in library && header !~ /^(ext\/)?[a-z_0-9]+$/) {
        bad("the library needs the standard library only")
    }
}
END { exit found }
' "${sources[@]}"
