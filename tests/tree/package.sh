#!/bin/sh
# package.sh SOURCE BUILD CMAKE CC CXX: installs into a folder, moves that, and builds and runs a host with what is
# there, found through CMake and through pkg-config.
set -eu
here=$1/tests/tree build=$2 cmake=$3 cc=$4 cxx=$5
work=$build/tests/tree/package
rm -rf "$work"
mkdir -p "$work"
cd "$work"
unset LD_LIBRARY_PATH DYLD_LIBRARY_PATH

"$cmake" --install "$build" --prefix "$work/first" >install.log
[ -z "$(find first -name '*simcard*')" ] || { echo "the simulated card is installed without being asked for"; exit 1; }
"$cmake" --install "$build" --prefix "$work/first" --component simcard >>install.log
mv first moved
case $(uname) in Linux) sh "$here/search_path.sh" "$work/moved" ;; esac
lib=$(dirname "$(find "$work/moved" -name 'libmin_zvCrypt.*')")
moved/bin/zvrenew --version
LC_ALL=it_IT.UTF-8 moved/bin/zvrenew --help | grep -q '^Uso: ' || { echo "the Italian catalogue is not found"; exit 1; }
for page in 1/zvrenew.1 1/zvsimcard-tool.1 3/zvRenew.3 5/zvcrypt.conf.5; do
    [ -s "moved/share/man/man$page" ] || { echo "the manual's $page is not installed"; exit 1; }
done
for script in bash-completion/completions/zvrenew zsh/site-functions/_zvrenew fish/vendor_completions.d/zvrenew.fish; do
    [ -s "moved/share/$script" ] || { echo "the completion $script is not installed"; exit 1; }
done
# Every page and the sample, and what a page leads to.
docs=$(dirname "$(find moved/share -name CHANGELOG.md)")
(cd "$1" && ls README.md CHANGELOG.md docs/*.md && echo zvcrypt.conf) | grep -v '\.in\.md$' >pages
while read -r page; do
    [ -s "$docs/$page" ] || { echo "$page is not installed"; exit 1; }
    sed 's/](/\n](/g' "$docs/$page" | sed -n 's/^](\([^):#]*\)[#)].*/\1/p' | while read -r link; do
        [ -e "$docs/$(dirname "$page")/$link" ] || { echo "$page leads to $link, which is not installed"; exit 1; }
    done
done <pages
moved/bin/zvsimcard-tool --help >/dev/null

"$cmake" -S "$here/consumer" -B consumer -DCMAKE_PREFIX_PATH="$work/moved" -DCMAKE_C_COMPILER="$cc" >consumer.log
"$cmake" --build consumer >>consumer.log
consumer/consumer "$work/host.log"

export PKG_CONFIG_PATH="$lib/pkgconfig"
flags=$(pkg-config --cflags zvrenew)
# shellcheck disable=SC2046,SC2086
"$cc" $flags "$here/host.c" $(pkg-config --libs zvrenew) -Wl,-rpath,"$lib" -o host
./host "$work/host.log"
# What a host compiles against, finds and runs is one version.
# shellcheck disable=SC2086
version=$(printf '#include <zvRenew.h>\nversion ZV_VERSION_MAJOR ZV_VERSION_MINOR ZV_VERSION_PATCH\n' |
    "$cc" -E -P $flags - | sed -n 's/^version \([0-9]*\) \([0-9]*\) \([0-9]*\)$/\1.\2.\3/p')
for told in "$(pkg-config --modversion zvrenew)" "$(moved/bin/zvrenew --version)" \
        "$(sed -n 's/^set(PACKAGE_VERSION "\(.*\)")$/\1/p' "$lib/cmake/zvRenew/zvRenewConfigVersion.cmake")"; do
    [ "$told" = "$version" ] || { echo "zvRenew.h is of version \"$version\", not \"$told\""; exit 1; }
done
# Each header of routines alone; their sum has them all.
(cd moved/include/zvrenew && ls routines.h routines/*.h) >headers
[ "$(wc -l <headers)" -gt 8 ] || { echo "headers of routines are missing"; exit 1; }
while read -r header; do
    # shellcheck disable=SC2086
    echo "#include <$header>" | "$cxx" -std=c++20 -fsyntax-only $flags -x c++ -
    grep -q "\"$header\"" moved/include/zvrenew/routines.h || [ "$header" = routines.h ] ||
        { echo "routines.h lacks $header"; exit 1; }
done <headers
# The engine's headers, with nothing but what is installed: in either order, so that what one forgets another does not bring.
flags=$(pkg-config --cflags zvrenew-host)
(cd moved/include/zvrenew && ls host/*.h) >headers
[ "$(wc -l <headers)" -gt 25 ] || { echo "headers of the engine are missing"; exit 1; }
for order in "" -r; do
    # shellcheck disable=SC2086
    sort $order headers | sed 's/.*/#include <&>/' | "$cxx" -std=c++20 -fsyntax-only -Wall -Wextra -Werror $flags -x c++ -
done
