#!/usr/bin/env bash
# An include goes up the list of folders or stays in its folder, never down.
#
#   scripts/check-includes.sh [ROOT]     prints every include that breaks a rule; status 1 if there is one
#
# The rules, for the folders in the list (tests/, bench/ and fuzz/ may include anything):
#   - our own headers are included as "folder/Header.h", from the root;
#   - model/ includes model/ only; engine/, probability/ and query/ include model/, themselves, and of one
#     another the public headers only;
#   - a folder of the toolkit includes model/, the public headers, and the folders of the toolkit up to itself;
#   - the library includes the standard library and nothing else.
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
    count = split("model engine probability query language netlist telemetry monitor report app", folder, " ")
    for (i = 1; i <= count; ++i) place[folder[i]] = i
    last_of_library = place["query"]
    public["engine/itms.h"] = public["engine/ItmsRes.h"] = 1
}
function bad(why) {
    printf "%s:%d: %s: %s\n", FILENAME, FNR, header, why
    found = 1
}
FNR == 1 {
    own = FILENAME
    sub(/\/.*/, "", own)
}
(own in place) && /^[ \t]*#[ \t]*include[ \t]*[<"]/ {
    header = $0
    sub(/^[ \t]*#[ \t]*include[ \t]*/, "", header)
    quoted = substr(header, 1, 1) == "\""
    header = substr(header, 2)
    sub(/[>"].*/, "", header)
    other = header
    sub(/\/.*/, "", other)
    if (other in place && header ~ /\//) {
        if (!quoted) bad("our own headers are included with quotes")
        if (place[other] > place[own]) {
            # The public headers are for the whole library, above model/.
            if (!(place[own] > place["model"] && header in public)) bad(own "/ is above " other "/")
        } else if (other == own || other == "model") {
        } else if (place[other] <= last_of_library && !(header in public)) {
            bad(own "/ reaches the engine through its public headers only")
        }
    } else if (quoted) {
        bad("not a header of ours as seen from the root")
    } else if (place[own] <= last_of_library && header !~ /^(ext\/)?[a-z_0-9]+$/) {
        bad("the library needs the standard library only")
    }
}
END { exit found }
' "${sources[@]}"
