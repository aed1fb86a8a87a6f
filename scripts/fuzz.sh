#!/usr/bin/env bash
# Builds the libFuzzer targets of tests/fuzz/ with clang (AddressSanitizer and UndefinedBehavior-
# Sanitizer on) in build-fuzz/ and runs each for SECONDS (default 30) from its seed corpus in
# tests/fuzz/corpus/<target>/; new inputs go to a scratch folder, crashes to build-fuzz/crashes/.
# Usage: scripts/fuzz.sh [SECONDS] [TARGET...]
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${HBRC_FUZZ_BUILD_DIR:-$root/build-fuzz}
seconds=${1:-30}
[ $# -gt 0 ] && shift
targets=("$@")
[ ${#targets[@]} -gt 0 ] || targets=(fuzz_kelformat fuzz_objectquery fuzz_pathutils fuzz_errortexts)
if ! command -v clang++ >/dev/null; then
  echo "fuzz.sh: clang++ is needed (scripts/install-deps.sh installs it)" >&2
  exit 2
fi
CC=clang CXX=clang++ cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=Debug -DHBRC_SANITIZE=ON \
  -DHBRC_BUILD_BENCH=OFF -DCMAKE_CXX_FLAGS=-fsanitize=fuzzer-no-link >/dev/null
cmake --build "$build" -j2 --target "${targets[@]}"
export ASAN_OPTIONS=detect_leaks=1:abort_on_error=1
export LSAN_OPTIONS=suppressions=$root/tests/lsan.supp:print_suppressions=0
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
mkdir -p "$build/crashes"
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
for target in "${targets[@]}"; do
  mkdir -p "$scratch/$target"
  echo "fuzz.sh: $target for $seconds s"
  "$build/bin/$target" -max_total_time="$seconds" -timeout=10 -print_final_stats=1 \
    -artifact_prefix="$build/crashes/$target-" "$scratch/$target" "$root/tests/fuzz/corpus/$target"
done
