#!/usr/bin/env bash
# Compares the program on its platform layer with the same program on a desktop system of the handheld's
# family. The first seed of the random devices may be given; it is printed.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh second_platform
for tool in wine Xvfb xdotool x86_64-w64-mingw32-g++-posix; do
  command -v $tool >/dev/null || { echo "$tool is missing, so nothing can be compared" >&2; exit 1; }
done

cmake --preset release -DBUILD_TESTING=ON >/dev/null
cmake --build --preset release --target fennelbright transcript logged_program make_random_devices
cmake --preset second_platform >/dev/null
cmake --build --preset second_platform

first=build/release
second=build/second_platform
tests/second_platform/compare_transcripts.py $first/transcript $second/transcript.exe
tests/second_platform/compare_windows.py $first/logged_program $second/Fennelbright.exe
tests/second_platform/compare_runs.py $first/fennelbright $second/Fennelbright.exe $first/make_random_devices \
  "${1:-$RANDOM}" 100
