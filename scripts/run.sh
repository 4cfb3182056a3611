#!/usr/bin/env bash
# Installs what is missing, builds, and starts the viewer.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh build
scripts/build.sh
exec build/qvzview "$@"
