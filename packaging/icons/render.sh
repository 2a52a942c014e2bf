#!/usr/bin/env bash
# Renders the icon's PNGs from its two drawings, the smallest from the simpler one. Needs the package
# librsvg2-bin.
set -euo pipefail
cd "$(dirname "$0")"

for side in 16 24 32 48 64 128 256; do
  drawing=fennelbright.svg
  [ $side -gt 24 ] || drawing=fennelbright-small.svg
  rsvg-convert --width $side --height $side $drawing --output fennelbright-$side.png
done
