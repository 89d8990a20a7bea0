#!/bin/sh
# Installs the build, moves the whole to PREFIX, and looks through what is there.
set -eu
source=$(cd "$(dirname "$0")/../.." && pwd)

rm -rf "$WORK/laid_down" "$PREFIX"
"$CMAKE" --install "$BUILD" --prefix "$WORK/laid_down" --strip >/dev/null
mv "$WORK/laid_down" "$PREFIX"

# Every public header and no other one.
headers()
{
    (cd "$1" && find . -name '*.h' | LC_ALL=C sort)
}
{
    headers "$source/include"
    headers "$source/platform/include"
} | LC_ALL=C sort >"$WORK/public_headers"
headers "$PREFIX/include" | diff -u "$WORK/public_headers" -

# And nothing else but the libraries and the files by which they are found.
(cd "$PREFIX" && find . ! -type d ! -name '*.h' | LC_ALL=C sort |
    sed -e "s,^\./$LIBDIR/,," -e 's,-[a-z]*\.cmake$,-CONFIGURATION.cmake,' \
        -e 's,\.[0-9]*\.[0-9]*\.[0-9]*$,.VERSION,') >"$WORK/other_files"
diff -u - "$WORK/other_files" <<END
cmake/TovoFormula/TovoFormulaConfig.cmake
cmake/TovoFormula/TovoFormulaConfigVersion.cmake
cmake/TovoFormula/TovoFormulaTargets-CONFIGURATION.cmake
cmake/TovoFormula/TovoFormulaTargets.cmake
libTovoFormula.so
libTovoFormula.so.0.1
libTovoFormula.so.VERSION
libTovoJob.so
libTovoJob.so.0.1
libTovoJob.so.VERSION
libTovoPlatform.so
libTovoPlatform.so.0.1
libTovoPlatform.so.VERSION
pkgconfig/tovoformula.pc
pkgconfig/tovojob.pc
END

# Sanitizers name source files inside the libraries.
if grep -rl ${HOST_FLAGS:+-I} -e "$source" -e "$WORK/laid_down" "$PREFIX"; then
    echo "These files know where they were built or laid down." >&2
    exit 1
fi
ldd "$PREFIX/$LIBDIR/libTovoFormula.so" | grep -q "=> $PREFIX/$LIBDIR/libTovoPlatform.so.0.1 " || {
    echo "The engine does not find the platform library beside itself." >&2
    exit 1
}
