#!/usr/bin/env bash
# Measures what each feature of the search is worth: the engine of a commit against the same with a few margins changed.
#
#   tools/match/try-variants.sh REVISION [NAME...]
#
# plays every variant of tools/match/variants.txt, or those named, and prints a table row for each. The score is the
# variant's, so a feature that is worth having shows in a variant without it losing. Finished matches are kept in
# build/variants and not played again. GAMES (1000), NODES (20000) and SPRT (0,10) may be set from outside.
set -euo pipefail
cd "$(dirname "$0")/../.."

[ $# -ge 1 ] || { echo "usage: tools/match/try-variants.sh REVISION [NAME...]" >&2; exit 2; }
revision=$1
shift
variants=tools/match/variants.txt
[ $# -gt 0 ] || set -- $(sed -n 's/^\(no-[^ ]*\) .*/\1/p' "$variants")
match=build/tools/match/quarnel-match
[ -x "$match" ] || { echo "Build first: cmake --preset release && cmake --build --preset release" >&2; exit 2; }

nodes=${NODES:-20000}
games=${GAMES:-1000}
mkdir -p build/variants
base=$(tools/match/build-edition.sh "$revision")
echo "| variant | wins-draws-losses | score, 95 % interval | Elo 0 or ${SPRT:-0,10} |"
echo "|---|---|---|---|"
for name; do
    read -ra margins < <(sed -n "s/^$name //p" "$variants") ||
        { echo "There is no variant \"$name\" in $variants." >&2; exit 2; }
    variant=$(tools/match/build-edition.sh "$revision" build/editions "$name" "${margins[@]}")
    log=build/variants/$name-$revision-$nodes.txt
    "$match" --player name=variant "cmd=$variant" --player name=base "cmd=$base" --both "nodes=$nodes" \
        option.Hash=16 --games "$games" --sprt "${SPRT:-0,10}" --journal "$log.journal" >"$log"
    awk -v name="$name" '
        / games$/ { gsub(/[^0-9 ]/, ""); split($0, n, " "); wins = n[1]; draws = n[2]; losses = n[3] }
        /^score/ { sub(/^score /, ""); sub(/, Elo.*/, ""); score = $0 }
        /^sequential/ { verdict = $NF }
        END { printf "| %s | %d-%d-%d | %s | %s |\n", name, wins, draws, losses, score, verdict }' "$log"
done
