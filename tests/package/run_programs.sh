#!/bin/sh
# Lays the programs down beside the libraries and sees that they start on those.
set -eu

"$CMAKE" --install "$BUILD" --prefix "$PREFIX" --component Programs >/dev/null
for program in tovo-calc tovo-edit; do
    "$PREFIX/bin/$program" --help >/dev/null
    if ldd "$PREFIX/bin/$program" | grep 'libTovo.* => ' |
        grep -v "=> $PREFIX/bin/../$LIBDIR/"; then
        echo "$program runs on other libraries." >&2
        exit 1
    fi
done
