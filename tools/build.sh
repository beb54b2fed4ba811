#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Installs what a build needs and builds the release preset into build/; quick if nothing has
# changed. Arguments: the targets to build (default: all).
set -euo pipefail
cd "$(dirname "$0")/.."

tools/install_packages.sh g++ cmake ninja-build qt6-base-dev qt6-serialport-dev qt6-svg-dev \
  qt6-image-formats-plugins libgif-dev libgl-dev fonts-dejavu-core libgtest-dev libbenchmark-dev python3 \
  weasyprint python3-markdown-it python3-pypdf

# QK_CONFIGURE: more options for the first configuration.
[ -f build/build.ninja ] || cmake --preset release ${QK_CONFIGURE:-} >/dev/null
targets=()
[ $# -gt 0 ] && targets=(--target "$@")
log=$(mktemp)
trap 'rm -f "$log"' EXIT
if [ -t 1 ]; then
  cmake --build build "${targets[@]}"
elif ! cmake --build build "${targets[@]}" >"$log" 2>&1; then
  cat "$log" >&2
  exit 1
fi
