#!/usr/bin/env bash
# guide.sh SOURCE_DIR BUILD_DIR: what docs/guide.md and docs/forms.md show are lines of the files in examples/guide; and the
# guide's command lines, run one after the other in an empty folder with an installed library, print what it shows.
set -euo pipefail
source=$1 build=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail=0

# blocks FILE KIND: the fenced blocks of a kind, each ended by a form feed.
blocks() { awk -v kind="$2" '/^```/ { if (on) printf "\f"; on = !on && $0 == "```" kind; next } on' "$1"; }
# expect BLOCK TEXT WHAT: whether the lines of the block stand in the text.
expect() {
    [[ $'\n'$2$'\n' == *$'\n'"$1"* ]] && return
    echo "$3:"$'\n'"$1"
    fail=1
}

files=$(cat "$source"/examples/guide/*)
for document in guide forms; do
    for kind in c cpp toml text cfg answers; do
        while IFS= read -r -d $'\f' block; do
            expect "$block" "$files" "docs/$document.md shows what isn't in examples/guide"
        done < <(blocks "$source/docs/$document.md" $kind)
    done
done

cmake --install "$build" --prefix "$work/mclib" >/dev/null
mkdir "$work/empty"
cd "$work/empty"
{
    echo "set -e"
    blocks "$source/docs/guide.md" sh | tr '\f' '\n'
} | sed -e '/mc install/d' -e "s|/opt/mclib|$work/mclib|g; s|~/mclib|$source|g" >"$work/steps"
XDG_DATA_HOME=$work/data bash "$work/steps" </dev/null >"$work/output" 2>&1 ||
    { cat "$work/output"; echo "a command line of docs/guide.md fails"; exit 1; }
output=$(cat "$work/output")
while IFS= read -r -d $'\f' block; do
    expect "$block" "$output" "docs/guide.md shows what its command lines don't print"
done < <(blocks "$source/docs/guide.md" output)
[ $fail -eq 0 ] || sed 's/^/| /' "$work/output"
exit $fail
