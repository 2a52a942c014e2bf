#!/usr/bin/env bash
# Builds the program in every way and passes all checks and tests.
set -euo pipefail
cd "$(dirname "$0")/.."

step() { printf '\n== %s\n' "$*"; }

scripts/setup.sh tests

step "Formatting"
git ls-files '*.cpp' '*.h' | xargs clang-format --dry-run -Werror

for preset in release sanitized; do
  step "Tests, $preset build"
  cmake --preset "$preset" -DBUILD_TESTING=ON >/dev/null
  cmake --build --preset "$preset"
  ctest --preset "$preset"
done

step "clang-tidy"
scripts/lint.sh

step "Fuzz targets, a short run each"
cmake --preset fuzzing >/dev/null
cmake --build --preset fuzzing
ctest --preset fuzzing

step "All checks and tests passed"
