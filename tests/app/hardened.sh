#!/usr/bin/env bash
# The program has what ITMS_HARDEN promises.
#
#     hardened.sh ITMS
set -euo pipefail

itms=$1
export LC_ALL=C
failed=0

# expect WHAT PATTERN TEXT
expect() {
    if ! grep -q -- "$2" <<<"$3"; then
        echo "$itms: $1"
        failed=1
    fi
}

header=$(readelf -hW "$itms")
segments=$(readelf -lW "$itms")
dynamic=$(readelf -dW "$itms")
symbols=$(readelf -sW --dyn-syms "$itms")
expect 'is not position-independent' 'Type: *DYN' "$header"
expect 'has relocations that can be written to' 'GNU_RELRO' "$segments"
expect 'resolves symbols later than at its start' 'BIND_NOW\|NOW' "$dynamic"
expect 'has a stack that can be executed' 'GNU_STACK.* RW ' "$segments"
expect 'has no stack protector' '__stack_chk_fail' "$symbols"
expect 'has no checked buffers' '__[a-z]*_chk' "$(grep -v __stack_chk_fail <<<"$symbols")"
exit $failed
