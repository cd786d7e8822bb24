#!/usr/bin/env bash
# Times `vexo convert` of a 1-million-triangle .glb against `assimp export` of
# the same file, whole process each, runs interleaved, and prints the medians
# and their ratio. Not a test: the figures go to docs/performance.md.
#   bench/convert_compare.sh [BUILD_DIR] [RUNS]
set -euo pipefail
build="${1:-build}"
runs="${2:-5}"
if ! command -v assimp >/dev/null; then
  echo "convert_compare: skipped: the peer converter 'assimp' is missing (scripts/setup.sh --bench installs assimp-utils)"
  exit 0
fi
for tool in "$build/bin/vexo" "$build/bin/gltfio_bench"; do
  [[ -x "$tool" ]] || { echo "convert_compare: $tool is missing: build first (scripts/build.sh $build)" >&2; exit 2; }
done
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT

# The benchmark's grid: normals, two UV sets and colours, 32-bit indices.
"$build/bin/gltfio_bench" 1M --file-limit 0 --keep "$work/" >/dev/null
input="$work/grid-1000000.glb"
[[ -s "$input" ]] || { echo "convert_compare: the grid was not written" >&2; exit 2; }

seconds() {  # runs a command, prints its wall-clock seconds
  local start end
  start=$(date +%s.%N)
  "$@" >/dev/null 2>&1 || { echo "convert_compare: failed: $*" >&2; exit 1; }
  end=$(date +%s.%N)
  awk -v s="$start" -v e="$end" 'BEGIN { printf "%.3f\n", e - s }'
}
median() { sort -g | awk '{ v[NR] = $1 } END { print (NR % 2) ? v[(NR + 1) / 2] : (v[NR / 2] + v[NR / 2 + 1]) / 2 }'; }

vexo_times=() assimp_times=()
for ((i = 0; i < runs; ++i)); do
  vexo_times+=("$(seconds "$build/bin/vexo" convert "$input" "$work/vexo.glb" --set sceneio.gltf.save.indicesExport=1)")
  assimp_times+=("$(seconds assimp export "$input" "$work/assimp.glb")")
done
vexo_median=$(printf '%s\n' "${vexo_times[@]}" | median)
assimp_median=$(printf '%s\n' "${assimp_times[@]}" | median)
echo "input: $(stat -c %s "$input") bytes, 1,000,000 triangles; $runs interleaved runs each"
printf 'vexo convert   median %.3f s  (%s)\n' "$vexo_median" "${vexo_times[*]}"
printf 'assimp export  median %.3f s  (%s)\n' "$assimp_median" "${assimp_times[*]}"
awk -v v="$vexo_median" -v a="$assimp_median" 'BEGIN { printf "ratio vexo / assimp: %.2f\n", v / a }'
echo "outputs: vexo $(stat -c %s "$work/vexo.glb") bytes, assimp $(stat -c %s "$work/assimp.glb") bytes"
