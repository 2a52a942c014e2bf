#!/usr/bin/env bash
# Runs the tests in the release build, in the sanitized build, the fuzz targets for a short time each,
# and the comparison with the second platform. With "quick": the tests in the release build alone.
set -euo pipefail
cd "$(dirname "$0")/.."

if [ $# -gt 1 ] || [ "${1-quick}" != quick ]; then
  echo "usage: scripts/test.sh [quick]" >&2
  exit 64
fi

scripts/setup.sh tests

run_tests() {
  printf '\n== %s build\n' "$1"
  cmake --preset "$@" >/dev/null
  cmake --build --preset "$1"
  ctest --preset "$1"
}

run_tests release -DBUILD_TESTING=ON
[ "${1-}" = quick ] && exit
run_tests sanitized -DBUILD_TESTING=ON
run_tests fuzzing

printf '\n== second platform\n'
scripts/second_platform.sh
