#!/usr/bin/env bash
# Installs the Debian packages that building, running and testing need; what is there is left alone.
#
#   tools/install-packages.sh          everything (./test)
#   tools/install-packages.sh program  without what only the tests need (./run)
set -euo pipefail

build=(
    build-essential         # compiler and linker
    cmake ninja-build       # the build
    qt6-base-dev            # the desktop
    libpng-dev              # embedding the pictures, screenshots
    libx11-dev libxext-dev libxtst-dev # driving a window by real events
)
show=(
    fonts-liberation fonts-dejavu-core fonts-dejavu-extra # the program's fonts
    xvfb openbox xauth      # a display where there is none
)
check=(
    libgtest-dev libgmock-dev libbenchmark-dev # tests and benchmarks
    libcli11-dev            # command lines of the engine's workshop
    clang-format clang-tidy # formatter and linter
)

wanted=("${build[@]}" "${show[@]}")
[ "${1:-}" = program ] || wanted+=("${check[@]}")

command -v dpkg-query >/dev/null || {
    echo "This is no Debian system: please install the equivalents of: ${wanted[*]}" >&2
    exit 0
}
missing=()
for package in "${wanted[@]}"; do
    state=$(dpkg-query -W -f='${Status}' "$package" 2>/dev/null || true)
    [ "$state" = "install ok installed" ] || missing+=("$package")
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "Installing: ${missing[*]}"
as_root=()
if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || { echo "Not root, and no sudo here. Please install: ${missing[*]}" >&2; exit 1; }
    as_root=(sudo)
fi
log=$(mktemp)
trap 'rm -f "$log"' EXIT
install() { "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends "${missing[@]}"; }
{ "${as_root[@]}" apt-get update && install; } >"$log" 2>&1 || {
    tail -n 20 "$log" >&2
    echo "The packages above could not be installed." >&2
    exit 1
}
