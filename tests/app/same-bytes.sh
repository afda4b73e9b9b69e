#!/usr/bin/env bash
# Every verb writes the same bytes, whatever environment, locale and addresses the program gets.
#
#     same-bytes.sh ITMS        at the root of the project
set -euo pipefail

itms=$1
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

"$(dirname "$0")/every-verb.sh" >"$folder/commands"

# What is set before the program starts, one line for each run.
pad=$(head -c 50000 /dev/zero | tr '\0' x)
cat >"$folder/environments" <<END
env
env -i
env LC_ALL=C
env LC_ALL=C.UTF-8
env LC_ALL=de_DE.UTF-8 LANGUAGE=de
env LANG=tr_TR.UTF-8
env LC_NUMERIC=fr_FR.UTF-8
env TZ=Asia/Kathmandu
env TZ=
env COLUMNS=40 LINES=10
env TERM=dumb
env TERM=xterm-256color
env HOME=/nonexistent TMPDIR=/nonexistent
env MALLOC_PERTURB_=85
env MALLOC_PERTURB_=170 MALLOC_ARENA_MAX=1
env MALLOC_TOP_PAD_=1 MALLOC_MMAP_THRESHOLD_=4096
env GLIBCXX_TUNABLES= GLIBC_TUNABLES=glibc.malloc.tcache_count=0
env PADDING=$pad
env PADDING=${pad:0:33333} OMP_NUM_THREADS=1
END
# Addresses that are not random; a container may forbid to ask for them.
if setarch -R true 2>/dev/null; then echo 'setarch -R env' >>"$folder/environments"; fi

failed=0
while read -r command; do
    first=
    while read -r environment; do
        # Words on purpose: neither list has quotes.
        # shellcheck disable=SC2086
        # The engine's own trace shows the addresses of clauses.
        got=$({ $environment "$itms" $command 2>&1 || echo "status $?"; } </dev/null |
            sed 's/0x[0-9a-f]\{8,\}/ADDRESS/g' | sha256sum)
        : "${first:=$got}"
        if [ "$got" != "$first" ]; then
            echo "itms $command: other bytes with ${environment:0:80}"
            failed=1
        fi
    done <"$folder/environments"
done <"$folder/commands"
exit $failed
