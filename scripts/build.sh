#!/usr/bin/env bash
# Configures (once) and builds into build/ with Ninja.
set -euo pipefail
cd "$(dirname "$0")/.."
dir=${BUILD_DIR:-build}
launcher=()
if command -v ccache >/dev/null 2>&1; then
  # Paths relative to the checkout, so clones and worktrees share one cache.
  export CCACHE_BASEDIR="$PWD" CCACHE_NOHASHDIR=1
  launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache -DCMAKE_C_COMPILER_LAUNCHER=ccache)
fi
if [ ! -f "$dir/build.ninja" ]; then
  cmake -S . -B "$dir" -G Ninja "${launcher[@]}" "$@"
fi
cmake --build "$dir" -j "$(nproc)"
