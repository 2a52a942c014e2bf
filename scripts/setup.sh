#!/usr/bin/env bash
# Installs what is missing on a Debian machine, 12 or 13: as root, or through sudo. With "package": also
# what makes the package of the program. With "tests": also what only the tests and checks need. With
# "second_platform": what only scripts/second_platform.sh needs. Says which packages are missing and,
# where it cannot install them, the command that does; then it fails.
set -euo pipefail

packages=(g++ cmake ninja-build libutf8proc-dev libexpected-dev
  qt6-base-dev libxcb1-dev fonts-dejavu-extra)
if [ "${1:-}" = package ] || [ "${1:-}" = tests ]; then
  packages+=(dpkg-dev)
fi
if [ "${1:-}" = tests ]; then
  packages+=(clang clang-format clang-tidy libclang-rt-dev libgtest-dev jq python3 xvfb xdotool bindfs
    appstream desktop-file-utils lintian man-db
    at-spi2-core dbus-daemon python3-pyatspi sway wtype qt6-wayland)
elif [ "${1:-}" = second_platform ]; then
  packages+=(g++-mingw-w64-x86-64-posix wine wine64 libgtest-dev python3 xvfb xdotool)
fi

missing=()
for package in "${packages[@]}"; do
  dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || missing+=("$package")
done
[ ${#missing[@]} -eq 0 ] && exit 0

install=(apt-get install -y --no-install-recommends "${missing[@]}")
as_root=(env DEBIAN_FRONTEND=noninteractive)
echo "These packages are missing: ${missing[*]}"
if [ "$(id -u)" -ne 0 ]; then
  as_root=(sudo "${as_root[@]}")
  if ! { command -v sudo && sudo -v; } >/dev/null; then
    printf 'They cannot be installed without root. Run this as root, then start again:\n\n' >&2
    printf '    apt-get update && %s\n\n' "${install[*]}" >&2
    exit 1
  fi
fi
"${as_root[@]}" apt-get update -q
"${as_root[@]}" "${install[@]}" -q
