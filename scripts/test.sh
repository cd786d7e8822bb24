#!/usr/bin/env bash
# Builds and runs the whole test suite twice: an optimised build, then one
# with AddressSanitizer and UndefinedBehaviorSanitizer.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh --test

bash scripts/build.sh build
ctest --test-dir build --output-on-failure -j "$(nproc)"

bash scripts/build.sh build-asan -DCMAKE_BUILD_TYPE=Debug -DGLTFIO_SANITIZE=ON -DGLTFIO_BENCH=OFF
ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
  ctest --test-dir build-asan --output-on-failure -j "$(nproc)"
