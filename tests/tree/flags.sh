#!/bin/sh
# flags.sh SOURCE BUILD CMAKE CC CXX: fails when a file does not compile with the hardening flags that distributions hand
# over, warnings taken for errors; and when warnings are taken for errors though nobody asked.
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
configure -DZV_WERROR=OFF
if grep -q Werror "$build/compile_commands.json"; then
    echo "warnings are errors without ZV_WERROR"
    exit 1
fi
