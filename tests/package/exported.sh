#!/bin/sh
# Holds what the built libraries export against the lists in exported/, so that a host is cut off
# from nothing by accident and an inner function does not become a promise. After a change that is
# meant, with any preset built:
#
#     tests/package/exported.sh --update build/release
#
# and the difference of the lists belongs into the commit. The private functions of an exported
# class are in the lists, since the linker does not tell them apart.
set -eu
here=$(cd "$(dirname "$0")" && pwd)

# Functions and variables only. What compilers write for a type (its vtable, its name) and for
# templates and inline functions depends on the compiler and on the optimisation.
exported()
{
    nm -D --defined-only "$1" | sed -n 's/^[0-9a-f]* [TDBR] //p' | grep -v '^__odr_asan\.' |
        c++filt | grep -v -e '^typeinfo ' -e '^vtable ' | LC_ALL=C sort -u
}

update=
if [ "$1" = --update ]; then
    update=yes
    shift
fi
build=$1

result=0
for library in TovoPlatform TovoFormula TovoJob; do
    list=$here/exported/$library.txt
    if [ "$update" ]; then
        exported "$build/lib$library.so" >"$list"
    elif ! exported "$build/lib$library.so" |
        diff -u --label "$library.txt" --label exported "$list" -; then
        echo "lib$library.so exports other names. If that is meant, see the head of $0." >&2
        result=1
    fi
done
exit $result
