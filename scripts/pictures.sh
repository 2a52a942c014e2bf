#!/usr/bin/env bash
# Takes a picture of every page of the program, on a sample device, into docs/pictures.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh tests
cmake --preset release >/dev/null
cmake --build --preset release --target fennelbright take_pictures

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
build/release/fennelbright --new-device "$scratch/device"
mkdir -p docs/pictures
build/release/tests/take_pictures "$scratch/device" docs/pictures
ls docs/pictures
