#!/usr/bin/env bash
# Builds the libFuzzer targets with clang in build-fuzz/ and runs each one for
# the given number of seconds (default 60).
#   scripts/fuzz.sh [seconds-per-target] [target...]
# Targets: qvz_read (database files), mtl_import (.mtl limit files),
# command_line (the command-line splitter and parser), measure (the source
# lexer and counter). The corpus each run
# grows is kept in build-fuzz/corpus/<target>; a failing input is written to
# build-fuzz/artifacts/ and replayed with build-fuzz/fuzz_<target> <file>.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-60}
shift || true
targets=("$@")
[ ${#targets[@]} -eq 0 ] && targets=(qvz_read mtl_import command_line measure)
dir=build-fuzz

if [ ! -f "$dir/build.ninja" ]; then
  cc=$(command -v clang || command -v clang-14)
  cxx=$(command -v clang++ || command -v clang++-14)
  CC=$cc CXX=$cxx cmake -S . -B "$dir" -G Ninja -DOMBRELLE_FUZZ=ON \
      -DOMBRELLE_BUILD_TESTS=OFF -DOMBRELLE_BUILD_BENCH=OFF -DOMBRELLE_BUILD_TOOLS=OFF \
      -DCMAKE_BUILD_TYPE=RelWithDebInfo
fi
cmake --build "$dir" -j "$(nproc)" --target fuzz_make_seeds $(printf 'fuzz_%s ' "${targets[@]}")

mkdir -p "$dir/artifacts" "$dir/seeds/qvz_read"
"$dir/fuzz_make_seeds" "$dir/seeds/qvz_read"
# The sample databases of the normal build, when it has made them.
if compgen -G "build/sample/*.qvz" > /dev/null; then
  cp build/sample/*.qvz "$dir/seeds/qvz_read/"
fi

export ASAN_OPTIONS=abort_on_error=1:detect_leaks=1
export UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1
export LSAN_OPTIONS=suppressions="$PWD/tests/lsan.supp"
export QT_QPA_PLATFORM=offscreen

status=0
summary=()
for t in "${targets[@]}"; do
  corpus="$dir/corpus/$t"
  mkdir -p "$corpus"
  seeds=("fuzz/corpus/$t")
  [ -d "$dir/seeds/$t" ] && seeds+=("$dir/seeds/$t")
  case $t in
    qvz_read) max_len=65536 ;;
    measure) max_len=16384 ;;
    *) max_len=4096 ;;
  esac
  log="$dir/fuzz_$t.log"
  echo "== fuzz_$t for ${seconds}s"
  # A hang shows as a timeout, an allocation beyond the cap as a malloc limit.
  # The XML export of a damaged file of a few kilobytes may write a hundred
  # megabytes (every catalogue metric for up to one row per byte), which takes
  # seconds in the instrumented build: hence the long timeout.
  if "$dir/fuzz_$t" -max_total_time="$seconds" -timeout=60 -rss_limit_mb=2048 \
      -malloc_limit_mb=128 -max_len="$max_len" -print_final_stats=1 \
      -artifact_prefix="$dir/artifacts/$t-" "$corpus" "${seeds[@]}" > "$log" 2>&1; then
    result=clean
  else
    result=FAILED
    status=1
    grep -E "ERROR|SUMMARY|Test unit written" "$log" | head -20 || true
  fi
  runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -1)
  rate=$(sed -n 's/^stat::average_exec_per_sec: *//p' "$log" | tail -1)
  files=$(find "$corpus" -type f | wc -l)
  summary+=("$(printf '%-14s %-7s %12s runs %8s exec/s %6s corpus files' "$t" "$result" "${runs:-?}" "${rate:-?}" "$files")")
done
printf '%s\n' "${summary[@]}"
exit $status
