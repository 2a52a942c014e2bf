#!/usr/bin/env bash
# Runs the tests in the release build, in the sanitized build, the fuzz targets for a short time each,
# and the comparison with the second platform. With "quick": the tests in the release build alone.
set -euo pipefail
cd "$(dirname "$0")/.."

if [ $# -gt 1 ] || [ "${1-quick}" != quick ]; then
  echo "usage: scripts/test.sh [quick]" >&2
  exit 64
fi

run_tests() {
  printf '\n== %s build\n' "$1"
  cmake --preset "$@" >/dev/null
  cmake --build --preset "$1"
  ctest --preset "$1"
}

if [ $# -eq 1 ]; then
  scripts/setup.sh tests
  run_tests release -DBUILD_TESTING=ON
  exit
fi

scripts/setup.sh second_platform
run_tests release -DBUILD_TESTING=ON
printf '\n== Rehearsals of random devices\n'
RANDOM_DEVICES=2000 build/release/tests/rehearsal_test --gtest_brief=1
run_tests sanitized -DBUILD_TESTING=ON
run_tests fuzzing

printf '\n== The second platform\n'
scripts/second_platform.sh
