#!/usr/bin/env bash
# Compares the program on its platform layer with the same program on a desktop system of the handheld's
# family. The first seed of the random devices may be given; it is 1 otherwise, so that a run can be repeated.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh second_platform

cmake --preset release -DBUILD_TESTING=ON >/dev/null
cmake --build --preset release --target fennelbright transcript logged_program make_random_devices
cmake --preset second_platform >/dev/null
cmake --build --preset second_platform

first=build/release
second=build/second_platform
python3 -m tests.second_platform.compare_transcripts $first/transcript $second/transcript.exe
python3 -m tests.second_platform.compare_windows $first/logged_program $second/Fennelbright.exe
python3 -m tests.second_platform.compare_runs $first/fennelbright $second/Fennelbright.exe $first/make_random_devices \
  "${1:-1}" 100
