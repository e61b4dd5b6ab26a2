#!/bin/sh
# hardening.sh FILE...: fails when a library or program of ours lacks a protection that the compiler or the loader
# gives.
set -eu
export LC_ALL=C
status=0
wrong() {
    echo "$file: $1"
    status=1
}

for file; do
    headers=$(readelf -lW "$file") dynamic=$(readelf -dW "$file") symbols=$(nm -D "$file" | awk '{ print $NF }')
    echo "$headers" | grep -q GNU_RELRO || wrong "its relocations stay writable"
    echo "$dynamic" | grep -q BIND_NOW || wrong "symbols are bound late: its relocations are not read-only in full"
    echo "$headers" | grep -q "GNU_STACK.* RW " || wrong "its stack is executable"
    if echo "$headers" | grep -q "LOAD.* RWE "; then wrong "holds memory both writable and executable"; fi
    if echo "$dynamic" | grep -q TEXTREL; then wrong "its code is written to when it is loaded"; fi
    readelf -hW "$file" | grep -q "Type: *DYN" || wrong "stands at a fixed address"
    echo "$symbols" | grep -q "^__stack_chk_fail" || wrong "built without the stack protector"
    plain=$(echo "$symbols" | grep -E "^(s|sn|f|)printf@" || true)
    # A call that is seen to fit needs no check.
    echo "$symbols" | grep -q "printf_chk" || [ -z "$plain" ] || wrong "built without _FORTIFY_SOURCE: calls $(echo $plain)"
    unresolved=$(ldd -r "$file" 2>&1 | grep -E "undefined symbol|not found" || true)
    [ -z "$unresolved" ] || wrong "$unresolved"
done
exit $status
