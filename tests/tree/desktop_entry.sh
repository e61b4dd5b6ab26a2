#!/bin/sh
# desktop_entry.sh ROOT BUILD CMAKE: fails when what is installed to have the window among the desktop's programs does not
# lead to the program and its icons, or tells of another version, and when desktop-file-validate or appstreamcli, where
# there are, find fault with it.
set -eu
root=$1 build=$2 cmake=$3
work=$build/tests/tree/desktop_entry
rm -rf "$work"
mkdir -p "$work"
"$cmake" --install "$build" --prefix "$work" --component desktop >"$work/install.log"
entry=$work/share/applications/zvrenew-desktop.desktop info=$work/share/metainfo/zvrenew-desktop.metainfo.xml
named() { sed -n "s/^$1=//p" "$entry"; }

[ -x "$work/bin/$(named Exec)" ] || { echo "the entry runs another program"; exit 1; }
for icon in "scalable/apps/$(named Icon)" "symbolic/apps/$(named Icon)-symbolic"; do
    [ -s "$work/share/icons/hicolor/$icon.svg" ] || { echo "the icon $icon is missing"; exit 1; }
    if grep '<text' "$work/share/icons/hicolor/$icon.svg"; then echo "the icon $icon has a text"; exit 1; fi
done
grep -qF ">${entry##*/}</launchable>" "$info" || { echo "the metainfo leads to another entry"; exit 1; }
version=$(sed -n 's/^#define ZV_VERSION_[A-Z]* //p' "$root/include/zvRenew.h" | paste -sd .)
grep -qF "<release version=\"$version\"" "$info" || { echo "the metainfo does not tell of $version"; exit 1; }
! command -v desktop-file-validate >/dev/null || desktop-file-validate "$entry"
! command -v appstreamcli >/dev/null || appstreamcli validate --no-net "$info"
