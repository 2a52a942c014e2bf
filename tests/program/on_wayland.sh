#!/usr/bin/env bash
# The program on a Wayland display, with a user's keys, which come to it through the compositor:
# on_wayland.sh FENNELBRIGHT
set -euo pipefail
program=$1
scratch=$(mktemp -d)
compositor=
trap '[ -z "$compositor" ] || kill "$compositor"; wait; rm -rf "$scratch"' EXIT

fail() { echo "$*"; exit 1; }

# The compositor will not run as root.
as_user=()
[ "$(id -u)" -ne 0 ] || as_user=(setpriv --reuid=65534 --regid=65534 --clear-groups)
chmod 777 "$scratch"
unset DISPLAY WAYLAND_DISPLAY SWAYSOCK QT_QPA_PLATFORM
export HOME=$scratch XDG_RUNTIME_DIR=$scratch
export WLR_BACKENDS=headless WLR_RENDERER=pixman WLR_LIBINPUT_NO_DEVICES=1
mkfifo -m 666 "$scratch/started"
cat >"$scratch/config" <<CONFIG
xwayland disable
exec echo \$WAYLAND_DISPLAY \$SWAYSOCK >$scratch/started
CONFIG
"${as_user[@]}" sway -c "$scratch/config" 2>/dev/null &
compositor=$!
read -r WAYLAND_DISPLAY SWAYSOCK <"$scratch/started"
export WAYLAND_DISPLAY SWAYSOCK

# What the toolkit's plugin never gives back is not the program's, and cannot be named: it is unloaded
# at the end.
export ASAN_OPTIONS=detect_leaks=0

# Waits for as many windows of this name, 1 or 0.
windows() {
  for _ in {1..100}; do
    [ "$(swaymsg -r -t get_tree | grep -c "\"name\": \".*$1")" -eq "$2" ] && return
    sleep 0.1
  done
  return 1
}

# Presses keys, with pauses; Shift+Tab is one of them.
press() {
  local words=(-s 500)
  for key in "$@"; do
    [ "$key" = ShiftTab ] && words+=(-M shift -k Tab -m shift) || words+=(-k "$key")
    words+=(-s "$pause")
  done
  wtype "${words[@]}"
}

mask() { od -An -tx4 -N4 "$device/files/Program Files/Fennelbright/settings.dat" | tr -d ' '; }

# Unticks the first box, applies, and ends the program by its OK.
clean() {
  windows device 1 && press Tab space F10 Right Up Return &&
    windows "Cleaning Finished" 1 && press Return && windows "Cleaning Finished" 0 &&
    windows "Restart Required" 1 && press Return && windows "Restart Required" 0 &&
    press ShiftTab Return && windows device 0
}

for pause in 200 1000; do
  device=$scratch/device
  rm -rf "$device"
  "$program" --new-device "$device" >/dev/null
  before=$(mask)
  "$program" --device "$device" --scale 2 &
  running=$!
  clean && break
  kill -TERM "$running"
  wait "$running"
done
wait "$running" || fail "the program did not end well"
[ $((0x$before ^ 0x$(mask))) -eq 1 ] || fail "the tick is not in the settings: $before, then $(mask)"
[ -z "$(find "$device/files/Temp" -type f)" ] || fail "\\Temp is not clean"
[ -n "$(find "$device/files/Program Files/Reader/Cache" -type f)" ] || fail "more went than was ticked"
