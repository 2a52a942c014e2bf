#!/usr/bin/env bash
# Checks the formatting and the package, and runs clang-tidy over all sources. Prints findings alone.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/format.sh --dry-run -Werror

# What the documents say of the sources is found where they say.
missing=$(grep -ohE '\b(core|settings|engine|screens|search|browser|shell|platform|second_platform|tests|scripts|bench|docs|packaging)/[a-z_/-]+\.(cpp|h|sh|py|md|cmake)\b' \
  ./*.md docs/*.md | sort -u | while read -r path; do [ -e "$path" ] || echo "$path"; done)
[ -z "$missing" ] || { printf 'Documents name files that are not there:\n%s\n' "$missing"; exit 1; }

# The fuzz targets are compiled in a build of their own. The benchmarks are in neither build of the
# tests, so this build has its own directory, in which nothing is compiled.
cmake --preset fuzzing >/dev/null
cmake --preset sanitized -B build/lint -DBUILD_TESTING=ON -DFENNELBRIGHT_BENCHMARKS=ON >/dev/null

# clang-tidy counts the warnings in the system's headers on standard error, which are no findings.
tidy() {
  xargs -0 -n 4 -P "$(nproc)" clang-tidy --quiet -p "$1" 2>&1 |
    { grep -vE '^[0-9]+ warnings?( and [0-9]+ errors?)? generated\.$' || true; }
}

status=0
packaging/check.sh || status=1
find "$PWD" -path "$PWD/build" -prune -o -path "$PWD/tests/fuzz" -prune -o \
  -path "$PWD/second_platform" -prune -o -name '*.cpp' -print0 | tidy build/lint || status=1
find "$PWD/tests/fuzz" -name '*.cpp' -print0 | tidy build/fuzzing || status=1
exit $status
