#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Makes the Debian package and the portable archive of the programs in dist/, both named by version
# and architecture.
#   tools/package.sh            builds the release in build/ first
#   tools/package.sh BUILD      uses that build folder and updates it
set -euo pipefail
cd "$(dirname "$0")/.."
top=$PWD
tools/install_packages.sh librsvg2-bin dpkg-dev patchelf file xz-utils xkb-data fonts-dejavu-core

[ $# -gt 0 ] || tools/build.sh qk47-vna
build=$(realpath "${1:-build}")
# Configures again: rsvg-convert may have been installed since, and the date is that of the commit.
cmake "$build" >/dev/null
cmake --build "$build" --target qk47-vna qk47-sim guides packaging >/dev/null

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p dist
export SOURCE_DATE_EPOCH
SOURCE_DATE_EPOCH=$(git log -1 --format=%ct 2>/dev/null || date +%s)
umask 022

# ---- the Debian package
cpack --config "$build/CPackConfig.cmake" -B "$work/cpack" >"$work/log" 2>&1 || {
  cat "$work/log" >&2
  exit 1
}
deb=$(ls "$work"/cpack/*.deb)
rm -f dist/qk47-vna_*.deb dist/qk47-vna-*.tar.xz
mv "$deb" dist/
deb=dist/$(basename "$deb")

# ---- the portable archive: what the package installs, and every library but those of glibc
version=$(dpkg-deb -f "$deb" Version)
version=${version%-*}
architecture=$(dpkg-deb -f "$deb" Architecture)
name=qk47-vna-$version-$architecture
tree=$work/$name
dpkg-deb -x "$deb" "$work/deb"
mkdir -p "$tree/lib" "$tree/plugins" "$tree/share/doc"
cp -a "$work/deb/usr/bin" "$tree/"
cp -a "$work/deb/usr/share/." "$tree/share/"

plugins=$(qtpaths6 --plugin-dir 2>/dev/null || qmake6 -query QT_INSTALL_PLUGINS)
# The plug-ins for X11, Wayland and no screen (console), for pictures, dialogs and printers. Those for
# OpenGL are left out: they would load the system's drivers in addition to these libraries.
for plugin in platforms/libqxcb platforms/libqoffscreen platforms/libqminimal \
    platforms/libqwayland-generic wayland-shell-integration/libxdg-shell \
    wayland-decoration-client/libbradient platforminputcontexts/libcomposeplatforminputcontextplugin \
    platforminputcontexts/libibusplatforminputcontextplugin platformthemes/libqxdgdesktopportal \
    imageformats/libqgif imageformats/libqico imageformats/libqjpeg imageformats/libqsvg \
    imageformats/libqtiff iconengines/libqsvgicon printsupport/libcupsprintersupport; do
  [ -e "$plugins/$plugin.so" ] || continue
  mkdir -p "$tree/plugins/$(dirname "$plugin")"
  cp "$plugins/$plugin.so" "$tree/plugins/$plugin.so"
done
for needed in platforms/libqxcb platforms/libqoffscreen imageformats/libqtiff; do
  [ -e "$tree/plugins/$needed.so" ] || { echo "plug-in $needed is missing" >&2; exit 1; }
done

find "$tree/bin" "$tree/plugins" -type f -exec ldd {} + | awk '$2 == "=>" && $3 ~ /^\// { print $3 }' |
  sort -u >"$work/libraries"
# glibc is taken from the system: its parts must match one another and the kernel.
grep -vE '/(libc|libm|libdl|libpthread|librt|libresolv|libutil|ld-linux[^/]*)\.so' \
  "$work/libraries" >"$work/taken"
while read -r library; do
  cp -L "$library" "$tree/lib/"
done <"$work/taken"

# Every file finds its libraries by a relative path. The environment is not changed, because programs
# started from here (the viewer of the guides) would inherit it.
# shellcheck disable=SC2016
{
  chmod -R u+w "$tree"
  find "$tree/bin" -type f -exec patchelf --set-rpath '$ORIGIN/../lib' {} +
  find "$tree/lib" -type f -exec patchelf --set-rpath '$ORIGIN' {} +
  find "$tree/plugins" -type f -exec patchelf --set-rpath '$ORIGIN/../../lib' {} +
}
printf '[Paths]\nPrefix=..\nPlugins=plugins\n' >"$tree/bin/qt.conf"
install -m 755 packaging/portable/qk47-vna "$tree/qk47-vna"
ln -s qk47-vna "$tree/qk47-sim"
install -m 644 packaging/portable/README.txt "$tree/README.txt"
install -m 644 packaging/portable/fonts.conf "$tree/share/fonts.conf"
mkdir "$tree/share/fonts"
cp /usr/share/fonts/truetype/dejavu/DejaVuSans*.ttf "$tree/share/fonts/"
cp -rL /usr/share/X11/xkb "$tree/share/xkb"

# The licences of the files copied from the system.
{
  cat "$work/taken"
  find "$tree/plugins" -type f | sed "s|^$tree/plugins|$plugins|"
  echo /usr/share/fonts/truetype/dejavu/DejaVuSans.ttf
  echo /usr/share/X11/xkb/rules/evdev
} | while read -r file; do
  dpkg-query -S "$file" 2>/dev/null || dpkg-query -S "$(realpath "$file")" 2>/dev/null ||
    dpkg-query -S "/usr$file" 2>/dev/null || { echo "no package contains $file" >&2; exit 1; }
done | sed 's/: .*//; s/:.*//' | sort -u >"$work/packages"
while read -r package; do
  mkdir -p "$tree/share/doc/$package"
  cp -L "/usr/share/doc/$package/copyright" "$tree/share/doc/$package/"
done <"$work/packages"

tar -C "$work" --sort=name --owner=0 --group=0 --numeric-owner --mtime="@$SOURCE_DATE_EPOCH" \
  -cf - "$name" | xz -T0 -4 >"dist/$name.tar.xz"
cd "$top/dist"
ls -s --block-size=1K -- *.deb *.tar.xz | awk '{ printf "dist/%s (%d KB)\n", $2, $1 }'
