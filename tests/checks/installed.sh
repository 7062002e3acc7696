#!/usr/bin/env bash
# Programs outside the repository compile and run against an installed tree: through pkg-config, through
# CMake's package, with the shared and with the static libraries.
# usage: installed.sh PREFIX [README]
set -euo pipefail
outside=$(cd "$(dirname -- "${BASH_SOURCE[0]}")" && pwd)/outside
prefix=$(realpath -- "$1")
readme=${2:+$(realpath -- "$2")}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"

config=$(find "$prefix" -name okpcv.pc)
libraries=$(dirname "$(dirname "$config")")
export PKG_CONFIG_PATH=$libraries/pkgconfig LD_LIBRARY_PATH=$libraries
warnings='-Wall -Wextra -Wpedantic -Werror'

# shellcheck disable=SC2046,SC2086 # lists of words
{
    cc -std=c99 $warnings "$outside/program.c" $(pkg-config --cflags --libs okpcv) -o c
    c++ -std=c++20 $warnings "$outside/program.cpp" $(pkg-config --cflags --libs okpcv) -o cpp
    cc -std=c99 $warnings "$outside/cache.c" $(pkg-config --cflags --libs okpcore) -o cache
    cc -std=c99 -static "$outside/program.c" $(pkg-config --static --cflags --libs okpcv) -o static
}
for program in c cpp cache static; do "./$program"; done

# The first program that users see.
if [ "$readme" ]; then
    sed -n '/^```c$/,/^```$/p' "$readme" | sed '1d;$d' > readme.c
    # shellcheck disable=SC2046 # a list of words
    cc readme.c $(pkg-config --cflags --libs okpcv) -o readme
    ./readme
fi

unset LD_LIBRARY_PATH
cmake -S "$outside" -B build -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_C_FLAGS="$warnings" -DCMAKE_CXX_FLAGS="$warnings" \
    > log || { cat log; exit 1; }
cmake --build build > log || { cat log; exit 1; }
ctest --test-dir build --no-tests=error --output-on-failure

# Nothing in the tree says where it was built or installed.
! grep -rlF -e "$prefix" -e "$(cd "$outside/../../.." && pwd)" "$prefix/include" "$libraries/cmake" \
    "$libraries/pkgconfig" || { echo 'names a place of the build'; exit 1; }
