#!/usr/bin/env bash
# power_cut.sh TOOL PICTURE: saves into a file system on a loop device and copies the device at the moment the tool
# reports success. What is missing in the copy would be lost in a power failure. Needs root.
set -euo pipefail
tool=$1 picture=$2
[ "$(id -u)" -eq 0 ] || { echo "needs root"; exit 77; }
folder=$(mktemp -d)
cleanup() {
  for place in after before; do mountpoint -q "$folder/$place" && umount "$folder/$place"; done
  rm -rf "$folder"
}
trap cleanup EXIT
truncate -s 64M "$folder/disk"
mkfs.ext4 -q "$folder/disk"
mkdir "$folder/before" "$folder/after"
mount -o loop "$folder/disk" "$folder/before"
expected=$folder/expected.png
"$tool" convert "$picture" "$expected" 2>/dev/null
echo precious >"$folder/before/replaced.png"
sync -f "$folder/before"

faults=0
# look NAME...: what the copy of the disk holds.
look() {
  cp "$folder/disk" "$folder/copy"
  mount -o loop "$folder/copy" "$folder/after"
  for name in "$@"; do
    cmp -s "$folder/after/$name" "$expected" && continue
    faults=$((faults + 1))
    echo "$name: $(stat -c '%s bytes' "$folder/after/$name" 2>/dev/null || echo missing)"
  done
  umount "$folder/after"
}
"$tool" convert "$picture" "$folder/before/new.png" 2>/dev/null
look new.png
"$tool" convert --overwrite "$picture" "$folder/before/replaced.png" 2>/dev/null
look new.png replaced.png
inputs=() outputs=()
for number in $(seq 40); do
  cp "$picture" "$folder/$number.${picture##*.}"
  inputs+=("$folder/$number.${picture##*.}")
  outputs+=("batch/$number.png")
done
"$tool" convert --format png --out-dir "$folder/before/batch" "${inputs[@]}" 2>/dev/null
look "${outputs[@]}"
echo "power cut: $faults of $((3 + ${#outputs[@]})) files not whole"
[ "$faults" -eq 0 ]
