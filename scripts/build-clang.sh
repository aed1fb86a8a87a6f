#!/usr/bin/env bash
# Builds everything with clang (warnings as errors) in build-clang/, to keep the sources portable
# between compilers. Usage: scripts/build-clang.sh [extra cmake options...]
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
bash "$root/scripts/install-deps.sh"
if ! command -v clang++ >/dev/null; then
  echo "installing clang"
  SUDO=""
  [ "$(id -u)" -eq 0 ] || SUDO=sudo
  $SUDO apt-get update
  DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y --no-install-recommends clang
fi
CXX=clang++ bash "$root/scripts/build.sh" "${HBRC_CLANG_BUILD_DIR:-$root/build-clang}" -DHBRC_WERROR=ON "$@"
