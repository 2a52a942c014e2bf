#!/usr/bin/env bash
# Installs what is missing on a Debian machine. With "package": also what makes the package of the
# program. With "tests": also what only the tests and checks need.
set -euo pipefail

packages=(g++ cmake ninja-build libutf8proc-dev libexpected-dev
  qt6-base-dev libxcb1-dev fonts-dejavu-extra)
if [ "${1:-}" = package ] || [ "${1:-}" = tests ]; then
  packages+=(dpkg-dev)
fi
if [ "${1:-}" = tests ]; then
  packages+=(clang clang-format clang-tidy libclang-rt-14-dev libgtest-dev jq python3 xvfb xdotool bindfs
    appstream desktop-file-utils lintian man-db
    at-spi2-core dbus-daemon python3-pyatspi sway wtype qt6-wayland)
fi

missing=()
for package in "${packages[@]}"; do
  dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || missing+=("$package")
done
[ ${#missing[@]} -eq 0 ] && exit 0

as_root=()
[ "$(id -u)" -eq 0 ] || as_root=(sudo)
echo "Installing: ${missing[*]}"
"${as_root[@]}" apt-get update -qq
DEBIAN_FRONTEND=noninteractive "${as_root[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
