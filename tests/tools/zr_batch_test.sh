#!/bin/bash
# SPDX-License-Identifier: MIT
# zr_batch_test.sh ZR SOURCE ENGINE: a batch over scenes with awkward names, one of them broken.
set -euo pipefail
export ZR=$1
source=$2 engine=$3
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
check() {
    [ "$2" = "$3" ] || { echo "$1: expected \"$3\", got \"$2\""; exit 1; }
}
awkward="it's a \$(mill) \"#1\""
mkdir -p "$folder/in/$awkward"
cp "$source/examples/windmill.gltf" "$folder/in/$awkward/wind mill.gltf"
cp "$source/examples/windmill.gltf" "$folder/in/plain.gltf"
echo '{' > "$folder/in/broken.gltf"

status=0
batch() { "$source/tools/zr-batch" -e "$engine" -j 2 "$@" > "$folder/said" 2> "$folder/errors" || status=$?; }
batch export "$folder/in" "$folder/out" --animation "turn" --up z
cat "$folder/said" "$folder/errors"
check "exit code" "$status" 1
check "summary" "$(cat "$folder/said")" "2 of 3 scenes done, 1 failed"
check "failures" "$(grep -c '^failed (1): broken.gltf: zr: ' "$folder/errors")" 1
check "same result" "$(cmp "$folder/out/plain.gltf" "$folder/out/$awkward/wind mill.gltf" && echo yes)" yes
check "an option's value arrives" "$("$ZR" animations "$folder/out/plain.gltf" | grep -c turn)" 1
check "what a scene printed" "$(grep -c 'keys became' "$folder"/out/log/*.out | grep -c ':1$')" 2

# Finished scenes are skipped; failed ones are tried again.
cp "$folder/in/plain.gltf" "$folder/in/broken.gltf"
status=0
batch export "$folder/in" "$folder/out" --animation "turn" --up z
check "exit code of the second run" "$status" 0
check "summary of the second run" "$(cat "$folder/said")" "1 of 1 scenes done, 0 failed"
echo "zr-batch with $engine: all as it should be"
