#!/usr/bin/env bash
# Every public header compiles by itself without a warning: C headers as C99 and as C++17, the C++ one as C++20.
# usage: headers.sh INCLUDE_DIR COMPILER
set -euo pipefail
cd "$1"
for header in *.h okpcv/*.h *.hpp; do
    languages=('c -std=c99' 'c++ -std=c++17')
    [[ $header == *.hpp ]] && languages=('c++ -std=c++20')
    for language in "${languages[@]}"; do
        # shellcheck disable=SC2086 # two words on purpose
        echo "#include \"$header\"" | "$2" -x $language -I. -Wall -Wextra -Wpedantic -Werror -fsyntax-only - || {
            echo "$header does not compile by itself as ${language#*=}"
            exit 1
        }
    done
done
