#!/bin/sh
# What a shared library brings into a process: no more than the C library and the named companions, no code that
# runs by itself, no memory that stays writable.
# usage: linkage.sh LIBRARY [COMPANION...]
set -eu
library=$1
shift
failed=0

fail() {
    echo "$(basename "$library"): $*"
    failed=1
}

dynamic=$(readelf -dW "$library")
segments=$(readelf -lW "$library")
sections=$(readelf -SW "$library" | sed -n 's/^ *\[ *[0-9]*\] *//p')
undefined=$(nm -D --undefined-only --format=posix "$library" | cut -d ' ' -f 1)

for needed in $(echo "$dynamic" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p'); do
    case " libc.so.6 libm.so.6 $* " in
        *" $needed "*) ;;
        *) fail "needs $needed" ;;
    esac
done

# Names of the C++ runtime, of the unwinder and of allocation, in case a statically linked or weak one slips by.
for name in $undefined; do
    case $name in
        _Z* | __cxa_* | __gxx_* | _Unwind_* | *alloc* | free*) fail "uses $name" ;;
    esac
done

for section in $(echo "$sections" | grep -oE '^\.(preinit_array|init_array|fini_array|ctors|dtors|init|fini) '); do
    fail "has $section"
done

# Fields after the name: type, address, offset, size, entry size, flags. These three are read-only once loaded.
for section in $(echo "$sections" | awk '$5 !~ /^0+$/ && $7 ~ /W/ { print $1 }'); do
    case $section in
        .dynamic | .got | .data.rel.ro) ;;
        *) fail "has writable $section" ;;
    esac
done

echo "$segments" | grep -q GNU_RELRO || fail 'has no GNU_RELRO'
echo "$dynamic" | grep -qE '\(FLAGS.*(BIND_)?NOW' || fail 'binds lazily'
# shellcheck disable=SC2016 # the linker writes a dollar sign
echo "$dynamic" | grep -q 'RUNPATH.*\[\$ORIGIN\]' || fail 'has no RUNPATH $ORIGIN'
exit $failed
