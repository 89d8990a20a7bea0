#!/bin/sh
# Builds the example hosts with what find_package gives, and compares what they print.
set -eu
source=$(cd "$(dirname "$0")/../.." && pwd)

for example in embed german; do
    host=$WORK/with_cmake/$example
    rm -rf "$host"
    "$CMAKE" -S "$source/examples/$example" -B "$host" -G Ninja -DCMAKE_PREFIX_PATH="$PREFIX" \
        -DCMAKE_CXX_COMPILER="$CXX" -DCMAKE_CXX_FLAGS="$HOST_FLAGS" >/dev/null
    "$CMAKE" --build "$host"
    "$host/$example" | diff -u "$source/examples/$example/expected.txt" -
done

# Other minor versions of 0 promise nothing to a host that was written for this one.
cat >"$host/refuse.cmake" <<'END'
foreach(version 0.0 0.2 1.0)
  find_package(TovoFormula ${version} QUIET CONFIG)
  if(TovoFormula_FOUND OR NOT TovoFormula_CONSIDERED_VERSIONS)
    message(FATAL_ERROR "asked for ${version}, considered: ${TovoFormula_CONSIDERED_VERSIONS}")
  endif()
endforeach()
END
"$CMAKE" -DCMAKE_PREFIX_PATH="$PREFIX" -P "$host/refuse.cmake"
