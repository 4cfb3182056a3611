#!/usr/bin/env bash
# Installs what is missing, builds, and runs every test: first the normal
# build in build/, then the whole suite again under AddressSanitizer and
# UndefinedBehaviorSanitizer in build-asan/, then a short run of every fuzz
# target in build-fuzz/ (FUZZ_SECONDS each, default 60).
#   scripts/test.sh            both builds and the fuzz run
#   scripts/test.sh --quick    the normal build only
set -euo pipefail
cd "$(dirname "$0")/.."
quick=0
[ "${1:-}" = "--quick" ] && quick=1

scripts/install-deps.sh test
export QT_QPA_PLATFORM=offscreen
jobs=$(nproc)

scripts/build.sh
ctest --test-dir build --output-on-failure -j "$jobs" --timeout 300

if [ "$quick" -eq 0 ]; then
  BUILD_DIR=build-asan scripts/build.sh -DOMBRELLE_SANITIZE=ON -DOMBRELLE_BUILD_BENCH=OFF \
      -DCMAKE_BUILD_TYPE=Debug
  # The end-to-end walk through every menu entry runs in the normal tree only:
  # each of its windows is already exercised under the sanitizers by the
  # window suites, and the walk would take most of the time budget there.
  ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 \
  UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1 \
  LSAN_OPTIONS=suppressions="$PWD/tests/lsan.supp" \
      ctest --test-dir build-asan --output-on-failure -j "$jobs" --timeout 600 -LE endtoend
  scripts/fuzz.sh "${FUZZ_SECONDS:-60}"
fi
