#!/usr/bin/env bash
# The whole process, file to file: `vexo save` of the 1M grid's scene file to
# .glb against `assimp export` of the same mesh from a .glb, run side by side.
#   bench/save_compare.sh [BUILD_DIR] [RUNS] [SIZE]     default: build 7 1M
# Makes the scene file with gltfio_bench and its .glb with `vexo save`, then
# runs the two commands in turns RUNS times and prints each one's median wall
# time and the ratio. Skipped, with a message, when `assimp` is missing.
set -euo pipefail
cd "$(dirname "$0")/.."
build="${1:-build}"
runs="${2:-7}"
size="${3:-1M}"

if ! command -v assimp >/dev/null; then
  echo "save_compare: skipped: the assimp command is missing (scripts/setup.sh --bench installs assimp-utils)"
  exit 0
fi
for tool in "$build/bin/vexo" "$build/bin/gltfio_bench"; do
  [[ -x "$tool" ]] || { echo "save_compare: $tool is missing; build first (scripts/build.sh $build)" >&2; exit 1; }
done

work="$(mktemp -d "${TMPDIR:-/tmp}/save-compare-XXXXXX")"
trap 'rm -rf "$work"' EXIT

echo "Making the $size grid's scene file and its .glb in $work ..."
"$build/bin/gltfio_bench" "$size" --keep "$work" >/dev/null
scene="$(ls "$work"/grid-*.json | head -n 1)"
# The whole scene, indices as the benchmark exports them.
settings=(--set sceneio.gltf.save.exportType=0 --set sceneio.gltf.save.indicesExport=1)
"$build/bin/vexo" save "$scene" "$work/source.glb" "${settings[@]}" >/dev/null 2>&1
rm -f "$work"/grid-*.glb
printf '%s: %s bytes; %s: %s bytes\n' "$(basename "$scene")" "$(stat -c %s "$scene")" source.glb \
  "$(stat -c %s "$work/source.glb")"

# Wall time of one command in seconds; its output is thrown away, a failure stops the script.
seconds() {
  local start end
  start=$(date +%s.%N)
  "$@" >/dev/null 2>"$work/stderr" || { echo "save_compare: failed: $*" >&2; cat "$work/stderr" >&2; exit 1; }
  end=$(date +%s.%N)
  awk -v a="$start" -v b="$end" 'BEGIN { print b - a }'
}

median() { sort -g | awk '{ v[NR] = $1 } END { print (NR % 2) ? v[(NR + 1) / 2] : (v[NR / 2] + v[NR / 2 + 1]) / 2 }'; }

vexo_times=() assimp_times=() ratios=()
for ((i = 1; i <= runs; i++)); do
  # Alternate which goes first, so that neither always finds the caches warm.
  if ((i % 2)); then
    v=$(seconds "$build/bin/vexo" save "$scene" "$work/vexo.glb" "${settings[@]}")
    a=$(seconds assimp export "$work/source.glb" "$work/assimp.glb" -fglb2)
  else
    a=$(seconds assimp export "$work/source.glb" "$work/assimp.glb" -fglb2)
    v=$(seconds "$build/bin/vexo" save "$scene" "$work/vexo.glb" "${settings[@]}")
  fi
  vexo_times+=("$v") assimp_times+=("$a") ratios+=("$(awk -v a="$a" -v v="$v" 'BEGIN { print a / v }')")
  printf 'run %d: vexo save %.3f s, assimp export %.3f s, ratio %.2f\n' "$i" "$v" "$a" "${ratios[-1]}"
done

vm=$(printf '%s\n' "${vexo_times[@]}" | median)
am=$(printf '%s\n' "${assimp_times[@]}" | median)
rm_=$(printf '%s\n' "${ratios[@]}" | median)
printf '\nmedian over %d runs: vexo save %.3f s, assimp export %.3f s\n' "$runs" "$vm" "$am"
printf 'ratio of the medians %.2f; median of the paired ratios %.2f (above 1: vexo save is faster)\n' \
  "$(awk -v a="$am" -v v="$vm" 'BEGIN { print a / v }')" "$rm_"
