#!/bin/sh
# host_programs.sh SOURCE INSTALLED WORK CC CXX CMAKE NSS_WRAPPER: builds the programs of docs/host.md with what is installed
# in that folder, and has each renew certificates of a simulated card of its own.
set -eu
source=$1 installed=$2 work=$3 cc=$4 cxx=$5 cmake=$6 wrapper=$7
programs=$source/docs/host
rm -rf "$work"
mkdir -p "$work/home"
cd "$work"
unset LD_LIBRARY_PATH
lib=$(dirname "$(find "$installed" -name 'libmin_zvCrypt.*')")
library=$(find "$lib" -name 'libzvRenew*.1' -o -name 'libzvRenew.1.dylib' | head -n 1)
export PKG_CONFIG_PATH="$lib/pkgconfig"

# shellcheck disable=SC2046
"$cc" -std=gnu11 -Wall -Wextra -Werror $(pkg-config --cflags zvrenew) "$programs/renew.c" $(pkg-config --libs zvrenew) \
    -Wl,-rpath,"$lib" -o renew_c
# shellcheck disable=SC2046
"$cxx" -std=c++20 -Wall -Wextra -Werror $(pkg-config --cflags zvrenew-host) "$programs/renew.cpp" \
    $(pkg-config --libs zvrenew-host) -Wl,-rpath,"$lib" -o renew_cpp
# The other way to the engine.
mkdir project
printf '%s\n' 'cmake_minimum_required(VERSION 3.25)' 'project(host LANGUAGES CXX)' 'find_package(zvRenew 1.0 REQUIRED)' \
    'file(WRITE ${CMAKE_BINARY_DIR}/list.cpp "#include <host/readers.h>\nint main() { return zvhost::tries_told({}).empty() ? 0 : 1; }\n")' \
    'add_executable(list ${CMAKE_BINARY_DIR}/list.cpp)' 'target_link_libraries(list PRIVATE zvRenew::host)' \
    >project/CMakeLists.txt
"$cmake" -S project -B project/build -DCMAKE_PREFIX_PATH="$installed" -DCMAKE_CXX_COMPILER="$cxx" >project.log
"$cmake" --build project/build >>project.log
project/build/list

printf 'tester:x:%s:%s::%s:/bin/sh\n' "$(id -u)" "$(id -g)" "$work/home" >passwd
printf '#!/bin/sh\nexec "%s" issue "$1" --out "$2"\n' "$installed/bin/zvsimcard-tool" >authority
chmod +x authority
export NSS_WRAPPER_PASSWD="$work/passwd" NSS_WRAPPER_GROUP=/etc/group XDG_STATE_HOME="$work/state"

# renewed CARD IDENTIFIER COMMAND...: fails unless the program says so, and the card shows it.
renewed() {
    folder=$1 id=$2 pair=$3
    shift 3
    (cd "$folder" && echo 12345678 | LD_PRELOAD=$wrapper "$@" >said 2>&1) || { cat "$folder/said"; echo "$* failed"; exit 1; }
    grep -qF "$pair is on the card" "$folder/said" || { cat "$folder/said"; echo "$* did not renew $id"; exit 1; }
    LD_PRELOAD=$wrapper "$installed/bin/zvrenew" status --module-dir "$lib" --json >"$folder/status.json" || true
    grep -q "\"$pair\"" "$folder/status.json" || { cat "$folder/status.json"; echo "$pair is not on the card"; exit 1; }
    rm -f "$folder/request.b64"
}

for host in c cpp py; do
    case $host in
    py) set -- python3 "$programs/renew.py" "$library" ;;
    *) set -- "$work/renew_$host" ;;
    esac
    mkdir "$host"
    export ZVSIMCARD_HOME="$work/$host/cards" ZVCRYPT_CONF="$work/$host/zvcrypt.conf"
    "$installed/bin/zvsimcard-tool" create --profile cns-signature --days 12 --cns-days 12 --config "$ZVCRYPT_CONF" >create.log
    renewed "$host" DS0 DS3 "$@" "$lib" "$work/authority" DS0 remove
    if grep -q '"DS0"' "$host/status.json"; then echo "renew.$host left DS0 on the card"; exit 1; fi
    renewed "$host" CNS0 CNS0 "$@" "$lib" "$work/authority" CNS0 remove
    LD_PRELOAD=$wrapper "$installed/bin/zvrenew" doctor --module-dir "$lib" >"$host/doctor" || true
    grep -q "once a command, through $lib/zvrenew/" "$host/doctor" || { cat "$host/doctor"; echo "no front is used"; exit 1; }
    # A PIN that would cost a try for its form alone ends it before the card.
    if (cd "$host" && echo '12345678 ' | LD_PRELOAD=$wrapper "$@" "$lib" "$work/authority" DS3 >said 2>&1); then
        echo "renew.$host took a PIN with a blank at its end"
        exit 1
    fi
done
[ -s home/.trevallo/zvRenew.log ] || { echo "the programs wrote no log"; exit 1; }
