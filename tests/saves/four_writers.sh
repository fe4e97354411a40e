#!/usr/bin/env bash
# four_writers.sh TOOL PICTURE [ROUNDS]: four processes write one new file at the same time. In each round one must
# succeed and three must report that the file exists.
set -euo pipefail
tool=$1 picture=$2 rounds=${3:-80}
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
faults=0
for ((round = 0; round < rounds; round++)); do
  rm -f "$folder"/*
  for writer in 1 2 3 4; do
    { "$tool" convert "$picture" "$folder/out.png" 2>/dev/null && echo 0 || echo $?; } >"$folder/code$writer" &
  done
  wait
  codes=$(sort "$folder"/code* | tr -d '\n')
  [ "$codes" = 0444 ] && "$tool" info "$folder/out.png" >/dev/null && [ "$(ls -A "$folder" | wc -l)" -eq 5 ] ||
    faults=$((faults + 1))
done
echo "$rounds rounds, $faults with more or fewer than one success"
[ "$faults" -eq 0 ]
