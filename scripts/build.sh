#!/usr/bin/env bash
# Configures and builds out of tree. Usage: scripts/build.sh <build-dir> [extra cmake options...]
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${1:?build directory}
shift
cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo "$@"
cmake --build "$build" -j2
