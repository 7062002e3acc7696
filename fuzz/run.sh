#!/usr/bin/env bash
# One fuzzer for a while, quietly; its whole output when it finds something.
# usage: run.sh FUZZER SECONDS
set -euo pipefail
place=build/fuzz/${1%_fuzz}
mkdir -p "$place/corpus"
build/asan/fuzz/"$1" -rss_limit_mb=1024 -max_total_time="$2" -max_len=400 -timeout=20 -print_final_stats=1 -verbosity=1 \
    -artifact_prefix="$place/" "$place/corpus" > "$place/log" 2>&1 || {
    cat "$place/log"
    # xargs stops at this status.
    exit 255
}
echo "$1: $(sed -n 's/^stat::number_of_executed_units: *//p' "$place/log") calls in $2 s"
