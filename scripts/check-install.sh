#!/usr/bin/env bash
# Installs the built project into a temporary prefix, then builds and runs the example host against
# the installed package, and starts the installed programs. Usage: scripts/check-install.sh [build-dir]
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-${HBRC_BUILD_DIR:-$root/build}}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cmake --install "$build" --prefix "$work/prefix" > "$work/install.log"
cmake -S "$root/examples/minimalhost" -B "$work/example" -DCMAKE_PREFIX_PATH="$work/prefix" > "$work/configure.log"
cmake --build "$work/example" -j2 > "$work/build.log"
"$work/example/minimalhost"
QT_QPA_PLATFORM=offscreen "$work/prefix/bin/hbrc-studio" --version
PKG_CONFIG_PATH="$work/prefix/lib/pkgconfig" pkg-config --modversion hbrc-sdk qtextention
echo "install check: the example host ran against the installed package"
