#!/usr/bin/env bash
# Checks the module's dependency rules on a source tree:
#   - module folders include and link only downwards:
#     sdk < host < core < scene, export < plugin; scene and export never meet;
#   - gltf/ includes only itself, and only core/ and above use it;
#   - SDK headers ("vexo/vx_*.h") are included only from sdk/, host/ and vexo/;
#   - the headless host (vexo/) never includes module code.
# Usage: check_layers.sh ROOT     prints each violation, exits 1 if any
#        check_layers.sh --self-test
set -uo pipefail

# The layer of a folder or an include's first path component; empty: not a module layer.
rank_of() {
  case "$1" in
    sdk) echo 0 ;; host) echo 1 ;; core) echo 2 ;; scene | export) echo 3 ;; plugin) echo 4 ;; *) echo "" ;;
  esac
}

# The layer an include names: "vexo/vx_*" is the SDK; "host/...", "core/"... are module folders.
target_of() {
  case "$1" in
    vexo/vx_*) echo sdk ;;
    host/* | core/* | scene/* | export/* | plugin/* | gltf/*) echo "${1%%/*}" ;;
    *) echo "" ;;
  esac
}

# May code in folder `from` depend on layer `to`?
allowed() {
  local from=$1 to=$2
  [[ "$from" == "$to" ]] && return 0
  if [[ "$from" == gltf ]]; then return 1; fi
  if [[ "$from" == vexo ]]; then [[ "$to" == sdk ]]; return; fi
  # Of the module, only host/ speaks the SDK.
  if [[ "$to" == sdk ]]; then [[ "$from" == host ]]; return; fi
  if [[ "$to" == gltf ]]; then (($(rank_of "$from") >= 2)); return; fi
  local rf rt
  rf=$(rank_of "$from") rt=$(rank_of "$to")
  [[ -n "$rf" && -n "$rt" ]] && ((rt < rf))
}

# Folder -> layer name for the CMake targets the folders define.
layer_of_target() {
  case "$1" in
    vexo_sdk) echo sdk ;; gltfio_host) echo host ;; gltfio_core) echo core ;; gltfio_scene) echo scene ;;
    gltfio_geometry | gltfio_material | gltfio_animation) echo export ;; gltfio_gltf) echo gltf ;;
    gltfio) echo plugin ;; *) echo "" ;;
  esac
}

check() {
  local root=$1 failures=0 file folder path to line target
  for folder in sdk host core scene export plugin gltf vexo; do
    [[ -d "$root/$folder" ]] || continue
    while IFS= read -r line; do
      file=${line%%:*}
      line=${line#*:}  # drop the file name, then the line number
      path=$(sed -n 's/^[[:space:]]*#[[:space:]]*include[[:space:]]*"\([^"]*\)".*/\1/p' <<<"${line#*:}")
      [[ -n "$path" ]] || continue
      to=$(target_of "$path")
      [[ -n "$to" ]] || continue
      if ! allowed "$folder" "$to"; then
        echo "${file#"$root"/}: includes \"$path\" ($folder may not depend on $to)"
        failures=$((failures + 1))
      fi
    done < <(grep -rHn --include='*.h' --include='*.cpp' '#[[:space:]]*include' "$root/$folder" 2>/dev/null)

    while IFS= read -r file; do
      for target in $(tr '\n' ' ' <"$file" | grep -o 'target_link_libraries([^)]*)' | tr '()' '  ' | cut -d' ' -f2-); do
        to=$(layer_of_target "$target")
        [[ -n "$to" ]] || continue
        if ! allowed "$folder" "$to"; then
          echo "${file#"$root"/}: links $target ($folder may not depend on $to)"
          failures=$((failures + 1))
        fi
      done
    done < <(find "$root/$folder" -name CMakeLists.txt)
  done
  ((failures == 0))
}

# Each kind of violation, planted in a small tree, must be caught; a clean tree must pass.
self_test() {
  local tmp status=0
  tmp=$(mktemp -d) || exit 1
  trap 'rm -rf "$tmp"' EXIT
  plant() {  # plant NAME FILE TEXT: a fresh clean tree plus one file
    rm -rf "${tmp:?}/tree" && mkdir -p "$tmp/tree"/{sdk/vexo,host,core,scene,export/geometry,plugin,gltf,vexo/engine}
    echo '#include "vexo/vx_scene.h"' >"$tmp/tree/host/item.h"
    echo '#include "host/item.h"' >"$tmp/tree/core/context.h"
    echo '#include "gltf/document.h"' >"$tmp/tree/core/log.h"
    echo '#include "core/context.h"' >"$tmp/tree/export/geometry/mesh.h"
    echo 'target_link_libraries(gltfio_scene PUBLIC gltfio_core)' >"$tmp/tree/scene/CMakeLists.txt"
    if [[ -n "$2" ]]; then mkdir -p "$(dirname "$tmp/tree/$2")" && printf '%s\n' "$3" >>"$tmp/tree/$2"; fi
  }
  expect() {  # expect pass|fail NAME FILE TEXT
    plant "$2" "$3" "$4"
    if check "$tmp/tree" >/dev/null; then got=pass; else got=fail; fi
    if [[ "$got" != "$1" ]]; then
      echo "self-test: $2: expected $1, got $got"
      status=1
    fi
  }
  expect pass "clean tree" "" ""
  expect fail "core includes a phase" core/context.h '#include "scene/node_walk.h"'
  expect fail "scene includes export" scene/walk.cpp '#include "export/geometry/mesh.h"'
  expect fail "export includes plugin" export/geometry/mesh.cpp '  #  include "plugin/gltf_saver.h"'
  expect fail "SDK header in a phase" scene/types.h '#include "vexo/vx_mesh.h"'
  expect fail "SDK header in core" core/types.h '#include "vexo/vx_scene.h"'
  expect fail "gltf includes the host" gltf/doc.cpp '#include "host/item.h"'
  expect fail "host uses gltf" host/log.cpp '#include "gltf/report.h"'
  expect fail "the headless host includes module code" vexo/engine/scene.cpp '#include "core/context.h"'
  expect fail "scene links upwards" scene/CMakeLists.txt 'target_link_libraries(gltfio_scene PRIVATE gltfio)'
  expect fail "core links a phase" core/CMakeLists.txt $'target_link_libraries(gltfio_core\n  PUBLIC gltfio_geometry)'
  expect pass "plugin uses every phase" plugin/saver.cpp $'#include "scene/node_walk.h"\n#include "export/geometry/mesh.h"'
  expect pass "the host implementation uses the SDK" vexo/engine/sdk.cpp '#include "vexo/vx_mesh.h"'
  exit $status
}

if [[ "${1:-}" == "--self-test" ]]; then self_test; fi
[[ $# -eq 1 && -d "$1" ]] || { echo "usage: $0 ROOT | --self-test" >&2; exit 2; }
check "$1"
