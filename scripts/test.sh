#!/usr/bin/env bash
# Installs what is missing, builds everything in build/ and runs every test offscreen.
# Extra arguments go to cmake (e.g. -DHBRC_WERROR=ON); HBRC_BUILD_DIR picks another folder.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${HBRC_BUILD_DIR:-$root/build}
bash "$root/scripts/install-deps.sh"
bash "$root/scripts/build.sh" "$build" "$@"
export QT_QPA_PLATFORM=offscreen
ctest --test-dir "$build" --output-on-failure -j2 --timeout 600
