#!/usr/bin/env bash
# Rebuilds the example textures in this folder from make_textures.cpp, with
# the image writer of Debian's libstb-dev (installed by scripts/setup.sh).
set -euo pipefail
cd "$(dirname "$0")"
tool="$(mktemp -d)"
trap 'rm -rf "$tool"' EXIT
c++ -std=c++17 -O2 -Wall -Wextra -o "$tool/make_textures" make_textures.cpp -lm
"$tool/make_textures" .
