#!/usr/bin/env bash
# A shared library exports exactly the functions that headers declare, no more and no fewer.
# usage: exports.sh LIBRARY COMPILER INCLUDE_DIR HEADER_PATTERN
set -euo pipefail
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

nm -D --defined-only --format=posix "$1" | cut -d ' ' -f 1 | sort > "$work/exported"
cd "$3"
# The compiler's preprocessor is what removes comments and unfolds macros.
for header in $4; do echo "#include \"$header\""; done | "$2" -x c -E -P -I. - |
    grep -oE '\<okp[A-Za-z0-9_]+ *\(' | tr -d ' (' | sort -u > "$work/declared"

[ -s "$work/declared" ] || { echo "no function found in $4"; exit 1; }
diff -U 0 "$work/declared" "$work/exported" > "$work/differences" || {
    echo "declared in $4 but not exported (-), exported but not declared (+):"
    grep '^[-+][^-+]' "$work/differences"
    exit 1
}
echo "$(wc -l < "$work/exported") functions"
