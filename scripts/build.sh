#!/usr/bin/env bash
# Configures and builds gltfio: scripts/build.sh [BUILD_DIR] [CMAKE_ARGS...]
set -euo pipefail
cd "$(dirname "$0")/.."
dir="${1:-build}"
shift || true
cmake -S . -B "$dir" -DCMAKE_BUILD_TYPE=Release -DGLTFIO_WERROR=ON "$@" >/dev/null
cmake --build "$dir" -j "$(nproc)"
