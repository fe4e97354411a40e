#!/usr/bin/env bash
# demo.sh FOLDER_OF_PROGRAMS: the main job on the pictures of this folder. ./run demo calls it after building.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
rasterkit=$1/apps/rasterkit/rasterkit
check_upright=$1/samples/check_upright
contact_sheet=$1/samples/contact_sheet
out=demo-output
types=(bmp jpg png)

mkdir -p "$out"
echo "== photographs as they lie"
"$rasterkit" info samples/orientation-*.jpg

for type in "${types[@]}"; do
  echo "== upright as $type (rasterkit convert)"
  "$rasterkit" convert --out-dir "$out" --type "$type" --overwrite --jobs 2 samples/orientation-*.jpg samples/gray.jpg
  "$check_upright" samples/upright.png "$out"/orientation-*."$type"
  "$rasterkit" info "$out"/orientation-*."$type" "$out/gray.$type" >/dev/null
done

echo "== a plan, turned by 30 degrees (rasterkit rotate)"
"$rasterkit" rotate samples/plan.png "$out/plan-turned.png" --angle 30 --overwrite
"$rasterkit" info "$out/plan-turned.png"

"$contact_sheet" "$out/overview.png" 4 samples/orientation-?.jpg "$out"/orientation-?.png
echo
echo "Look into $out/: overview.png shows the eight photographs as they lie, and below them upright;"
echo "orientation-1 to orientation-8 are there as ${types[*]}."
