#!/usr/bin/env bash
# Installs what building gltfio needs on Debian 12 (run as root).
# With --test, also what the test suite needs: Node.js and the pinned glTF
# validator from tests/validator/package-lock.json.
set -euo pipefail
cd "$(dirname "$0")/.."

packages=(cmake g++ make rapidjson-dev libcli11-dev libgtest-dev libgmock-dev)
if [[ "${1:-}" == "--test" ]]; then
  command -v node >/dev/null 2>&1 || packages+=(nodejs)
  command -v npm >/dev/null 2>&1 || packages+=(npm)
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
  lock=tests/validator/package-lock.json
  stamp=tests/validator/node_modules/.installed-lock
  if ! cmp -s "$lock" "$stamp" 2>/dev/null; then
    npm ci --prefix tests/validator --no-audit --no-fund --loglevel=error
    cp "$lock" "$stamp"
  fi
fi
