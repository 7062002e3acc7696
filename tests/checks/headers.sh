#!/usr/bin/env bash
# Every public header compiles by itself, as C99 and as C++17, without a warning.
# usage: headers.sh INCLUDE_DIR COMPILER
set -euo pipefail
cd "$1"
for header in *.h okpcv/*.h; do
    for language in 'c -std=c99' 'c++ -std=c++17'; do
        # shellcheck disable=SC2086 # two words on purpose
        echo "#include \"$header\"" | "$2" -x $language -I. -Wall -Wextra -Wpedantic -Werror -fsyntax-only - || {
            echo "$header does not compile by itself as ${language#*=}"
            exit 1
        }
    done
done
