#!/bin/sh
# imports.sh ROOT LIBRARY CRYPT: fails when the library needs another library than it may, takes a symbol
# from elsewhere, or leaves one of its own open to a host's symbol of the same name.
set -eu
cd "$1"
library=$2 crypt=$3
export LC_ALL=C
status=0
wrong() {
    echo "$1"
    status=1
}

crypt_name=$(basename "$crypt")
needed=$(readelf -dW "$library" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p')
for name in $needed; do
    case $name in
    libstdc++.so.* | libgcc_s.so.* | libc.so.* | libm.so.* | libdl.so.* | ld-linux* | "$crypt_name") ;;
    *) wrong "needs $name" ;;
    esac
done
echo "$needed" | grep -qxF "$crypt_name" || wrong "does not need $crypt_name"
readelf -dW "$crypt" | grep -q "(SONAME).*\[libmin_zvCrypt\.so\]" || wrong "the crypto library's name has a version"

# Symbols of the run-time libraries carry a version; the rest may only be the crypto library's operations.
allowed=$(awk -f tests/tree/declarations.awk include/zvCrypt.h | awk '$2 == "exported" { print $1 }')
taken=$(nm -D --undefined-only "$library" | awk '$1 == "U" && $2 !~ /@/ { print $2 }')
[ -n "$taken" ] || wrong "takes nothing from the crypto library"
for name in $taken; do
    echo "$allowed" | grep -qxF "$name" || wrong "takes $name, which is no operation of zvCrypt.h"
done

# A relocation by name against a symbol of its own (with a value) is one that a host's symbol can take over.
open=$(readelf -rW "$library" | awk 'NF >= 5 && $4 ~ /^[0-9a-f]+$/ && $4 !~ /^0+$/ { sub(/@.*/, "", $5); print $5 }' |
    sort -u)
for name in $open; do
    case $name in
    szBuffErr | szSockMsg | use2048Bit | force2048PraGen | is1205SerialToken | errorMessages) ;;
    *) wrong "a host's $name would take the place of the library's" ;;
    esac
done
echo "$open" | grep -qx szBuffErr || wrong "a host's copy of szBuffErr is not written"
exit $status
