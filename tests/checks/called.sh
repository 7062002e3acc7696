#!/usr/bin/env bash
# Every function that a shared library exports is called by one of the given programs.
# usage: called.sh LIBRARY PROGRAM...
set -euo pipefail
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

library=$1
shift
nm -D --defined-only --format=posix "$library" | cut -d ' ' -f 1 | sort > "$work/exported"
nm -D --undefined-only --format=posix "$@" | cut -d ' ' -f 1 | sort -u > "$work/called"
comm -23 "$work/exported" "$work/called" > "$work/missing"
[ ! -s "$work/missing" ] || {
    echo "not called by $*:"
    cat "$work/missing"
    exit 1
}
