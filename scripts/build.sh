#!/usr/bin/env bash
# Configures and builds out of tree. Usage: scripts/build.sh <build-dir> [extra cmake options...]
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${1:?build directory}
shift
# A compiler cache, where the machine has one, makes the second build of a tree cheap.
launcher=()
command -v ccache >/dev/null && launcher=(-DCMAKE_C_COMPILER_LAUNCHER=ccache -DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo "${launcher[@]}" "$@"
cmake --build "$build" -j2
