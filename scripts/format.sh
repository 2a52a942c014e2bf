#!/usr/bin/env bash
# Formats all sources in place. Options for clang-format, if given, stand in place of -i.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh tests
[ $# -gt 0 ] || set -- -i
find . -path ./build -prune -o \( -name '*.cpp' -o -name '*.h' \) -print0 |
  xargs -0 clang-format "$@"
