#!/bin/sh
# reminder_units.sh BUILD CMAKE: fails when what is installed to have reminders run by themselves does not run the program
# that is installed with it, and when systemd-analyze or desktop-file-validate, where there are, find fault with it.
set -eu
build=$1 cmake=$2
work=$build/tests/tree/reminders
rm -rf "$work"
mkdir -p "$work/run"
chmod 700 "$work/run"
"$cmake" --install "$build" --prefix "$work/it is" --component runtime >"$work/install.log"
units="$work/it is/lib/systemd/user" entry="$work/it is/share/zvrenew/zvrenew-remind.desktop"
program=$(sed -n 's/^ExecStart="\(.*\)" remind --open$/\1/p' "$units/zvrenew-remind.service")
"$program" remind --help >/dev/null
[ "$program" = "$(sed -n 's/^Exec="\(.*\)" remind --open$/\1/p' "$entry")" ] || { echo "the entry runs another program"; exit 1; }
if command -v systemd-analyze >/dev/null; then
    XDG_RUNTIME_DIR=$work/run systemd-analyze --user --man=no verify "$units"/zvrenew-remind.* >"$work/said" 2>&1 ||
        echo "systemd-analyze ended with $?" >>"$work/said"
    [ ! -s "$work/said" ] || { cat "$work/said"; exit 1; }
fi
! command -v desktop-file-validate >/dev/null || desktop-file-validate "$entry"
