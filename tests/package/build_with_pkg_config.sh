#!/bin/sh
# Builds the example host in one line with what pkg-config gives, and compares what it prints. The
# headers are no system headers here, so a warning in one of them would reach a host.
set -eu
source=$(cd "$(dirname "$0")/../.." && pwd)
host=$WORK/with_pkg_config

export PKG_CONFIG_PATH="$PREFIX/$LIBDIR/pkgconfig"
# shellcheck disable=SC2046,SC2086 # flags, one word each
"$CXX" -std=c++20 -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror $HOST_FLAGS \
    "$source/examples/embed/main.cpp" $(pkg-config --cflags --libs tovoformula) \
    -Wl,-rpath,"$PREFIX/$LIBDIR" -o "$host"
"$host" | diff -u "$source/examples/embed/expected.txt" -
