#!/usr/bin/env bash
# readme.sh SOURCE_DIR: the application that the README shows is the one that is built, and every file it links to exists.
set -euo pipefail
cd "$1"
diff <(sed -n '/^```c$/,/^```$/p' README.md | sed '1d;$d') apps/hello/hello.c
for target in $(grep -oE '\]\([^)]+\)' README.md docs/*.md apps/*/README.md | sed -E 's/^([^:]+):\]\((.*)\)$/\1|\2/'); do
    file=${target%%|*} link=${target#*|}
    case "$link" in http*) continue ;; esac
    [ -e "$(dirname "$file")/${link%%#*}" ] || { echo "$file links to $link, which isn't there"; exit 1; }
done
