#!/usr/bin/env bash
# Checks what is installed besides the program, and builds and checks its Debian package. Prints
# findings alone.
set -euo pipefail
cd "$(dirname "$0")/.."

status=0
finding() {
  printf '%s\n' "$*"
  status=1
}
# Runs a command, whose output is a finding if it fails.
check() {
  local output
  output=$("$@" 2>&1) || finding "$output"
}

scripts/setup.sh tests
check desktop-file-validate packaging/fennelbright.desktop
check appstreamcli validate --no-net packaging/*.metainfo.xml
check bash -n packaging/completions/fennelbright.bash

pages=(packaging/*.[1-8])
for page in "${pages[@]}"; do
  warnings=$(MANWIDTH=80 man --warnings -E UTF-8 -l -Tutf8 -Z "$page" 2>&1 >/dev/null) || true
  [ -z "$warnings" ] || finding "$warnings"
done

# An option that the program's own help names stands in the manual page and in every completion.
options=$(grep -E -- '^  -' platform/command_line/command_line.cpp | grep -oE -- '--[a-z-]+[a-z]' | sort -u)
[ -n "$options" ] || finding "no options are found in platform/command_line/command_line.cpp"
for file in packaging/fennelbright.1 packaging/completions/*; do
  described=$(sed 's/\\-/-/g; s/ -l \([a-z]\)/ --\1/' "$file")
  for option in $options; do
    grep -qE -- "$option([^a-z-]|\$)" <<<"$described" || finding "$file: $option is missing"
  done
done

version=$(sed -nE 's/^project\(fennelbright VERSION ([0-9.]+) .*/\1/p' CMakeLists.txt)
for file in "${pages[@]}" packaging/*.metainfo.xml packaging/debian/changelog CHANGELOG.md; do
  grep -qF -- "$version" "$file" || finding "$file: version $version is missing"
done

check scripts/package.sh
check lintian --allow-root --fail-on error,warning build/package/*.deb
exit $status
