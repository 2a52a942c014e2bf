#!/usr/bin/env bash
# Runs clang-tidy over all sources.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh tests
cmake --preset sanitized -DBUILD_TESTING=ON >/dev/null
git ls-files '*.cpp' | grep -v -e '^tests/fuzz/' -e '^bench/' | sed "s|^|$PWD/|" |
  xargs -n 4 -P "$(nproc)" clang-tidy --quiet -p build/sanitized
