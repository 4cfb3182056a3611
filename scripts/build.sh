#!/usr/bin/env bash
# Configures (once) and builds into build/ with Ninja.
set -euo pipefail
cd "$(dirname "$0")/.."
dir=${BUILD_DIR:-build}
if [ ! -f "$dir/build.ninja" ]; then
  cmake -S . -B "$dir" -G Ninja "$@"
fi
cmake --build "$dir" -j "$(nproc)"
