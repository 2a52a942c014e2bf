#!/usr/bin/env bash
# The program on a real display, with a user's mouse: on_a_display.sh FENNELBRIGHT
set -euo pipefail
program=$1
scratch=$(mktemp -d)
display_process=
trap '[ -z "$display_process" ] || kill "$display_process"; rm -rf "$scratch"' EXIT

fail() { echo "$*"; exit 1; }

mkfifo "$scratch/number"
Xvfb -displayfd 3 -screen 0 1280x900x24 3>"$scratch/number" 2>/dev/null &
display_process=$!
read -r number <"$scratch/number"
export DISPLAY=:$number
unset WAYLAND_DISPLAY QT_QPA_PLATFORM

# What a library of the toolkit never gives back is not the program's.
echo 'leak:libdbus' >"$scratch/known-leaks"
export LSAN_OPTIONS=suppressions=$scratch/known-leaks

"$program" --new-device "$scratch/device" >/dev/null
settings="$scratch/device/files/Program Files/Fennelbright/settings.dat"
before=$(od -An -tx4 -N4 "$settings")

"$program" --device "$scratch/device" --scale 2 &
running=$!
window=$(xdotool search --sync --onlyvisible --name "$scratch/device" | tail -n 1)
xdotool mousemove --window "$window" 30 82 click 1
xdotool mousemove --window "$window" 440 26 click 1
wait "$running" || fail "the program did not end well"
after=$(od -An -tx4 -N4 "$settings")
[ $((0x${before// /} ^ 0x${after// /})) -eq 1 ] || fail "the tick is not in the settings: $before, then$after"

"$program" --device "$scratch/device" --scale 1 &
running=$!
xdotool search --sync --onlyvisible --name "$scratch/device" >/dev/null
kill -TERM "$running"
wait "$running" || fail "the program did not end well when it was asked to"
[ "$(od -An -tx4 -N4 "$settings")" = "$after" ] || fail "the settings have changed"
