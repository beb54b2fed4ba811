#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Makes and checks a release: tests, the package and the portable archive in dist/, lintian, the menu
# entry and the description. Then both are used in a bare Debian 12 made by debootstrap; the package is
# removed, and no file may remain.
#   tools/release_check.sh              all of it
#   tools/release_check.sh --no-tests   without the tests
#   tools/release_check.sh --prepare    only makes the bare system in build-bare/, with the packages that the
#                                       program requires; a check on the same day uses it
# QK_MIRROR is the Debian archive (http://deb.debian.org/debian). QK_BARE is a folder that already contains a
# bare system, QK_BUILD a build folder to use instead of a release in build/.
set -euo pipefail
cd "$(dirname "$0")/.."
mirror=${QK_MIRROR:-http://deb.debian.org/debian}

# Makes a bare system in $1, which must not exist, from Debian's archive; $2 is the log of errors.
make_bare() {
  timeout 900 debootstrap --variant=minbase bookworm "$1" "$mirror" >"$2" 2>&1
}

# Lets apt work in the bare system $1 as in a container: no other user, no service, this machine's network.
let_apt_work() {
  printf 'APT::Sandbox::User "root";\n' >"$1/etc/apt/apt.conf.d/90-check"
  # The forced disk writes of a package manager delay other programs of the machine for longer than an
  # instrument's reply may take.
  printf 'force-unsafe-io\n' >"$1/etc/dpkg/dpkg.cfg.d/90-check"
  printf '#!/bin/sh\nexit 101\n' >"$1/usr/sbin/policy-rc.d"
  chmod +x "$1/usr/sbin/policy-rc.d"
  cp -L /etc/resolv.conf "$1/etc/resolv.conf" 2>/dev/null || true
  cp -L /etc/hosts "$1/etc/hosts" 2>/dev/null || true
}

# The long steps that need no program, in parallel with a build. The check itself repeats whatever fails
# here.
prepare() {
  local new=build-bare/new
  [ "$(id -u)" -eq 0 ] || { echo "not prepared: debootstrap needs root"; return; }
  [ -z "$(find build-bare/system -maxdepth 0 -mtime -1 2>/dev/null)" ] || { echo "prepared already"; return; }
  rm -rf --one-file-system build-bare
  mkdir build-bare
  make_bare "$PWD/$new" build-bare/log || { echo "not prepared: $(tail -1 build-bare/log)"; return; }
  let_apt_work "$new"
  chroot "$new" /usr/bin/env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin DEBIAN_FRONTEND=noninteractive sh -c '
    apt-get update -qq && apt-get install -y -qq --no-install-recommends --download-only libqt6widgets6 \
      libqt6svg6 libqt6serialport6 libqt6network6 qt6-image-formats-plugins libgif7 fonts-dejavu-core \
      libglib2.0-bin shared-mime-info desktop-file-utils' >>build-bare/log 2>&1 || true
  touch "$new"
  mv "$new" build-bare/system
  echo "prepared"
}
if [ "${1:-}" = --prepare ]; then
  tools/install_packages.sh debootstrap
  prepare
  exit
fi

tools/install_packages.sh lintian appstream desktop-file-utils debootstrap xvfb openbox xdotool x11-utils x11-apps \
  imagemagick tesseract-ocr tesseract-ocr-eng

if [ "${1:-}" != --no-tests ]; then
  tools/build.sh
  ctest --preset release
fi

tools/package.sh ${QK_BUILD:+"$QK_BUILD"}
deb=$(ls dist/qk47-vna_*.deb)
archive=$(ls dist/qk47-vna-*.tar.xz)

lintian --allow-root --fail-on error,warning "$deb"
echo "lintian: no error, no warning"
desktop-file-validate packaging/qk47-vna.desktop
appstreamcli validate --no-net "${QK_BUILD:-build}/packaging/qk47-vna.metainfo.xml"

# ---- the bare systems

not_here() {
  echo "$(basename "$deb"), $(basename "$archive"); NOT checked in a bare system: $1"
  exit 0
}
[ "$(id -u)" -eq 0 ] || not_here "debootstrap needs root"

work=$(mktemp -d /var/tmp/qk47-bare.XXXXXX)
started=()
mounted=()
clean_up() {
  local at
  # The number of a process that has ended may belong to another one now.
  for at in "${started[@]}"; do
    [ "$(ps -o ppid= -p "$at" | tr -d ' ')" != "$$" ] || kill "$at" 2>/dev/null || true
  done
  # Programs that a failed check left running inside.
  for at in /proc/[0-9]*; do
    case $(readlink "$at/root" 2>/dev/null || true) in
      "$work"/*) kill -KILL "${at#/proc/}" 2>/dev/null || true ;;
    esac
  done
  for at in "${mounted[@]}"; do umount -l "$at" 2>/dev/null || true; done
  # Never through a mount that could not be removed.
  rm -rf --one-file-system "$work"
}
trap clean_up EXIT

bare=${QK_BARE:-$(find build-bare/system -maxdepth 0 -mtime -1 2>/dev/null || true)}
if [ -n "$bare" ]; then
  cp -a "$bare" "$work/deb"
elif ! make_bare "$work/deb" "$work/log"; then
  tail -3 "$work/log"
  not_here "debootstrap may not run (the lines above)"
fi
let_apt_work "$work/deb"
cp -a "$work/deb" "$work/tar"

# A screen outside, with a window manager; programs inside connect to its socket.
read_display=$work/display
Xvfb -displayfd 3 -screen 0 1280x900x24 -nolisten tcp -noreset 3>"$read_display" 2>/dev/null &
started+=($!)
for _ in $(seq 100); do [ -s "$read_display" ] && break; sleep 0.1; done
display=:$(cat "$read_display")
DISPLAY=$display openbox >/dev/null 2>&1 &
started+=($!)

# The user at the screen: operates the program's windows when the script inside reports that it runs.
work_windows() {
  local inside=$1
  until [ -e "$inside/desktop-go" ]; do sleep 0.2; done
  if python3 -B packaging/bare_desktop.py "$display" "$(cat "$inside/desktop-go")" "$inside"; then
    touch "$inside/desktop-done"
  else
    DISPLAY=$display import -window root "/var/tmp/qk47-bare-$(basename "$(dirname "$inside")").png" || true
    touch "$inside/desktop-failed"
  fi
}

use() {
  local system=$work/$1 file=$2
  mount -t proc proc "$system/proc" || not_here "nothing can be mounted"
  mounted+=("$system/proc")
  mkdir -p "$system/tmp/.X11-unix"
  mount --bind /tmp/.X11-unix "$system/tmp/.X11-unix"
  mounted+=("$system/tmp/.X11-unix")
  mount --bind /dev "$system/dev"
  mounted+=("$system/dev")
  cp "$file" packaging/bare_system.sh "$system/tmp/"
  work_windows "$system/tmp" &
  started+=($!)
  local status=0
  chroot "$system" /usr/bin/env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin DISPLAY="$display" \
    sh /tmp/bare_system.sh "$1" "/tmp/$(basename "$file")" || status=$?
  [ $status -ne 75 ] || not_here "Debian's archive did not deliver"
  return $status
}
echo "the package in a bare Debian 12:"
use deb "$deb"
echo "the archive in a bare Debian 12 without Qt:"
# A minimal system has no xz; every real one has.
xz -dc "$archive" >"$work/$(basename "$archive" .xz)"
use tar "$work/$(basename "$archive" .xz)"
echo "$(basename "$deb"), $(basename "$archive"): checked, also in a bare system"
