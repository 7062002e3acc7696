#!/usr/bin/env bash
# A project outside the repository includes it as a subdirectory, and only gains its targets.
# usage: embedded.sh REPOSITORY
set -euo pipefail
outside=$(cd "$(dirname -- "${BASH_SOURCE[0]}")" && pwd)/outside
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

cmake -S "$outside" -B "$work" -DOKPCV_SOURCE="$1" > "$work/log" || { cat "$work/log"; exit 1; }
# Building would compile the library once more; that it has targets and leaves no trace is what is to be seen.
cmake --build "$work" --target help > "$work/targets"
grep -q 'okpcv_static$' "$work/targets"
! grep -E '_test$|okpcv_bench|gallery|package' "$work/targets" || exit 1
cmake --install "$work" --prefix "$work/installed" >> "$work/log"
[ ! -e "$work/installed" ] || { find "$work/installed"; exit 1; }
