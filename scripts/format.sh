#!/usr/bin/env bash
# Formats all sources in place. Options for clang-format, if given, stand in place of -i. The formatting
# is that of clang-format 14, since each version has one of its own: with another version nothing is
# checked, which a line says, and nothing is formatted, which is a failure.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh tests
[ $# -gt 0 ] || set -- -i
if ! clang-format --version | grep -q 'version 14\.'; then
  echo "Formatting is left out: it takes clang-format 14, and here is $(clang-format --version)" >&2
  [ "$1" != -i ]
  exit
fi
find . -path ./build -prune -o \( -name '*.cpp' -o -name '*.h' \) -print0 |
  xargs -0 clang-format "$@"
