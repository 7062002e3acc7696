#!/usr/bin/env bash
# Every function that a shared library exports is named in some file below a directory.
# usage: named.sh LIBRARY DIRECTORY
set -euo pipefail
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

nm -D --defined-only --format=posix "$1" | cut -d ' ' -f 1 | sort > "$work/exported"
grep -rhoE '\<okp[A-Za-z0-9_]+' "$2" | sort -u > "$work/named"
comm -23 "$work/exported" "$work/named" > "$work/missing"
[ ! -s "$work/missing" ] || {
    echo "not named below $2:"
    cat "$work/missing"
    exit 1
}
