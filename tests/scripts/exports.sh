#!/usr/bin/env bash
# exports.sh SOURCE_DIR LIBMCLIB LIBMCHOST: libmclib exports exactly the functions that its public headers declare, and both
# libraries nothing that the public headers don't name.
set -euo pipefail
cd "$1"
fail=0
stray=$(nm -D --defined-only "$2" "$3" | awk 'NF == 3 { sub(/@.*/, "", $3); print $3 }' | grep -v '^__' | sort -u |
        grep -vxFf <(cat mclib/*/*.h mchost/mdl/*.h | grep -oE '[A-Za-z_][A-Za-z_0-9]*' | sort -u) || true)
[ -n "$stray" ] && { echo "exported, and named in no public header: $stray"; fail=1; }
declared=$(cat $(git ls-files -co --exclude-standard '*.h' 2>/dev/null | grep -E '^mclib/[a-z]+/[a-z0-9_]+\.h$' || ls mclib/*/*.h) |
           tr '\n' ' ' | grep -oE 'MCLIB_EXPORT [^;(]*\bmclib[0-9A-Za-z]*_[0-9A-Za-z]+ *\(' | grep -oE 'mclib[0-9A-Za-z]*_[0-9A-Za-z]+' | sort -u)
exported=$(nm -D --defined-only "$2" | awk '{ sub(/@.*/, "", $NF); print $NF }' | grep -E '^mclib[0-9A-Za-z]*_' | sort -u)
differ=$(diff <(echo "$declared") <(echo "$exported") || true)
[ -z "$differ" ] && { echo "$(echo "$declared" | wc -l) functions"; exit $fail; }
echo "declared but not exported (<), exported but not declared (>):"
echo "$differ" | grep '^[<>]'
exit 1
