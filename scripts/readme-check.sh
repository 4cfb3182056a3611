#!/usr/bin/env bash
# Start-to-exit check of the README's two commands on a fresh clone, so a
# missing install step or build dependency shows up:
#   1. scripts/run.sh on a virtual display: the viewer must show its window,
#      which is then closed through File, Exit; the command must end with 0;
#   2. scripts/test.sh --quick in the same clone.
# The clone lives in a temporary folder with its own HOME; the compiler cache
# is shared with other builds (paths taken relative to the clone).
#   scripts/readme-check.sh [--run-only]
set -euo pipefail
source_tree=$(cd "$(dirname "$0")/.." && pwd)
run_only=0
[ "${1:-}" = "--run-only" ] && run_only=1

work=$(mktemp -d /tmp/ombrelle-readme-XXXXXX)
trap 'rm -rf "$work"' EXIT
git clone -q "$source_tree" "$work/clone"
mkdir -p "$work/home"
export HOME="$work/home" XDG_CONFIG_HOME="$work/home/.config"
export CCACHE_BASEDIR="$work/clone" CCACHE_NOHASHDIR=1
cd "$work/clone"
start=$SECONDS

# The run command. It installs and builds first, so the window may take a
# while; the closer waits for it, then chooses File, Exit from the keyboard.
xvfb-run -a -s "-screen 0 1600x1000x24" bash -c '
  scripts/run.sh > run.log 2>&1 &
  runner=$!
  window=$(timeout 3600 xdotool search --sync --name "^Ombrelle Viewer" | head -n 1) || true
  if [ -z "$window" ]; then
    echo "readme-check: no viewer window appeared" >&2
    kill "$runner" 2>/dev/null; wait "$runner"; cat run.log >&2; exit 1
  fi
  sleep 6                      # the About box at start closes by itself
  xdotool windowfocus --sync "$window" key alt+f x
  if ! timeout 60 tail --pid="$runner" -f /dev/null; then
    echo "readme-check: the viewer did not end after File, Exit" >&2
    kill "$runner"; exit 1
  fi
  wait "$runner"
'
echo "readme-check: scripts/run.sh started and closed after $((SECONDS - start)) s"

if [ "$run_only" -eq 0 ]; then
  scripts/test.sh --quick
  echo "readme-check: scripts/test.sh --quick passed after $((SECONDS - start)) s"
fi
