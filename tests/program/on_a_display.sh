#!/usr/bin/env bash
# The program on a real display, with a user's mouse and keys: on_a_display.sh FENNELBRIGHT CLOSE_REQUEST
set -euo pipefail
program=$1
close_request=$2
scratch=$(mktemp -d)
device=$scratch/device
settings="$device/files/Program Files/Fennelbright/settings.dat"
displays=()
trap 'kill "${displays[@]}" 2>/dev/null; wait "${displays[@]}"; rm -rf "$scratch"' EXIT

fail() { echo "$*"; exit 1; }

mask() { od -An -tx4 -N4 "$settings"; }

# A search can meet a window that is just going.
window_of() {
  until window=$(xdotool search --onlyvisible --name "$1" 2>/dev/null | tail -n 1) && [ -n "$window" ]; do
    sleep 0.05
  done
}

appears() { (window_of "$1"); }

# Starts the program on a device and waits for its window. The other words are options.
start() {
  "$program" --device "${1:-$device}" --scale 2 "${@:2}" &
  running=$!
  window_of "${1:-$device}"
  sleep 0.5  # what is pressed while the toolkit still lays out its window can get lost
}

ended() { wait "$running" || fail "the program did not end well: $*"; }

stop() { kill -TERM "$running"; ended "$@"; }

# Starts a display of this size; the other words are the server's.
open_display() {
  Xvfb -noreset -displayfd 3 -screen 0 "$1x24" "${@:2}" 3>"$scratch/number" 2>/dev/null &
  displays+=($!)
  read -r number <"$scratch/number"
  export DISPLAY=:$number
}

mkfifo "$scratch/number"
unset WAYLAND_DISPLAY QT_QPA_PLATFORM XAUTHORITY
export HOME=$scratch

# What a library of the toolkit never gives back is not the program's.
printf 'leak:%s\n' libdbus libfontconfig QGenericUnixServices >"$scratch/known-leaks"
export LSAN_OPTIONS=suppressions=$scratch/known-leaks ASAN_OPTIONS=fast_unwind_on_malloc=0

"$program" --new-device "$device" >/dev/null
before=$(mask)

# A display that refuses a client without its key is none, and a box is a line there.
printf '\xff\xff\0\0\0\0\0\x12MIT-MAGIC-COOKIE-1\0\x10%016d' 0 >"$scratch/key"
open_display 1280x900 -auth "$scratch/key"
code=0
"$program" --device "$device" 2>"$scratch/errors" || code=$?
[ "$code" -eq 69 ] || fail "a display without its key gave $code"
grep -q "cannot be opened" "$scratch/errors" || fail "$(<"$scratch/errors")"
"$program" --device "$device" --module 'x.exe' silent 2>"$scratch/errors"
grep -q "^\[Error!!!\] Failed" "$scratch/errors" || fail "$(<"$scratch/errors")"

# Where the windows, or what they need, are not installed, it says so.
open_display 1280x900
cp "$program" "$scratch/alone"
for reason in "module is not installed" "apt install libqt6widgets6 "; do
  code=0
  "$scratch/alone" --device "$device" 2>"$scratch/errors" || code=$?
  [ "$code" -eq 69 ] && grep -q "$reason" "$scratch/errors" || fail "$code: $(<"$scratch/errors")"
  echo "no library" >"$scratch/fennelbright-windows.so"
done

# Where no device is named, its user is asked, and makes one.
answer() {
  local window
  window_of "$1"
  xdotool windowfocus --sync "$window"
  xdotool "${@:2}"
}
"$program" &
running=$!
answer "^Choose the handheld" key Escape
ended "when its user cancelled"
"$program" --scale 2 &
running=$!
answer "^Choose the handheld" type "$scratch/mine"
xdotool key Return
answer "^Fennelbright$" key Return  # "Yes"
window_of "$scratch/mine"
stop "on a device that it made"
[ -s "$scratch/mine/registry.reg" ] || fail "no device was made"

# A typeface that is missing is named with its package.
mkdir "$scratch/typefaces"
cp /usr/share/fonts/truetype/dejavu/DejaVuSans.ttf "$scratch/typefaces"
echo "<fontconfig><dir>$scratch/typefaces</dir><cachedir>$scratch/fonts</cachedir></fontconfig>" >"$scratch/fonts.conf"
FONTCONFIG_FILE=$scratch/fonts.conf start 2>"$scratch/errors"
stop "with another typeface"
grep -q "fonts-dejavu-extra" "$scratch/errors" || fail "no typeface is missed: $(<"$scratch/errors")"

# A folder that its user browses for and ticks is cleaned, and no other, at whatever pace.
for pause in 0.3 1 3; do
  rm -f "$scratch/mine/files/Program Files/Fennelbright/settings.dat"
  start "$scratch/mine"
  # "Browse", the sign beside "My Documents", "Personal" below it, "OK", the box beside the path
  for place in "386 118" "36 128" "140 272" "160 558" "30 82"; do
    xdotool mousemove --window "$window" ${place% *} ${place#* } click 1
    sleep "$pause"
  done
  xdotool key F10 Right Up Return
  appears "Cleaning Finished"
  stop "when it was asked to at a box"
  [ -e "$scratch/mine/files/My Documents/Personal/Budget.pxl" ] || break
done
[ ! -e "$scratch/mine/files/My Documents/Personal/Letters/Landlord.psw" ] || fail "not browsed for"
[ -e "$scratch/mine/files/My Documents/Letter.txt" ] || fail "more went than was browsed for"

start
xdotool mousemove --window "$window" 30 82 click 1
xdotool mousemove --window "$window" 440 26 click 1
ended "by its OK"
after=$(mask)
[ $((0x${before// /} ^ 0x${after// /})) -eq 1 ] || fail "the tick is not in the settings: $before, then$after"

start
stop "when it was asked to"
[ "$(mask)" = "$after" ] || fail "the settings have changed"

# A rehearsal says that it is one, and reports what it leaves alone; its screen is lower by the frame.
traces() { find "$device" -printf '%P %s %m %i %T@ %C@\n' | sort; }
traces >"$scratch/traces"
start "$device" --rehearse --report >"$scratch/report"
xdotool search --onlyvisible --name '\(rehearsal\)$' >/dev/null || fail "the window names no rehearsal"
xdotool key F10 Right Up Return
for box in "Cleaning Finished" "Restart Required"; do
  appears "$box"
  xdotool key Return
done
xdotool mousemove --window "$window" 450 66 click 1
ended "after a rehearsal"
grep -q '^step 3: deleted \\Temp\\' "$scratch/report" || fail "nothing is rehearsed: $(<"$scratch/report")"
traces | diff "$scratch/traces" - || fail "the rehearsal has left traces"

# What is tapped before a chosen page is shown does not go to the page that is left.
start
kill -STOP "$running"
xdotool mousemove --window "$window" 370 568 click 1 mousemove --window "$window" 24 82 click 1
kill -CONT "$running"
while kill -0 "$running" 2>/dev/null; do
  xdotool mousemove --window "$window" 440 26 click 1 2>/dev/null || true
done
ended "after a tab"
[ "$(mask)" = "$after" ] || fail "the tap went astray: $(mask)"

# A signal that the program was started to ignore ends nothing.
trap '' HUP
start
trap - HUP
kill -HUP "$running"
xdotool mousemove --window "$window" 30 82 click 1
xdotool mousemove --window "$window" 440 26 click 1
ended "after a signal to ignore"
[ "$(mask)" = "$before" ] || fail "the tick after an ignored signal is lost: $(mask)"
after=$before

# A box that is up is answered, and the work goes on to its end.
start
xdotool mousemove --window "$window" 30 82 click 1
xdotool key F10 Right Up Return
appears "Cleaning Finished"
"$close_request" "$window"
ended "when its window was closed below a box"
[ $((0x${after// /} ^ 0x$(mask | tr -d ' '))) -eq 1 ] ||
  fail "the settings are not those of the closed window"

# Settings that cannot be written are tried again as long as their user wants, but not after a signal.
cp "$settings" "$scratch/kept"
blocked() { rm -r "$settings"; mkdir "$settings"; }
for key in Return Escape; do
  start
  blocked
  xdotool mousemove --window "$window" 440 26 click 1
  appears "^Fennelbright$"
  [ $key = Escape ] || rmdir "$settings"
  xdotool key $key
  code=0
  wait "$running" 2>/dev/null || code=$?
  [ "$code" -eq $([ $key = Return ] && echo 0 || echo 74) ] || fail "$key at the box gave $code"
done
[ -d "$settings" ] || fail "they were written all the same"
start
kill -TERM "$running"
wait "$running" && fail "settings that are lost are no failure"
rmdir "$settings"
cp "$scratch/kept" "$settings"

# On a card that never had the program, its settings get their folder, and not before they are written.
for rehearsed in --rehearse ""; do
  ok=$([ -n "$rehearsed" ] && echo "450 66" || echo "440 26")
  rm -rf "$device/files/Program Files"
  start "$device" --report $rehearsed >"$scratch/report"
  xdotool mousemove --window "$window" $ok click 1
  ended "where its folder is missing"
  grep -q 'made directory \\Program Files\\Fennelbright$' "$scratch/report" || fail "no folder: $(<"$scratch/report")"
  [ -z "$rehearsed" ] || [ ! -e "$device/files/Program Files" ] || fail "a rehearsal has made a folder"
done
[ -s "$settings" ] || fail "the settings are not in a new folder"
cp "$scratch/kept" "$settings"

# On a display that is too small its user is told, and reaches the menus.
open_display 200x250
start 2>"$scratch/errors"
grep -q "has room for 200 by 250 pixels" "$scratch/errors" || fail "$(<"$scratch/errors")"
xdotool windowfocus --sync "$window" key F10
until menu=$(xdotool search --onlyvisible --class fennelbright 2>/dev/null | grep -vx "$window"); do sleep 0.1; done
eval "$(xdotool getwindowgeometry --shell "$menu")"
[ $((Y + HEIGHT)) -le 250 ] || fail "a menu is below the display: $Y + $HEIGHT"
stop "on a small display"

# The boxes of a silent run wait for their user. When the display breaks off, they are lines.
rm "$device/registry.reg"
open_display 1280x900
"$program" --device "$device" silent 2>"$scratch/errors" &
running=$!
appears "^Error$"
[ ! -s "$scratch/errors" ] || fail "a box is shown twice: $(<"$scratch/errors")"
kill "${displays[-1]}"
ended "when its display broke off"
[ "$(grep -c "^\[Error\]" "$scratch/errors")" -gt 5 ] || fail "$(<"$scratch/errors")"
