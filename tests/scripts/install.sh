#!/usr/bin/env bash
# install.sh SOURCE_DIR BUILD_DIR: an application is built against an installed library, by pkg-config and by CMake, and
# runs, as the README tells, also after the library has been moved; the installed applications run too.
set -euo pipefail
source=$1 build=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cmake --install "$build" --prefix "$work/mclib" >/dev/null
cd "$work"
export XDG_DATA_HOME=$work/data
export PKG_CONFIG_PATH=$work/mclib/lib/pkgconfig
cc -shared -fPIC -o hello.so "$source/apps/hello/hello.c" $(pkg-config --cflags --libs mclib)
mclib/bin/mchost ./hello.so by-hand.ps
cat >CMakeLists.txt <<TEXT
cmake_minimum_required(VERSION 3.25)
project(hello C CXX)
find_package(mclib 6.14 REQUIRED)
mclib_application(hello $source/apps/hello/hello.c)
mclib_application(named named.cpp)
mclib_resources(named named.toml)
target_compile_features(named PRIVATE cxx_std_20)
TEXT
printf 'language = "en"\n[[list]]\nid = 1\nname = "told"\n[list.text]\n7 = { name = "file", text = "%%s" }\n' >named.toml
cat >named.cpp <<TEXT
#include <mclib/frame/main.h>
#include <mclib/frame/named_messages.hpp>

#include "named_ids.h"

int main(int argc, char** argv) {
    if (mclibMain_initMcLib("named", argc, argv) != MCLIB_SUCCESS) return 1;
    mc::showNotice(ids::told::file, "by name");
}
TEXT
cmake -G Ninja -B build -DCMAKE_PREFIX_PATH="$work/mclib" >/dev/null
cmake --build build >/dev/null
mv mclib moved
moved/bin/mchost build/hello.so by-cmake.ps
moved/bin/mchost build/named.so </dev/null 2>&1 | grep -q "by name"
moved/bin/mchost ./hello.so again.ps
moved/bin/mchost materials moved/share/doc/mclib/apps/materials/examples/watermain.txt --out list.ps
cmp by-hand.ps by-cmake.ps
cmp by-hand.ps again.ps
