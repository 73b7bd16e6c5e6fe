#!/bin/sh
# An engine whose every answer is written down in its arguments, one for each ply of the game: a move,
# with its score in centipawns behind a colon if it gives one, or "crash", or "hang", or "tell", which answers with
# what was said of the engine's options, with dashes for blanks.
script="$*"
said=
while read -r command rest; do
    case $command in
    uci | isready)
        [ $command = isready ] || echo "option name Odd Book type check default true"
        echo "${command#is}ok"
        ;;
    setoption) said="$said $rest" ;;
    position) moves=${rest#startpos} ;;
    go)
        set -- ${moves#*moves}
        plies=$#
        set -- $script
        shift $plies
        case $1 in
        crash) exit 3 ;;
        hang) exec sleep 1000 ;;
        tell) set -- "$(echo $said | tr ' ' -)" ;;
        *:*) echo "info depth 1 score cp ${1#*:} pv ${1%:*}" ;;
        esac
        echo "bestmove ${1%:*}"
        ;;
    esac
done
