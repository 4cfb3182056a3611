#!/usr/bin/env bash
# Builds and runs every benchmark program (build/bench_*) and prints one table
# of the figures, each beside its reference measured in the same run.
#   scripts/bench.sh [min-time-seconds]   (default 0.2 per benchmark)
# Pairing: a benchmark named BM_<Group>_<What>Reference is the reference of
# every other benchmark of BM_<Group>; runs pair by equal arguments, else with
# the reference's first run. The ratio is ours / reference in CPU time, so
# below 1 is faster than the reference. JSON results stay in build/bench-results/.
set -euo pipefail
cd "$(dirname "$0")/.."
min_time=${1:-0.2}
scripts/install-deps.sh build
if [ ! -f build/build.ninja ]; then cmake -S . -B build -G Ninja; fi
mapfile -t benches < <(cd bench && ls *.cpp | sed 's/\.cpp$//')
cmake --build build -j "$(nproc)" --target $(printf 'bench_%s ' "${benches[@]}") >&2

out=build/bench-results
rm -rf "$out"
mkdir -p "$out"
export QT_QPA_PLATFORM=offscreen
for b in "${benches[@]}"; do
  echo "running bench_$b" >&2
  "build/bench_$b" --benchmark_min_time="$min_time" --benchmark_format=json \
      --benchmark_out="$out/$b.json" --benchmark_out_format=json > /dev/null
done

python3 - "$out" <<'PY'
import glob, json, os, re, sys

def fmt_time(ns):
    for unit, scale in (("s", 1e9), ("ms", 1e6), ("µs", 1e3)):
        if ns >= scale:
            return f"{ns / scale:.3g} {unit}"
    return f"{ns:.3g} ns"

def fmt_rate(value, unit):
    for prefix, scale in (("G", 1e9), ("M", 1e6), ("k", 1e3)):
        if value >= scale:
            return f"{value / scale:.3g} {prefix}{unit}"
    return f"{value:.3g} {unit}"

SCALE = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}
rows = []
for path in sorted(glob.glob(os.path.join(sys.argv[1], "*.json"))):
    program = os.path.splitext(os.path.basename(path))[0]
    runs = [r for r in json.load(open(path))["benchmarks"] if r.get("run_type", "iteration") == "iteration"]
    for r in runs:
        name = r["name"]
        base, _, args = name.partition("/")
        group = base[3:].split("_")[0] if base.startswith("BM_") else base
        r["_base"], r["_args"], r["_group"] = base, args, group
        r["_ref"] = base.endswith("Reference")
        r["_cpu"] = r["cpu_time"] * SCALE[r["time_unit"]]
    for r in runs:
        if r.get("error_occurred"):
            rows.append((program, r["name"], "error", r.get("error_message", ""), "", ""))
            continue
        extra = []
        if "bytes_per_second" in r:
            extra.append(fmt_rate(r["bytes_per_second"], "B/s"))
        if "items_per_second" in r:
            extra.append(fmt_rate(r["items_per_second"], "items/s"))
        if "series/s" in r:
            extra.append(fmt_rate(r["series/s"], "series/s"))
        if "bytes_read_per_file" in r:
            extra.append(f"{r['bytes_read_per_file']:.0f} B read per file")
        if r.get("label"):
            extra.append(r["label"])
        reference, ratio = "", ""
        if not r["_ref"]:
            refs = [q for q in runs if q["_ref"] and q["_group"] == r["_group"] and not q.get("error_occurred")]
            chosen = []
            for refbase in dict.fromkeys(q["_base"] for q in refs):
                same = [q for q in refs if q["_base"] == refbase and q["_args"] == r["_args"]]
                chosen.append(same[0] if same else next(q for q in refs if q["_base"] == refbase))
            reference = "; ".join(q["name"].replace("BM_", "") for q in chosen)
            ratio = "; ".join(f"{r['_cpu'] / q['_cpu']:.2f}" for q in chosen)
        rows.append((program, r["name"].replace("BM_", ""), fmt_time(r["_cpu"]), ", ".join(extra),
                     reference or ("(reference)" if r["_ref"] else "–"), ratio or "–"))

head = ("Program", "Benchmark", "CPU time", "Throughput", "Reference", "Ours / reference")
print("| " + " | ".join(head) + " |")
print("|" + "|".join("---" for _ in head) + "|")
for row in rows:
    print("| " + " | ".join(row) + " |")
PY
