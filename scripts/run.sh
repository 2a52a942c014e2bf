#!/usr/bin/env bash
# Builds the program and runs it on a sample device: what was there, what the run would do, what it
# did, and what is left. Fails if the rehearsal and the run do not agree.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh
cmake --preset release -DBUILD_TESTING=OFF >/dev/null
cmake --build --preset release --target fennelbright

place=$(mktemp -d)
trap 'rm -rf "$place"' EXIT
device=$place/sample
program=build/release/fennelbright

show_device() {
  (cd "$device/files" && find . -type f -printf '%8s  %P\n' | sort -k 2)
}

"$program" --new-device "$device"
printf '\nA sample device: its files, with their sizes in bytes\n'
show_device
printf '\nfennelbright --device DEVICE --rehearse --report silent\n'
"$program" --device "$device" --rehearse --report silent >"$place/rehearsal"
cat "$place/rehearsal"
printf '\nfennelbright --device DEVICE --report silent\n'
"$program" --device "$device" --report silent >"$place/report"
cat "$place/report"
printf '\nWhat is left\n'
show_device
tail -n +2 "$place/rehearsal" | diff - "$place/report"
printf '\nThe rehearsal and the run agree: %d lines\n' "$(wc -l <"$place/report")"
printf '\nThe windows open on a device that stays: %s --new-device DIR; %s --device DIR\n' "$program" "$program"
