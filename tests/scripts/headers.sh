#!/usr/bin/env bash
# headers.sh SOURCE_DIR CC CXX: every public header compiles by itself as C11 and as C++20 (one that ends in .hpp as C++20),
# without a warning, and none hides a header of the system. The application that the README shows is good in both languages too.
set -euo pipefail
cd "$1"
fail=0
for header in mclib/mclib.h mchost/mdl/*.{h,hpp} mclib/*/*.hpp $(grep -lE 'MCLIB_EXPORT' mclib/*/*.h); do
    for language in "$2 -std=c11 -x c" "$3 -std=c++20 -x c++ -Wno-pragma-once-outside-header"; do
        [[ $header == *.hpp && $language == *c11* ]] && continue
        echo "#include \"$header\"" | $language -I. -Wall -Wextra -pedantic -Werror -fsyntax-only - || { echo "$header: $language"; fail=1; }
    done
    if echo "#include <${header##*/}>" | $2 -fsyntax-only -x c - 2>/dev/null; then
        echo "$header has the name of a header of the system"; fail=1
    fi
done
for language in "$2 -std=c11" "$3 -std=c++20 -x c++"; do
    $language -I. -Wall -Wextra -pedantic -Wno-missing-field-initializers -Werror -fsyntax-only apps/hello/hello.c || { echo "hello.c: $language"; fail=1; }
done
exit $fail
