#!/usr/bin/env bash
# Builds the engine of any commit as an opponent for matches. The checkout is left alone.
#
#   tools/match/build-edition.sh REVISION [FOLDER [NAME MARGIN=VALUE...]]
#
# leaves FOLDER/REVISION/quarnel-uci and prints its path; with other numbers than the commit's for margins of the search,
# FOLDER/REVISION+NAME/quarnel-uci. FOLDER counts from the top of the repository and is build/editions if left out; a
# slash in the revision becomes a dash. What is up to date is not built again.
#
# Editions from before the engine spoke to other interfaces, such as b2689df, get the interface
# program of a later commit, which their search can serve.
set -euo pipefail
cd "$(dirname "$0")/../.."

InterfaceCommit=9f94c80

[ $# -eq 1 ] || [ $# -eq 2 ] || [ $# -ge 4 ] ||
    { echo "usage: tools/match/build-edition.sh REVISION [FOLDER [NAME MARGIN=VALUE...]]" >&2; exit 2; }
revision=$1
commit=$(git rev-parse --verify --quiet "$revision^{commit}") || { echo "There is no revision \"$revision\"." >&2; exit 2; }
edition=${2:-build/editions}/${revision//\//-}
margins=("${@:4}")
if [ ${#margins[@]} -gt 0 ]; then
    edition+=+$3
    commit+=" ${margins[*]}"
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

numbers=$source/quarnelchess/search/Margins.h
for margin in ${margins[@]+"${margins[@]}"}; do
    grep -q " ${margin%%=*} = " "$numbers" || { echo "Revision \"$revision\" has no margin \"$margin\"." >&2; exit 2; }
    sed -i "s|\( ${margin%%=*} = \)[^;]*;|\1${margin#*=};|" "$numbers"
done

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
