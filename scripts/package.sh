#!/usr/bin/env bash
# Builds the program and its Debian package, into build/package.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh package
cmake --preset release -DBUILD_TESTING=OFF >/dev/null
cmake --build --preset release --target fennelbright packaging
rm -rf build/package
cpack --config build/release/CPackConfig.cmake -B build/package >/dev/null
ls build/package/*.deb
