#!/usr/bin/env bash
# Installs the Debian packages that building, running and testing need; what is there is left alone.
#
#   tools/install-packages.sh program  what the program needs, to be built and to run on a display
#   tools/install-packages.sh demo     and a display where there is none, with a hand that plays on it
#   tools/install-packages.sh          and what tests, benchmarks and the linter need (./test)
set -euo pipefail

wanted=(
    build-essential         # compiler and linker
    cmake ninja-build       # the build
    qt6-base-dev libxcb1-dev # the desktop
    libpng-dev              # embedding the pictures, screenshots
    fonts-liberation fonts-dejavu-core fonts-dejavu-extra # the program's fonts
)
show=(
    xvfb openbox xauth      # a display where there is none
    libx11-dev libxdo-dev # driving a window by real events
)
check=(
    libgtest-dev libgmock-dev libbenchmark-dev # tests and benchmarks
    libcli11-dev            # command lines of the engine's workshop
    clang-format clang-tidy # formatter and linter
    pgn-extract             # a reader of others for the games we write
)
case ${1:-all} in
    program) ;;
    demo) wanted+=("${show[@]}") ;;
    *) wanted+=("${show[@]}" "${check[@]}") ;;
esac

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
