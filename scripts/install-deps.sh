#!/usr/bin/env bash
# Installs the Debian packages the build and the tests need, when missing.
# Usage: scripts/install-deps.sh [build|test]
set -euo pipefail

packages=(cmake ninja-build g++ qt6-base-dev qt6-base-dev-tools libgl-dev
          libgtest-dev libgmock-dev libbenchmark-dev fonts-dejavu-core qt6-svg-dev)
if [ "${1:-build}" = test ]; then
  # Outside readers that check what the program writes.
  packages+=(imagemagick libxml2-utils xvfb xauth)
  # Metafile readers, their fonts, and the SVG renderer the metafile tests use.
  packages+=(emf2svg libwmf-bin fonts-urw-base35 gsfonts)
  # Web archives are rendered by a browser.
  packages+=(chromium)
  # GIF readers for the GIF writer's tests and the reference of its benchmark.
  packages+=(giflib-tools gifsicle)
  # The install test checks the desktop entry.
  packages+=(desktop-file-utils)
  # The measuring program reads history through git; its tests make repositories.
  packages+=(git)
  # libFuzzer and its sanitizer runtimes for the fuzz targets.
  packages+=(clang-14 libclang-rt-14-dev)
fi

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "Installing: ${missing[*]}"
sudo=""
[ "$(id -u)" -ne 0 ] && sudo="sudo"
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -qq
$sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
