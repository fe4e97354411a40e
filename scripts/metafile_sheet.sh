# shellcheck shell=bash
# ./run metafile-sheet

# draw_metafile TOOL FILE PICTURE: at most 960 x 720 pixels, in the proportions of the file.
draw_metafile() {
  local size width height wanted=960x
  size=$("$1" info -- "$2" 2>/dev/null </dev/null | sed -nE 's/.*, ([0-9]+) x ([0-9]+) pixels at .*/\1 \2/p' | head -n 1)
  read -r width height <<<"${size:-1 1}"
  [ $((width * 720)) -ge $((height * 960)) ] || wanted=x720
  "$1" convert --size "$wanted" -- "$2" "$3" >/dev/null 2>&1 </dev/null ||
    printf 'not drawn: %s\n' "$(basename "$2")"
}

# draw_with_peer FOLDER FILE...: one at a time, so that a file at which it hangs costs no other.
draw_with_peer() {
  local folder=$1 file
  shift
  for file in "$@"; do
    timeout -k 5 60 soffice --headless --norestore "-env:UserInstallation=file://$PWD/build/metafile-sheet/profile" \
      --convert-to png --outdir "$folder" "$file" >>build/metafile-sheet/peer.log 2>&1 </dev/null || true
  done
}

run_metafile_sheet() {
  local folder=${1:-.} out=build/metafile-sheet kind file name files=() parts=() pictures=1 groups=4
  [ -d "$folder" ] || stop "there is no folder '$folder'"
  need "${build_packages[@]}"
  build release rasterkit_tool metafile_sheet
  rm -rf "$out"
  if command -v soffice >/dev/null; then pictures=2 groups=2; fi
  for kind in emf wmf; do
    mkdir -p "$out/ours/$kind" "$out/peer/$kind"
    mapfile -d '' -t files < <(find "$folder" -maxdepth 1 -type f -iname "*.$kind" -print0 | sort -z)
    [ ${#files[@]} -gt 0 ] || continue
    [ $pictures -eq 1 ] || draw_with_peer "$out/peer/$kind" "${files[@]}"
    for file in "${files[@]}"; do
      name=$(basename "${file%.*}")
      draw_metafile build/release/tool/rasterkit "$file" "$out/ours/$kind/$name.png"
      parts+=("$(basename "$file")" "$out/ours/$kind/$name.png")
      [ $pictures -eq 1 ] || parts+=("$out/peer/$kind/$name.png")
    done
  done
  [ ${#parts[@]} -gt 0 ] || stop "no WMF or EMF files in '$folder'"
  build/release/tests/metafile_sheet/metafile_sheet "$out/sheet.png" $pictures $groups "${parts[@]}" ||
    stop "the sheet failed"
  say "$out/sheet.png: $((${#parts[@]} / (pictures + 1))) files"
}
