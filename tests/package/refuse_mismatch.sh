#!/bin/sh
# A host that is compiled in another way than the library must not come to be, and the message must
# tell why.
set -eu
source=$(cd "$(dirname "$0")/../.." && pwd)
messages=$WORK/mismatch.txt

export PKG_CONFIG_PATH="$PREFIX/$LIBDIR/pkgconfig"
# refused TEXT FLAG...: the build with these flags fails, with the text in its messages.
refused()
{
    text=$1
    shift
    # shellcheck disable=SC2046,SC2086 # flags, one word each
    if "$CXX" $HOST_FLAGS "$@" "$source/examples/embed/main.cpp" \
        $(pkg-config --cflags --libs tovoformula) -o "$WORK/mismatch" 2>"$messages"; then
        echo "A host was built with $*." >&2
        exit 1
    fi
    if ! grep -q "$text" "$messages"; then
        cat "$messages" >&2
        echo "No message says \"$text\" of a host built with $*." >&2
        exit 1
    fi
}

refused 'must_have_the_same::GLIBCXX_DEBUG<true>' -std=c++20 -D_GLIBCXX_DEBUG
refused 'must_have_the_same::GLIBCXX_USE_CXX11_ABI<0>' -std=c++20 -D_GLIBCXX_USE_CXX11_ABI=0
refused 'must_have_the_same::sizes_of_enumerations' -std=c++20 -fshort-enums
for standard in c++11 c++17; do
    refused 'needs C++20' -std=$standard
    if [ "$(grep -c 'error:' "$messages")" -gt 2 ]; then
        cat "$messages" >&2
        echo "The message is not the only one, with $standard." >&2
        exit 1
    fi
done
