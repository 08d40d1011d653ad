#!/usr/bin/env bash
# calls.sh SOURCE_DIR BUILD_DIR: a room calls, and refers to, only what rooms above its line in rooms.txt define, of its
# own library: what its object files ask for tells, so that no declaration hides it.
set -euo pipefail
mapfile -t rooms < <(grep '^mc' "$1/rooms.txt")
list=$(mktemp -d)
trap 'rm -rf "$list"' EXIT
for i in "${!rooms[@]}"; do
    room=${rooms[i]} library=${rooms[i]%%/*}
    objects=()
    for source in $(ls "$1/$room"/*.cpp 2>/dev/null); do objects+=("$2/CMakeFiles/$library-objects.dir/$room/${source##*/}.o"); done
    [ ${#objects[@]} -eq 0 ] && continue  # headers alone
    # Weak definitions are inline functions and templates, which every room has a copy of.
    nm -A -P "${objects[@]}" | awk -v i="$i" -v room="$room" -v library="$library" '
        { sub(/.*\//, "", $1); sub(/\.o:$/, "", $1) }
        $3 ~ /^[TDBR]$/ { print library, $2, i, room >> "'"$list"'/defined" }
        $3 == "U" { print library, $2, i, room "/" $1 >> "'"$list"'/" library }'
done
awk 'NR == FNR { rank[$1, $2] = $3; home[$1, $2] = $4; next }
     ($1, $2) in rank && rank[$1, $2] > $3 { print $4 " needs " $2 " of " home[$1, $2] ", which rooms.txt has below it"; fail = 1 }
     END { exit fail }' "$list/defined" "$list/mchost" "$list/mclib" | c++filt
