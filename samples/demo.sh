#!/usr/bin/env bash
# demo.sh FOLDER_OF_PROGRAMS: the main job on the pictures of this folder. ./run demo calls it after building.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
rasterkit=$1/tool/rasterkit
check_upright=$1/samples/check_upright
contact_sheet=$1/samples/contact_sheet
out=demo-output
types=(bmp jpg png)

mkdir -p "$out"
echo "== photographs as they lie"
"$rasterkit" info samples/orientation-*.jpg

for type in "${types[@]}"; do
  echo "== upright as $type (rasterkit convert)"
  "$rasterkit" convert --out-dir "$out" --format "$type" --overwrite --jobs 2 samples/orientation-*.jpg samples/gray.jpg
  "$check_upright" samples/upright.png "$out"/orientation-*."$type"
  "$rasterkit" info "$out"/orientation-*."$type" "$out/gray.$type" >/dev/null
done

echo "== a plan, turned by 30 degrees (rasterkit rotate)"
"$rasterkit" rotate samples/plan.png "$out/plan-turned.png" --angle 30 --overwrite
"$rasterkit" info "$out/plan-turned.png"

# must_say TEXT COMMAND...: stops the demo when the command's output lacks the text.
must_say() {
  local text=$1; shift
  "$@" | grep -F -- "$text" >/dev/null || { echo "demo: '$*' should say: $text" >&2; exit 1; }
}

echo "== the plan with its world file becomes a GeoTIFF (rasterkit geotiff)"
"$rasterkit" geotiff samples/plan.png "$out/plan.tif" --overwrite
"$rasterkit" info "$out/plan.tif"
must_say '"affine":[0.05,0.0,0.0,-0.05,4468000.025,5333999.975]' "$rasterkit" info --json "$out/plan.tif"
if command -v gdalinfo >/dev/null; then
  must_say "Origin = (4468000.0000" gdalinfo "$out/plan.tif"
  must_say "Pixel Size = (0.0500000000" gdalinfo "$out/plan.tif"
fi

echo "== a grid of heights: what it holds, and two places on it (rasterkit geotiff)"
"$rasterkit" geotiff samples/terrain.tif --at 14,13 --at-map 4468077,5333955
must_say "at 14,13 (map 4468029,5333973): 631.2442" "$rasterkit" geotiff samples/terrain.tif --at 14,13

"$contact_sheet" "$out/overview.png" 4 samples/orientation-?.jpg "$out"/orientation-?.png
echo
echo "Look into $out/: overview.png shows the eight photographs as they lie, and below them upright;"
echo "orientation-1 to orientation-8 are there as ${types[*]}. plan.tif lies on the map where samples/plan.pgw says,"
echo "also for other programs (gdalinfo $out/plan.tif)."
