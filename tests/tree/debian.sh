#!/bin/sh
# debian.sh SOURCE: fails when the Debian packages' changelog has another version than the library, or their control file
# lacks a package that building needs.
set -eu
cd "$1"
status=0
version=$(sed -n 's/^#define ZV_VERSION_[A-Z]* //p' include/zvRenew.h | paste -sd .)
head -n 1 packaging/debian/changelog | grep -qF "zvrenew ($version" ||
    { echo "packaging/debian/changelog does not begin with $version"; status=1; }
needed=$(sed -n '/^Build-Depends:/,/^$/s/^ \([a-z0-9.+-]*\).*/\1/p' packaging/debian/control)
for package in $(packaging/install-deps --list run desktop); do
    case $package in g++ | qt6-translations-l10n) continue ;; esac # every build has it; none needs it
    echo "$needed" | grep -qxF "$package" || { echo "packaging/debian/control does not build with $package"; status=1; }
done
exit $status
