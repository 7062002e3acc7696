#!/usr/bin/env bash
# What a shared library brings into a process: only the libraries and writable sections that are named, and
# no code that runs by itself.
# usage: linkage.sh LIBRARY 'NEEDED_LIBRARY...' 'WRITABLE_SECTION...'
set -euo pipefail
library=$1
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
    case " $2 " in
        *" $needed "*) ;;
        *) fail "needs $needed" ;;
    esac
done

# Names of the C++ runtime, of the unwinder and of allocation: a statically linked or weak one might slip by.
for name in $undefined; do
    case $name in
        _Z* | __cxa_* | __gxx_* | _Unwind_* | *alloc* | free*) fail "uses $name" ;;
    esac
done

starters='preinit_array|init_array|fini_array|ctors|dtors|init|fini'
for section in $(grep -oE "^\.($starters) " <<< "$sections" || true); do
    fail "has $section"
done

# Fields after the name: type, address, offset, size, entry size, flags.
for section in $(echo "$sections" | awk '$5 !~ /^0+$/ && $7 ~ /W/ { print $1 }'); do
    case " $3 " in
        *" $section "*) ;;
        *) fail "has writable $section" ;;
    esac
done

grep -q GNU_RELRO <<< "$segments" || fail 'has no GNU_RELRO'
grep -qE '\(FLAGS.*(BIND_)?NOW' <<< "$dynamic" || fail 'binds lazily'
# shellcheck disable=SC2016 # the linker writes a dollar sign
grep -q 'RUNPATH.*\[\$ORIGIN\]' <<< "$dynamic" || fail 'has no RUNPATH $ORIGIN'
exit $failed
