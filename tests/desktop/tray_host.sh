#!/usr/bin/env bash
# tray_host.sh QUARN-DESKTOP QUARN: status items in a real tray. Starts a display and a tray of its own and looks
# at which windows the tray took in while the settings change.
set -euo pipefail
desktop=$1 quarn=$2
folder=$(mktemp -d)
export LC_ALL=C.UTF-8 # xwininfo prints titles in the characters of the locale
export XDG_CONFIG_HOME=$folder XDG_DATA_HOME=$folder XDG_RUNTIME_DIR=$folder QT_QPA_PLATFORM=xcb
export DBUS_SESSION_BUS_ADDRESS=unix:path=$folder/none # so that items dock in the tray's window
trap 'kill $(jobs -p) 2>/dev/null; wait; rm -rf "$folder"' EXIT

mkfifo "$folder/display"
Xvfb -screen 0 1280x1024x24 -displayfd 3 3>"$folder/display" >/dev/null 2>&1 &
read -r number <"$folder/display"
export DISPLAY=:$number

# eventually WHAT COMMAND …: tries for 30 seconds.
eventually() {
  local what=$1 try
  shift
  for try in $(seq 300); do
    "$@" && return 0
    read -rt 0.1 <> <(:) || true # a pause
  done
  echo "not seen: $what" >&2
  xwininfo -root -tree >&2
  return 1
}
windows() { xwininfo -root -tree; }
# Windows of Quarn within the tray's panel are indented below it; the others are children of the root.
docked() { windows | awk '/"trayer"/ { panel = 1; next } /^     0x/ { panel = 0 } panel && /"quarn-desktop"/' | wc -l; }
dockedAre() { [ "$(docked)" -eq "$1" ]; }
shows() { windows | grep -q "$1"; }

"$quarn" settings set menuBarDetailed cpu,memory,network
"$desktop" &
program=$!
eventually "the window" shows '"Quarn": ("quarn-desktop"'
dockedAre 0
trayer --edge top --align right --height 24 >/dev/null 2>&1 & # a tray that comes after the program
eventually "three items" dockedAre 3
"$quarn" settings set menuBarDetailed cpu
eventually "one item" dockedAre 1
"$quarn" settings set widgets memory
eventually "a panel" shows "Quarn – Memory"
"$quarn" settings reset widgets
gone() { ! shows "Quarn – Memory"; }
eventually "no panel" gone
"$desktop" # a second start raises the first and ends
dockedAre 1
kill "$program" # as at the end of a session: it ends by itself and keeps the last half hour
wait "$program"
[ -s "$folder/Quarn/live-history.plist" ]
