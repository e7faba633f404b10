#!/usr/bin/env bash
# Shows the program on a virtual display: writes a notlet through real key presses, saves it, and prints
# what the store then holds and where the screenshot lies.
#
# usage: show.sh DIRECTORY_OF_THE_PROGRAMS
set -euo pipefail

programs=$(cd "$1" && pwd)
home=$(mktemp -d "${TMPDIR:-/tmp}/notlet-show.XXXXXX")
picture=$home/notlet.png
children=()

# Ends what was started here, the newest first.
finish() {
  local index
  for ((index = ${#children[@]} - 1; index >= 0; index--)); do
    kill "${children[index]}" 2>/dev/null && wait "${children[index]}" 2>/dev/null
  done
  return 0
}
trap finish EXIT

# Waits up to twenty seconds for a command to succeed.
await() {
  local what=$1 tries
  shift
  for ((tries = 0; tries < 200; tries++)); do
    "$@" >/dev/null 2>&1 && return 0
    sleep 0.1
  done
  printf 'show: waited in vain for %s\n' "$what" >&2
  exit 1
}

unset WAYLAND_DISPLAY DBUS_SESSION_BUS_ADDRESS
export HOME=$home XDG_RUNTIME_DIR=$home/run XDG_DATA_HOME=$home/data XDG_STATE_HOME=$home/state
export XDG_CONFIG_HOME=$home/.config QT_QPA_PLATFORM=xcb LC_ALL=C.UTF-8
mkdir -m 0700 "$XDG_RUNTIME_DIR"

# The X server picks a free display and writes its number.
Xvfb -displayfd 3 -screen 0 1280x800x24 -nolisten tcp -dpi 96 3>"$home/display" 2>"$home/xvfb.log" &
children+=($!)
await "the X server" test -s "$home/display"
DISPLAY=:$(cat "$home/display")
export DISPLAY
openbox >"$home/openbox.log" 2>&1 &
children+=($!)
await "the window manager" sh -c 'xprop -root _NET_SUPPORTING_WM_CHECK | grep -q "window id"'

"$programs/notlet-desktop" >"$home/notlet.log" 2>&1 &
children+=($!)
await "the window of Notlet" xdotool search --onlyvisible --name '^Notlet$'
window=$(xdotool search --onlyvisible --name '^Notlet$' | head -n 1)
await "the focus" sh -c "[ \"\$(xdotool getactivewindow)\" = $window ]"

saved() { [ "$("$programs/notlet" list | grep -c "$1")" -eq 1 ]; }

echo "Typing a notlet, with Shift and Return for a second line, and saving it with Return."
xdotool type --delay 12 'Call Anna about the printer #work'
xdotool key shift+Return
xdotool type --delay 12 'Room 4, before noon'
xdotool key Return
await "the notlet in the store" saved 'Call Anna'
xdotool type --delay 12 'Bring the blue folder #wo'
sleep 0.5
import -silent -window root "$picture"

echo
echo "The store now holds:"
"$programs/notlet" list
echo
echo "Screenshot: $picture"
