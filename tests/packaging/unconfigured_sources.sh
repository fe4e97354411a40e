#!/usr/bin/env bash
# unconfigured_sources.sh COMPILER SOURCE_TREE WORK_FOLDER
# Checks the syntax of the library's sources without Qt in a copy of the folder rasterkit/ alone. The root is the only
# include folder besides those of pkg-config, so nothing that CMake generates can help. One source per folder, or all
# with RASTERKIT_FULL=1.
set -euo pipefail
compiler=$1 source_tree=$2 work=$3

rm -rf "$work"
mkdir -p "$work"
cp -r "$source_tree/rasterkit" "$work/"
cd "$work"

read -ra flags <<<"$(pkg-config --cflags libhwy libdeflate libjpeg libpng libtiff-4 libwebp libopenjp2 lcms2 cairo-ft fontconfig freetype2)"

# The smallest source of each folder comes first.
find rasterkit -name '*.cpp' -not -path 'rasterkit/qt/*' -not -path 'rasterkit/dialogs/*' -printf '%h %s %p\n' |
  sort -k1,1 -k2,2n |
  awk -v full="${RASTERKIT_FULL:-0}" 'full == 1 || !($1 in seen) { print $3 } { seen[$1] = 1 }' >sources.txt

[ "$(wc -l <sources.txt)" -ge 20 ] || { echo "only $(wc -l <sources.txt) sources were found" >&2; exit 1; }

check() {
  "$@" || { echo "failed: ${*: -1}" >&2; return 1; }
}
export -f check
xargs -P "${RASTERKIT_JOBS:-$(nproc)}" -I '{}' bash -c 'check "$@"' _ \
  "$compiler" -fsyntax-only -std=c++20 -I. "${flags[@]}" '{}' <sources.txt
echo "$(wc -l <sources.txt) sources checked"
