#!/usr/bin/env bash
# Installs what is missing, builds in build/ and runs the reference host's demo on its embedded depot.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${HBRC_BUILD_DIR:-$root/build}
bash "$root/scripts/install-deps.sh"
bash "$root/scripts/build.sh" "$build" -DHBRC_BUILD_BENCH=OFF
export QT_QPA_PLATFORM=${QT_QPA_PLATFORM:-offscreen}
exec "$build/bin/hbrc-studio" --demo "$@"
