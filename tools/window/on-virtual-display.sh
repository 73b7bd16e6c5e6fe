#!/usr/bin/env bash
# Runs a command on a display in memory, with a window manager and an empty home of its own.
#
#   tools/window/on-virtual-display.sh COMMAND [ARGUMENT...]
#
# Display, manager and home end with the command, and however this script ends.
set -euo pipefail

for program in Xvfb openbox setpriv; do
    command -v $program >/dev/null || { echo "$program is missing; tools/install-packages.sh installs it" >&2; exit 2; }
done
home=$(mktemp -d)
trap 'kill $(jobs -p) 2>/dev/null; rm -rf "$home"' EXIT
trap 'exit 1' HUP INT TERM
mkfifo "$home/number" "$home/ready"

# What would lead a program to another display or to its user's settings is taken away.
unset WAYLAND_DISPLAY XAUTHORITY SESSION_MANAGER DESKTOP_SESSION XDG_CURRENT_DESKTOP
unset QT_SCALE_FACTOR QT_SCREEN_SCALE_FACTORS QT_QPA_PLATFORMTHEME QT_STYLE_OVERRIDE
export HOME=$home XDG_CONFIG_HOME=$home/config XDG_CACHE_HOME=$home/cache XDG_DATA_HOME=$home/data
export XDG_STATE_HOME=$home/state XDG_RUNTIME_DIR=$home QT_QPA_PLATFORM=xcb QUARNEL_VIRTUAL_DISPLAY=yes

# The server says its number once it listens; the manager opens its own once it takes windows into its care. A key does
# not repeat itself, however long a busy machine takes to let go of it.
setpriv --pdeathsig KILL Xvfb -r -displayfd 3 -screen 0 1280x1024x24 -nolisten tcp -noreset -dpi 96 3>"$home/number" &
read -r number <"$home/number"
export DISPLAY=:$number
setpriv --pdeathsig KILL openbox --sm-disable --config-file "$(realpath "$(dirname "$0")")/openbox.xml" \
    --startup "cp /dev/null $home/ready" >/dev/null 2>&1 &
timeout 60 cat "$home/ready"

"$@"
