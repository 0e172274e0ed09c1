#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Installs everything the build, the tests and the demo need (Debian, as root).
set -euo pipefail
pkgs=(cmake ninja-build g++ pkg-config
      qt6-base-dev qt6-svg-dev qtbase5-dev libqt5svg5-dev
      libarchive-dev libarchive-tools zip unzip libxml2-utils python3
      clang libclang-rt-14-dev valgrind
      libpoppler-qt6-dev libpoppler-qt5-dev chromium
      help2man python3-jsonschema)
missing=()
for p in "${pkgs[@]}"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
    export DEBIAN_FRONTEND=noninteractive
    apt-get update -q
    apt-get install -y -q --no-install-recommends "${missing[@]}"
fi
