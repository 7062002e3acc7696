#!/usr/bin/env bash
# Every function that a shared library exports has an entry in the reference and a line in its table.
# usage: documented.sh LIBRARY TAG_FILE TABLE
set -euo pipefail
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

nm -D --defined-only --format=posix "$1" | cut -d ' ' -f 1 | sort > "$work/exported"
grep -oE '<name>okp[A-Za-z0-9_]+</name>' "$2" | sed 's/<[^>]*>//g' | sort -u > "$work/entries"
grep -oE '^\| okp[A-Za-z0-9_]+\(\)' "$3" | tr -d '|() ' | sort -u > "$work/lines"
for place in entries lines; do
    comm -23 "$work/exported" "$work/$place" > "$work/missing"
    [ ! -s "$work/missing" ] || {
        echo "exported by $1, but not among the reference's $place:"
        cat "$work/missing"
        exit 1
    }
done
