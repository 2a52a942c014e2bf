#!/usr/bin/env bash
# Builds the program and runs it on a sample device: what was there, what the run did, what is left.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh
cmake --preset release -DBUILD_TESTING=OFF >/dev/null
cmake --build --preset release --target fennelbright

device=$(mktemp -d)/sample
trap 'rm -rf "$(dirname "$device")"' EXIT
program=build/release/fennelbright

show_device() {
  (cd "$device/files" && find . -type f -printf '%8s  %P\n' | sort -k 2)
}

"$program" --new-device "$device"
printf '\nA sample device: its files, with their sizes in bytes\n'
show_device
printf '\nfennelbright --device DEVICE --report silent\n'
"$program" --device "$device" --report silent
printf '\nWhat is left\n'
show_device
printf '\nThe windows open on a device that stays: %s --new-device DIR; %s --device DIR\n' "$program" "$program"
