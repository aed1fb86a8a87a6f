#!/usr/bin/env bash
# Builds the revision-control services' tests with ThreadSanitizer (clang) in build-tsan/ and runs
# them: the time-out runner hands every server call to a worker thread, and this is the check that
# the two threads share nothing unguarded. Not part of CI (a full instrumented build of the host
# libraries); run it after changing the runner or a server's threading.
# Usage: scripts/tsan-services.sh [ctest regex, default: the services' suites]
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${HBRC_TSAN_BUILD_DIR:-$root/build-tsan}
cxx=$(command -v clang++-14 || command -v clang++)
cc=$(command -v clang-14 || command -v clang)
launcher=()
command -v ccache >/dev/null && launcher=(-DCMAKE_C_COMPILER_LAUNCHER=ccache -DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_C_COMPILER="$cc" -DCMAKE_CXX_COMPILER="$cxx" \
  "${launcher[@]}" -DCMAKE_CXX_FLAGS="-fsanitize=thread -fno-omit-frame-pointer" \
  -DCMAKE_C_FLAGS="-fsanitize=thread" -DCMAKE_EXE_LINKER_FLAGS="-fsanitize=thread" \
  -DCMAKE_SHARED_LINKER_FLAGS="-fsanitize=thread" -DCMAKE_MODULE_LINKER_FLAGS="-fsanitize=thread" >/dev/null
cmake --build "$build" -j"${HBRC_JOBS:-2}" --target tst_services tst_batchfaults
# halt_on_error: a race fails the run instead of scrolling past. The Subversion cases are left out:
# their fixture starts svnadmin and svnserve through QProcess, whose clone()-based fork the
# sanitizer's runtime (clang 14) aborts on; the embedded depot drives the same runner and threads.
TSAN_OPTIONS="halt_on_error=1 second_deadlock_stack=1 ${TSAN_OPTIONS:-}" QT_QPA_PLATFORM=offscreen \
  GTEST_FILTER="${GTEST_FILTER:--*Svn*}" ctest --test-dir "$build" -R "${1:-^tst_services$|^tst_batchfaults$}" --output-on-failure
