#!/usr/bin/env bash
# exports.sh SOURCE_DIR LIBRARY: the library exports exactly the functions that the public headers declare.
set -euo pipefail
cd "$1"
declared=$(cat $(git ls-files -co --exclude-standard '*.h' 2>/dev/null | grep -E '^mclib/[a-z]+/[a-z0-9_]+\.h$' || ls mclib/*/*.h) |
           tr '\n' ' ' | grep -oE 'MCLIB_EXPORT [^;(]*\bmclib[0-9A-Za-z]*_[0-9A-Za-z]+ *\(' | grep -oE 'mclib[0-9A-Za-z]*_[0-9A-Za-z]+' | sort -u)
exported=$(nm -D --defined-only "$2" | awk '{ sub(/@.*/, "", $NF); print $NF }' | grep -E '^mclib[0-9A-Za-z]*_' | sort -u)
differ=$(diff <(echo "$declared") <(echo "$exported") || true)
[ -z "$differ" ] && { echo "$(echo "$declared" | wc -l) functions"; exit 0; }
echo "declared but not exported (<), exported but not declared (>):"
echo "$differ" | grep '^[<>]'
exit 1
