#!/usr/bin/env bash
# full_disk.sh TOOL PICTURE: saves into file systems without room. Needs root.
set -euo pipefail
tool=$1 picture=$2
[ "$(id -u)" -eq 0 ] || { echo "needs root"; exit 77; }
folder=$(mktemp -d)
trap 'mountpoint -q "$folder/disk" && umount "$folder/disk"; rm -rf "$folder"' EXIT
mkdir "$folder/disk"
faults=0 runs=0
fault() { faults=$((faults + 1)); echo "$1"; }
# try NAME [OPTION]: the save must fail with exit code 4, name the file and leave nothing.
try() {
  local before after code=0
  before=$(cd "$folder/disk" && ls -A && cat ./*.* 2>/dev/null | cksum)
  "$tool" convert "$picture" "$folder/disk/$1" "${@:2}" 2>"$folder/errors" || code=$?
  after=$(cd "$folder/disk" && ls -A && cat ./*.* 2>/dev/null | cksum)
  runs=$((runs + 1))
  [ "$code" -eq 4 ] || fault "$1: exit code $code"
  grep -q "disk/$1: " "$folder/errors" || fault "$1: not named: $(cat "$folder/errors")"
  [ "$before" = "$after" ] || fault "$1: something changed"
}
for kind in tmpfs ext4; do
  if [ "$kind" = tmpfs ]; then
    mount -t tmpfs -o size=200k tmpfs "$folder/disk"
  else
    truncate -s 1M "$folder/image"
    mkfs.ext4 -q -O ^has_journal "$folder/image"
    mount -o loop "$folder/image" "$folder/disk"
  fi
  echo precious >"$folder/disk/old.png"
  echo precious >"$folder/disk/old.bmp"
  # Room for the beginning of the picture only.
  head -c 10M /dev/zero >"$folder/disk/filling" 2>/dev/null || true
  for room in 0 4096 16384; do
    truncate -s "-$room" "$folder/disk/filling"
    sync -f "$folder/disk"
    for name in old.bmp new.bmp old.tif new.tif; do
      try "$name" --overwrite $([ "${name#*.}" = tif ] && echo "--compression none")
      try "$name" --overwrite --no-sync $([ "${name#*.}" = tif ] && echo "--compression none")
    done
    for name in new.bmp new.tif; do
      try "$name" $([ "${name#*.}" = tif ] && echo "--compression none")
      try "$name" --no-sync $([ "${name#*.}" = tif ] && echo "--compression none")
    done
  done
  umount "$folder/disk"
done
echo "full disk: $runs saves, $faults faults"
[ "$faults" -eq 0 ]
