#!/usr/bin/env bash
# Installs what building gltfio needs on Debian 12 (run as root), and what
# `vexo preview` renders with: Chromium, Node.js and the renderer's npm packages.
# With --test, also what the test suite needs: the pinned glTF
# validator and the glTF reader the tests read files back with, Python for the
# generated test scenes, and clang with its sanitizer and libFuzzer runtimes
# for the save fuzzer (fuzz/run.sh), and the real glTF assets the loader
# tests convert. With --bench, the peer exporter the benchmarks compare with.
set -euo pipefail
cd "$(dirname "$0")/.."

packages=(cmake g++ make rapidjson-dev libcli11-dev libgtest-dev libgmock-dev libstb-dev libtinygltf-dev chromium)
command -v node >/dev/null 2>&1 || packages+=(nodejs)
command -v npm >/dev/null 2>&1 || packages+=(npm)
if [[ "${1:-}" == "--test" ]]; then
  # assimp-testmodels ships real glTF sample assets that the loader tests convert.
  packages+=(python3 clang libclang-rt-dev assimp-testmodels)
fi
if [[ "${1:-}" == "--bench" ]]; then
  # The peer the benchmarks measure against, as a library and as a command.
  packages+=(libassimp-dev assimp-utils)
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

# The preview renderer's three.js and puppeteer-core, pinned by the lock file;
# it drives Debian's chromium and never downloads a browser of its own.
preview=vexo/preview
stamp="$preview/node_modules/.installed-lock"
if ! cmp -s "$preview/package-lock.json" "$stamp" 2>/dev/null; then
  PUPPETEER_SKIP_DOWNLOAD=1 npm ci --prefix "$preview" --no-audit --no-fund --loglevel=error
  cp "$preview/package-lock.json" "$stamp"
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
