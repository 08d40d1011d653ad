#!/usr/bin/env bash
# style.sh SOURCE_DIR: what clang-format doesn't hold, or not in plain C: lines of at most 120 columns, the star at the name in
# C headers, `!p` for no pointer, no statements joined by commas.
set -euo pipefail
cd "$1"
fail=0
tell() {  # what is wrong, where
    [ -z "$2" ] && return
    printf '%s:\n%s\n' "$1" "$2"
    fail=1
}
mapfile -t sources < <(find apps bench examples mchost mclib programs tests -name '*.[ch]' -o -name '*.cpp' -o -name '*.hpp')
mapfile -t product < <(printf '%s\n' "${sources[@]}" | grep -E '^(apps|mchost|mclib|programs)/.*\.(cpp|h|hpp)$')
mapfile -t headers < <(grep -L '^#pragma once' $(printf '%s\n' "${sources[@]}" | grep -E '^(mchost/mdl|mclib)/.*\.h$'))
tell "over 120 columns" "$(awk 'length($0) > 120 { print FILENAME ":" FNR }' "${sources[@]}")"
tell "the star stands at the name in C headers" "$(grep -nE '[A-Za-z0-9_]\* [A-Za-z]' "${headers[@]}" | grep -vE '^[^:]*:[0-9]+: *(/\*| \*)' || true)"
tell "no pointer is !p" "$(grep -nE '== nullptr' "${product[@]}" || true)"
tell "statements joined by commas" "$(grep -nE '^ *(if \(.*\) )?return [^;{}?"]*\), [a-z:A-Z0-9]+;' "${product[@]}" || true)"
exit $fail
