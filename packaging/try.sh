#!/usr/bin/env bash
# Tries the Debian package, as root: packaging/try.sh ROOT. ROOT is a fresh root directory, as
# `debootstrap --variant=minbase` makes it, and is changed. Says what holds, and ends at the first thing
# that does not.
set -euo pipefail
root=$(realpath "${1:?usage: packaging/try.sh ROOT}")
[ "$root" != / ] || { echo "this machine's own root is not a fresh one" >&2; exit 64; }
cd "$(dirname "$0")/.."

if [ "${2:-}" != mounted ]; then
  scripts/package.sh >/dev/null
  exec unshare --mount "$0" "$root" mounted  # the mounts end with it
fi
mount -t proc proc "$root/proc"
cp build/package/*.deb "$root/tmp/fennelbright.deb"
Xvfb -noreset -displayfd 3 3>"$root/tmp/display" 2>/dev/null &
display=$!
trap 'kill $display; rm -rf "$root"/tmp/*' EXIT
until [ -s "$root/tmp/display" ]; do sleep 0.1; done
export DISPLAY=:$(<"$root/tmp/display") HOME=/root LC_ALL=C.UTF-8 DEBIAN_FRONTEND=noninteractive
unset WAYLAND_DISPLAY XAUTHORITY QT_QPA_PLATFORM

inside() { chroot "$root" "$@"; }
apt() { inside apt-get -qq -y "$@" >/dev/null 2>"$root/tmp/errors" || fails "apt-get $*: $(<"$root/tmp/errors")"; }
fails() { echo "FAILS: $*"; exit 1; }
holds() { printf 'holds: %s\n' "$1"; }

# All that is there, but what the package tools write down of their own work.
names() {
  (cd "$root" && find . \( -path ./proc -o -path ./tmp -o -path './var/lib/dpkg' -o -path ./var/lib/apt \
    -o -path ./var/cache -o -path ./var/log \) -prune -o -print | sort)
}

clean_sample() {
  rm -rf "$root/tmp/sample"
  inside fennelbright --new-device /tmp/sample >/dev/null
  inside fennelbright --device /tmp/sample --report --strict silent >"$root/tmp/report" ||
    fails "the silent run ended with $?"
  [ ! -e "$root/tmp/sample/files/Temp/setup.tmp" ] || fails "nothing was cleaned"
  holds "the silent run: $(tail -n 1 "$root/tmp/report")"
}

# Waits for a window. A look at the windows fails if one of them goes meanwhile.
appears() {
  for _ in {1..300}; do
    ! xdotool search --onlyvisible --name "$1" >/dev/null 2>&1 || return 0
    sleep 0.2
  done
  fails "there is no window $1"
}

# Waits for the window of a program that runs, and ends it.
opened() {
  appears "$1"
  kill "$2"
  wait "$2" || fails "the program of the window $1 ended with $?"
  holds "the window $1"
}

apt update
names >"$root/tmp/before"

apt install --no-install-recommends /tmp/fennelbright.deb
clean_sample
code=0
inside fennelbright --device /tmp/sample 2>"$root/tmp/errors" || code=$?
[ $code -eq 69 ] || fails "without their libraries, windows ended with $code"
package=$(grep -o 'apt install .*' "$root/tmp/errors") || fails "$(<"$root/tmp/errors")"
holds "windows are refused: $(<"$root/tmp/errors")"
rm "$root/tmp/sample/registry.reg"
inside fennelbright --device /tmp/sample silent 2>"$root/tmp/errors"
grep -q '^\[Error\]' "$root/tmp/errors" || fails "a box is no line: $(<"$root/tmp/errors")"
holds "a box is a line"
apt purge fennelbright
names | diff "$root/tmp/before" - || fails "the package has left something"
holds "nothing is left"

apt install --no-install-recommends /tmp/fennelbright.deb
read -ra named <<<"${package#apt install }"
apt install --no-install-recommends "${named[@]}"
chroot "$root" fennelbright --device /tmp/sample &
opened "^/tmp/sample .* Fennelbright$" $!
apt purge fennelbright
apt autoremove --purge "${named[@]}"

apt install /tmp/fennelbright.deb man-db
clean_sample
read -ra entry <<<"$(sed -n 's/^Exec=//p' "$root/usr/share/applications/fennelbright.desktop")"
chroot "$root" "${entry[@]}" &
appears "^Choose the handheld"
xdotool search --onlyvisible --name "^Choose the handheld" windowfocus --sync type /tmp/sample
xdotool key Return
opened "^/tmp/sample .* Fennelbright$" $!
for page in fennelbright fennelbright-device; do
  inside man "$page" >"$root/tmp/page" 2>"$root/tmp/errors"
  [ -s "$root/tmp/page" ] && [ ! -s "$root/tmp/errors" ] || fails "man $page: $(<"$root/tmp/errors")"
  holds "man $page: $(sed -n '/^NAME/{n;s/^ *//p}' "$root/tmp/page")"
done
apt purge fennelbright
left=$(names | grep -i fennelbright) && fails "$left is left"
holds "nothing of that name is left"
