#!/bin/sh
# Builds the example host together with the library, as a part of one CMake project: with static
# libraries, and as far as its configuration with shared ones.
set -eu
source=$(cd "$(dirname "$0")/../.." && pwd)
host=$WORK/in_tree

rm -rf "$host"
mkdir "$host"
cat >"$host/CMakeLists.txt" <<END
cmake_minimum_required(VERSION 3.25)
project(InTree LANGUAGES CXX)
add_subdirectory($source tovo)
add_executable(embed $source/examples/embed/main.cpp)
target_link_libraries(embed PRIVATE Tovo::Formula)
get_target_property(type TovoFormula TYPE)
file(WRITE \${CMAKE_BINARY_DIR}/type.txt \${type})
END
configure()
{
    build=$1
    shift
    "$CMAKE" -S "$host" -B "$host/$build" -G Ninja -DCMAKE_CXX_COMPILER="$CXX" "$@" >/dev/null
}

configure shared
grep -q SHARED_LIBRARY "$host/shared/type.txt"

configure static -DBUILD_SHARED_LIBS=OFF
grep -q STATIC_LIBRARY "$host/static/type.txt"
"$CMAKE" --build "$host/static" --target embed >"$host/build.txt" || {
    cat "$host/build.txt" >&2
    exit 1
}
"$host/static/embed" | diff -u "$source/examples/embed/expected.txt" -
if ldd "$host/static/embed" | grep libTovo; then
    echo "The host needs a shared library of the project." >&2
    exit 1
fi
