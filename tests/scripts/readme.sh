#!/usr/bin/env bash
# readme.sh SOURCE_DIR: the application that the README shows is the one that is built, its tables name all headers and
# applications and it links to all documents, and every file that a document links to exists.
set -euo pipefail
cd "$1"
diff <(sed -n '/^```c$/,/^```$/p' README.md | sed '1d;$d') apps/hello/hello.c
for header in $(grep -oE '^#include "mclib/[^"]+' mclib/mclib.h | sed 's/.*"mclib.//'); do
    grep -qE "^\| .*\`mclib/${header%/*}/.*\b${header##*/}\`" README.md || { echo "README.md doesn't name $header"; exit 1; }
done
for document in docs/*.md apps/*/README.md examples/*/README.md; do
    grep -q "]($document" README.md || { echo "README.md doesn't link to $document"; exit 1; }
done
for target in $(grep -oE '(\]\(|src=")[^)"]+[)"]' README.md docs/*.md apps/*/README.md examples/*/README.md |
                sed -E 's/^([^:]+):(\]\(|src=")(.*)[)"]$/\1|\3/'); do
    file=${target%%|*} link=${target#*|}
    case "$link" in http*) continue ;; esac
    [ -e "$(dirname "$file")/${link%%#*}" ] || { echo "$file links to $link, which isn't there"; exit 1; }
done
