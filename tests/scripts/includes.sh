#!/usr/bin/env bash
# includes.sh SOURCE_DIR: a room includes only rooms that stand above its line in rooms.txt, of its own library, and
# mchost/mdl; the host sees nothing of the library; every folder of both libraries is a room; no files include each other
# in a circle.
set -euo pipefail
cd "$1"
fail=0
mapfile -t rooms < <(grep '^mc' rooms.txt)
declare -A rank
for i in "${!rooms[@]}"; do rank[${rooms[i]}]=$i; done
for folder in mclib/*/ mchost/*/; do
    folder=${folder%/}
    [ "$folder" = mchost/mdl ] || [ -n "${rank[$folder]:-}" ] || { echo "$folder isn't in rooms.txt"; fail=1; }
done
while IFS=: read -r file target; do
    from=${file%/*} to=${target%/*}
    [ "$from" = "$to" ] || [ "$to" = mchost/mdl ] && continue
    [ "$from" = mclib ] && continue  # the chief header includes all families
    if [ "${from%%/*}" != "${to%%/*}" ] || [ "${rank[$to]:-99}" -gt "${rank[$from]:--1}" ]; then
        echo "$file includes $target: rooms.txt has $from below it"
        fail=1
    fi
done < <(grep -noE '^#include ["<](mclib|mchost)/[^">]+' mclib/*.h mclib/*/*.{h,cpp} mchost/*/*.{h,cpp} |
         sed -E 's/:[0-9]+:#include ["<]/:/')
circle=$(grep -oE '^#include ["<][^">]+' -r --include='*.h' . --exclude-dir=build --exclude-dir=tests |
         sed -E 's|^\./||; s/:#include ["<]/ /' | tsort 2>&1 >/dev/null || true)
[ -n "$circle" ] && { echo "headers in a circle: $circle"; fail=1; }
exit $fail
