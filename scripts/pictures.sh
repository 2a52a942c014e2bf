#!/usr/bin/env bash
# Takes pictures of the program on a sample device, into docs/pictures.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh tests
cmake --preset release -DBUILD_TESTING=ON >/dev/null
cmake --build --preset release --target take_pictures

mkdir -p docs/pictures
build/release/tools/take_pictures docs/pictures
ls docs/pictures
