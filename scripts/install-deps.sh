#!/usr/bin/env bash
# Installs the Debian 12 packages the build, the tests and the demo need (as root), when missing.
set -euo pipefail
packages=(build-essential cmake pkg-config qt6-base-dev qt6-tools-dev qt6-l10n-tools libgl-dev libboost-dev libsqlite3-dev
          libsodium-dev libzstd-dev fonts-dejavu-core libgtest-dev libgmock-dev googletest libbenchmark-dev clang
          python3 python3-jsonschema subversion libsvn-dev libapr1-dev xvfb xauth)
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  echo "installing: ${missing[*]}"
  SUDO=""
  [ "$(id -u)" -eq 0 ] || SUDO=sudo
  $SUDO apt-get update
  DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y --no-install-recommends "${missing[@]}"
fi
