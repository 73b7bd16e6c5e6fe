#!/usr/bin/env bash
# Holds our PGN to pgn-extract, a reader of others: it takes 200 games of the engine, reads the same moves in them, and
# refuses a move that cannot be; and what it writes comes back as the records that we began with.
#
#   pgn-extract.sh QUARNEL-RECORD PLAY-ENGINE-GAMES
set -euo pipefail
record=$1
PATH=$PATH:/usr/games
command -v pgn-extract >/dev/null || { echo "pgn-extract is missing; tools/install-packages.sh installs it"; exit 77; }
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"

"$2" records 200
"$record" pgn records/*.txt >ours.pgn
"$record" list --moves ours.pgn >moves

pgn-extract -r ours.pgn 2>log >/dev/null
tail -n 1 log | grep -Fx "200 games matched out of 200."

# Our long moves as that program writes them: e7e8Q, and the king's squares for castling.
awk -F'\t' '$1 != "" { if (NR > 1) print ""; next }
    { rank = $2 % 2 ? 1 : 8; move = $4
      if (move == "o-o") move = "e" rank "g" rank
      if (move == "o-o-o") move = "e" rank "c" rank
      gsub(/[-x=]/, "", move); printf "%s ", move } END { print "" }' moves >ours.long
pgn-extract -s -Wuci --notags --noresults ours.pgn | sed '/^$/d; s/ *$/ /' >theirs.long
cmp ours.long theirs.long
echo "$(wc -w <ours.long) moves are the same"

pgn-extract -s ours.pgn >theirs.pgn
"$record" record --into=. theirs.pgn
for file in records/*.txt; do cmp "$file" "theirs-$((10#$(basename "$file" .txt) - 999)).txt"; done
echo "all records come back"

printf '1. e4 e5 2. Nf3 Nc6 3. Bd5 *\n' >illegal.pgn
! "$record" pgn illegal.pgn 2>refused
grep -F 'illegal.pgn:1: "Bd5" is no legal move of White' refused
pgn-extract -r illegal.pgn 2>log >/dev/null
grep "0 games matched out of 1" log
