#!/bin/sh
# flags.sh SOURCE BUILD CMAKE CC CXX: fails when a file does not compile with the hardening flags that distributions hand
# over, warnings taken for errors; when warnings are taken for errors though nobody asked; and when the system's
# configuration is looked for anywhere but in /etc, or in the folder that the build was given instead.
set -eu
source=$1 build=$2/tests/tree/flags cmake=$3 cc=$4 cxx=$5
rm -rf "$build"
configure() {
    "$cmake" -S "$source" -B "$build" -G Ninja -DBUILD_TESTING=OFF -DCMAKE_C_COMPILER="$cc" -DCMAKE_CXX_COMPILER="$cxx" \
        -DCMAKE_EXPORT_COMPILE_COMMANDS=ON "$@" >"$build.log" 2>&1 || { cat "$build.log"; exit 1; }
}
flags="-O2 -D_FORTIFY_SOURCE=3"
configure -DCMAKE_BUILD_TYPE=None -DCMAKE_C_FLAGS="$flags" -DCMAKE_CXX_FLAGS="$flags" -DZV_WERROR=ON
"$cmake" --build "$build" --target CMakeFiles/zvrenew_objects.dir/util/trim.cpp.o
# looks_in FOLDER: who looks for the configuration there, and who tells the user of it.
looks_in() {
    for file in crypt/config.cpp host/advice.cpp; do
        tr -d '\\"' <"$build/compile_commands.json" | grep "^ *command:.* -c $source/$file," |
            grep -qF -- "-DZV_SYSCONFDIR=$1 " || { echo "$file does not take $1"; exit 1; }
    done
}
looks_in /etc
if grep -n '/etc/zvcrypt\.conf' "$source"/crypt/*.cpp "$source"/host/*.cpp "$source"/words/*/*.cpp "$source"/cli/*.cpp; then
    echo "the folder of the system's configuration is the build's to name"
    exit 1
fi
configure -DZV_WERROR=OFF -DCMAKE_INSTALL_SYSCONFDIR=/elsewhere/etc
looks_in /elsewhere/etc
if grep -q Werror "$build/compile_commands.json"; then
    echo "warnings are errors without ZV_WERROR"
    exit 1
fi
