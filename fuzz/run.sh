#!/usr/bin/env bash
# Builds the save fuzzer with clang in its own build folder and runs it: first
# every committed finding (fuzz/findings) and the seeds, then new inputs for
# SECONDS. Exits non-zero on any finding, which it leaves in BUILD_DIR/fuzz/artifacts.
#   fuzz/run.sh [SECONDS] [BUILD_DIR]     default: 120 build-fuzz
# Extra libFuzzer flags may be given in FUZZ_FLAGS (for example "-jobs=2 -workers=2").
set -euo pipefail
cd "$(dirname "$0")/.."
seconds="${1:-120}"
dir="${2:-build-fuzz}"

CC=clang CXX=clang++ bash scripts/build.sh "$dir" -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DGLTFIO_FUZZ=ON -DGLTFIO_TESTS=OFF -DGLTFIO_BENCH=OFF

work="$dir/fuzz"
# Findings of earlier runs go: what is left after this run is this run's.
rm -rf "$work/seeds" "$work/artifacts"
mkdir -p "$work/corpus" "$work/artifacts"
python3 fuzz/make_seeds.py "$work/seeds"

export ASAN_OPTIONS="${ASAN_OPTIONS:-detect_leaks=1}"
log="$work/fuzz.log"
# New inputs go to the first folder (kept between runs); the others are read only.
# An input that runs for 10 seconds counts as a hang.
folders=("$work/corpus" "$work/seeds")
[[ -n "$(ls -A fuzz/findings 2>/dev/null)" ]] && folders+=(fuzz/findings)
status=0
# shellcheck disable=SC2086
"$dir/bin/save_fuzzer" -max_total_time="$seconds" -timeout=10 -max_len=8192 -print_final_stats=1 \
  -dict=fuzz/scene.dict -artifact_prefix="$work/artifacts/" ${FUZZ_FLAGS:-} \
  "${folders[@]}" >"$log" 2>&1 || status=$?

if ((status != 0)); then
  tail -n 60 "$log"
  for finding in "$work"/artifacts/*; do
    [[ -f "$finding" ]] || continue
    echo "fuzz: finding $finding ($(stat -c %s "$finding") bytes; the first is the settings byte):"
    head -c 512 "$finding" | od -An -c | head -n 32
  done
  echo "fuzz: the save fuzzer failed (status $status); reproduce with: $dir/bin/save_fuzzer FILE"
  exit 1
fi
grep -E '^(Done|stat::number_of_executed_units|stat::peak_rss_mb)|cov: .*corp:' "$log" | tail -n 4
echo "fuzz: no finding in ${seconds} s"
