#!/bin/sh
# hardened.sh CONTROL_FLOW FILE...: fails unless every program or library is hardened: calls are bound at the start, arrays on
# the stack are guarded and, where CONTROL_FLOW is "marked", indirect jumps may land at marks alone.
set -eu

control_flow=$1
shift
for file; do
    fail() { echo "hardened: $file $1" >&2; exit 1; }
    readelf --wide --dynamic "$file" | grep -qE 'BIND_NOW|FLAGS_1.*NOW' || fail "binds calls when they are made"
    readelf --wide --program-headers "$file" | grep -q GNU_RELRO || fail "keeps the addresses of calls writable"
    readelf --wide --dyn-syms "$file" | grep -q __stack_chk_fail || fail "has no guards on the stack"
    if [ "$control_flow" = marked ]; then
        # The start-up code that the system links in may hold a mark or none.
        [ "$(objdump --disassemble "$file" | grep -c endbr)" -gt 10 ] || fail "does not mark where indirect jumps may land"
    fi
done
echo "$# files are hardened"
