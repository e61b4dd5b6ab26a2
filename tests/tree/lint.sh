#!/bin/sh
# lint.sh ROOT BUILD [FOLDER]: fails when clang-tidy or cppcheck find something in the product, or in that folder of it alone;
# skips where one of them is missing. It reads the files that unity builds make, several at a time, with the compile commands of
# BUILD.
set -eu
cd "$1"
build=$2
folders=${3-util diag card store inventory request install api ossl lenient pkcs11 crypt front host words cli simcard}
either() { echo "$*" | tr ' ' '|'; }
for tool in clang-tidy cppcheck; do
    command -v $tool >/dev/null || { echo "$tool is not installed"; exit 77; }
done

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
# shellcheck disable=SC2086
python3 tests/tree/lint_batches.py "$build" "$work" ${3-CMakeFiles $folders} >"$work/batches"
# shellcheck disable=SC2086
xargs -P "$(getconf _NPROCESSORS_ONLN)" -n 1 clang-tidy --quiet -p "$work" --config-file=.clang-tidy \
    --extra-arg=-Wno-unknown-warning-option --header-filter="/($(either $folders))/" <"$work/batches" 2>"$work/log" ||
    { cat "$work/log"; exit 1; }
# shellcheck disable=SC2086
cppcheck --enable=warning,performance,portability --inline-suppr --std=c++20 --language=c++ --quiet -j 2 \
    --suppress=missingIncludeSystem --error-exitcode=1 -I include -I . -I crypt $folders
