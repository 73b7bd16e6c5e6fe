#!/usr/bin/env bash
# Builds the engine of any commit as an opponent for matches. The checkout is left alone.
#
#   tools/match/build-edition.sh REVISION [FOLDER [PATCH]]
#
# leaves FOLDER/REVISION/quarnel-uci and prints its path; with a patch laid over the commit,
# FOLDER/REVISION+NAME/quarnel-uci, NAME being the patch's. FOLDER counts from the top of the repository and is
# build/editions if left out; a slash in the revision becomes a dash. What is up to date is not built again.
#
# Editions from before the engine spoke to other interfaces, such as b2689df, get the interface
# program of a later commit, which their search can serve.
set -euo pipefail
cd "$(dirname "$0")/../.."

InterfaceCommit=9f94c80

[ $# -ge 1 ] && [ $# -le 3 ] || { echo "usage: tools/match/build-edition.sh REVISION [FOLDER [PATCH]]" >&2; exit 2; }
revision=$1
commit=$(git rev-parse --verify --quiet "$revision^{commit}") || { echo "There is no revision \"$revision\"." >&2; exit 2; }
edition=${2:-build/editions}/${revision//\//-}
patch=${3:-}
if [ -n "$patch" ]; then
    [ -f "$patch" ] || { echo "There is no patch \"$patch\"." >&2; exit 2; }
    edition+=+$(basename "$patch" .patch)
    commit+=" $(sha256sum <"$patch")"
fi
if [ -x "$edition/quarnel-uci" ] && [ "$(cat "$edition/commit" 2>/dev/null)" = "$commit" ]; then
    echo "$edition/quarnel-uci"
    exit
fi

source=$edition/source
rm -rf "$edition/quarnel-uci" "$source" "$edition/build"
mkdir -p "$source"
git archive "${commit%% *}" | tar -x -C "$source"
if [ ! -d "$source/quarnelchess/uci" ]; then
    git archive "$InterfaceCommit" quarnelchess/uci | tar -x -C "$source"
    echo 'add_subdirectory(uci)' >>"$source/quarnelchess/CMakeLists.txt"
fi

[ -z "$patch" ] || patch --quiet --strip=1 --directory="$source" <"$patch" ||
    { echo "The patch \"$patch\" does not fit revision \"$revision\"." >&2; exit 1; }

log=$edition/build.log
{
    cmake -S "$source" -B "$edition/build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DQUARNEL_DESKTOP=OFF \
        -DQUARNEL_TESTS=OFF -DQUARNEL_BENCH=OFF -DQUARNEL_TOOLS=OFF &&
        cmake --build "$edition/build" --target quarnel-uci --parallel 2
} >"$log" 2>&1 || { tail -n 30 "$log" >&2; exit 1; }
cp "$edition/build/quarnel-uci" "$edition/quarnel-uci"
echo "$commit" >"$edition/commit"
rm -rf "$source" "$edition/build"
echo "$edition/quarnel-uci"
