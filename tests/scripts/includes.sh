#!/usr/bin/env bash
# includes.sh SOURCE_DIR: includes between folders run downwards only, the library sees of the host only mchost/mdl, the
# host sees nothing of the library, and no files include each other in a circle.
set -euo pipefail
cd "$1"
fail=0
rank() {  # the storey of a folder; mclib/startup/startup.cpp stands above all others
    case "$1" in
        frame) echo 1 ;; text | elmattr) echo 2 ;; geometry) echo 3 ;; arrows | print) echo 4 ;;
        forms | batch | design | project) echo 5 ;; *) echo 0 ;;
    esac
}
for file in {frame,text,elmattr,geometry,arrows,print,forms,project,design,batch}/*.{h,cpp}; do
    [ -f "$file" ] || continue
    [ "$file" = mclib/startup/startup.cpp ] && continue
    from=$(rank "${file%%/*}")
    while read -r target; do
        case "$target" in
            mchost/mdl/*) ;;
            host/*) echo "$file includes $target: the library knows the host by mchost/mdl alone"; fail=1 ;;
            *) to=$(rank "${target%%/*}")
               [ "$to" -gt "$from" ] && { echo "$file includes $target: upwards"; fail=1; } ;;
        esac
    done < <(grep -hoE '^#include "[^"]+"' "$file" | sed 's/#include "//; s/"//')
done
for file in host/*/*.{h,cpp} host/*.cpp; do
    [ -f "$file" ] || continue
    if grep -nE '^#include "(frame|text|elmattr|geometry|arrows|print|forms|project|design|batch)/' "$file"; then
        echo "$file includes the library"; fail=1
    fi
done
circle=$(grep -oE '^#include "[^"]+"' -r --include='*.h' . --exclude-dir=build --exclude-dir=tests |
         sed -E 's|^\./||; s/:#include "/ /; s/"$//' | tsort 2>&1 >/dev/null || true)
[ -n "$circle" ] && { echo "headers in a circle: $circle"; fail=1; }
exit $fail
