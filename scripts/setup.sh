#!/usr/bin/env bash
# Installs what building gltfio needs on Debian 12 (run as root).
# With --test, also what the test suite needs: Node.js, the pinned glTF
# validator and the glTF reader the tests read files back with, Python for the
# generated test scenes, and clang with its sanitizer and libFuzzer runtimes
# for the save fuzzer (fuzz/run.sh).
set -euo pipefail
cd "$(dirname "$0")/.."

packages=(cmake g++ make rapidjson-dev libcli11-dev libgtest-dev libgmock-dev libstb-dev)
if [[ "${1:-}" == "--test" ]]; then
  command -v node >/dev/null 2>&1 || packages+=(nodejs)
  command -v npm >/dev/null 2>&1 || packages+=(npm)
  packages+=(python3 clang libclang-rt-dev)
fi

missing=()
for package in "${packages[@]}"; do
  dpkg -s "$package" >/dev/null 2>&1 || missing+=("$package")
done
if ((${#missing[@]})); then
  export DEBIAN_FRONTEND=noninteractive
  apt-get update -qq
  apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi

if [[ "${1:-}" == "--test" ]]; then
  # The glTF validator, an independent glTF reader and an independent engine
  # (three.js, which skins the written files), pinned by their lock files.
  for tool in tests/validator tests/reader tests/engine; do
    stamp="$tool/node_modules/.installed-lock"
    if ! cmp -s "$tool/package-lock.json" "$stamp" 2>/dev/null; then
      npm ci --prefix "$tool" --no-audit --no-fund --loglevel=error
      cp "$tool/package-lock.json" "$stamp"
    fi
  done
fi
