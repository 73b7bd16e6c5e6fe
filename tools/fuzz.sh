#!/usr/bin/env bash
# Tries what reads bytes from outside with bytes that nobody would think of.
#
#   tools/fuzz.sh [SECONDS [TARGET ...]]        600 seconds for each of all targets
#
# What is found on the way is kept in build-fuzz/found, what breaks something in build-fuzz/faults; a sample of that
# belongs into tests/fuzz/samples.
set -euo pipefail
cd "$(dirname "$0")/.."

seconds=${1:-600}
shift || true
targets=("$@")
if [ ${#targets[@]} -eq 0 ]; then
    for folder in tests/fuzz/samples/*/; do targets+=("$(basename "$folder")"); done
fi
command -v clang++ >/dev/null || { echo "tools/fuzz.sh needs clang (Debian: clang)." >&2; exit 2; }

cmake --preset fuzz >/dev/null
cmake --build --preset fuzz --target fuzz
for target in "${targets[@]}"; do
    [ -d "tests/fuzz/samples/$target" ] || { echo "There is no target \"$target\"." >&2; exit 2; }
    mkdir -p "build-fuzz/found/$target" build-fuzz/faults
    echo "== $target, $seconds seconds"
    QUARNEL_FUZZ_TARGET=$target build-fuzz/tests/fuzz/fuzz -max_total_time="$seconds" -timeout=20 -rss_limit_mb=2048 \
        -artifact_prefix="build-fuzz/faults/$target-" -print_final_stats=1 \
        "build-fuzz/found/$target" "tests/fuzz/samples/$target" 2>&1 | grep -E "^stat::number|ERROR|SUMMARY|does not hold|Test unit" || true
done
if [ -n "$(ls build-fuzz/faults)" ]; then
    echo "Faults were found:" && ls build-fuzz/faults
    exit 1
fi
