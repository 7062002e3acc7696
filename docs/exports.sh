#!/usr/bin/env bash
# The table of all functions, as Markdown, from the headers.
# usage: exports.sh HEADER... > exports.md
set -euo pipefail
count=$(grep -h '^OKPCV_API' "$@" | wc -l)
cat <<TEXT
# All functions {#exports}

$count functions, each with the sentence that its documentation begins with. [The grammar of the names](@ref names)
says what a name means.
TEXT
# A comment's brief is remembered until the declaration that follows it.
awk '
    /@defgroup/ {
        title = $0
        sub(/^.*@defgroup [^ ]* /, "", title)
        group = $3
        shown = 0
    }
    /^\/\*\*/ { brief = ""; inside = 0 }
    /@brief/ { brief = $0; sub(/^.*@brief /, "", brief); inside = 1; next }
    inside && /^ \* [^@]/ { line = $0; sub(/^ \* /, "", line); brief = brief " " line; next }
    { inside = 0 }
    /^OKPCV_API/ && match($0, /okp[A-Za-z0-9_]+\(/) {
        if (!shown) printf "\n## %s\n\n| function | |\n|---|---|\n", title == "" ? "The library" : title
        shown = 1
        sub(/\|/, "\\|", brief)
        printf "| %s) | %s |\n", substr($0, RSTART, RLENGTH), brief
    }
    /@}/ { title = ""; shown = 0 }
' "$@"
