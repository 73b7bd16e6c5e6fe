#!/usr/bin/env bash
# Formatter and linter over all sources of ours; changes nothing.
#
#   tools/lint.sh           everything
#   tools/lint.sh format    the formatter only
#
# The linter reads build/compile_commands.json, which the release build leaves.
set -euo pipefail
cd "$(dirname "$0")/.."

for tool in clang-format clang-tidy; do
    command -v "$tool" >/dev/null || { echo "lint: $tool is missing; tools/install-packages.sh installs it" >&2; exit 2; }
done

echo "== Formatter"
git ls-files '*.h' '*.cpp' | xargs clang-format --dry-run --Werror

[ "${1:-}" = format ] && exit 0
[ -f build/compile_commands.json ] || { echo "lint: build first (cmake --preset release)" >&2; exit 2; }

echo "== Linter"
git ls-files 'src/*.cpp' 'quarnelchess/*.cpp' 'tools/*.cpp' | xargs -P 2 -n 4 clang-tidy --quiet -p build \
    --extra-arg=-Wno-unknown-warning-option --extra-arg=-Wno-ignored-optimization-argument 2>/dev/null
echo "clean"
