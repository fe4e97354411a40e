#!/usr/bin/env bash
# under_xvfb.sh PROGRAM [ARGUMENT...]: runs the program on an X server of its own; 77 where there is none to be had.
set -u
command -v Xvfb >/dev/null || { echo "skipped: Xvfb is not installed"; exit 77; }
folder=$(mktemp -d) || exit 1
mkfifo "$folder/display"
# A server that begins anew with each last client would refuse the next program for a moment.
Xvfb -noreset -displayfd 3 -screen 0 1280x1024x24 -nolisten tcp 3>"$folder/display" 2>"$folder/log" &
server=$!
trap 'kill "$server" 2>/dev/null; wait "$server" 2>/dev/null; rm -rf "$folder"' EXIT
# It tells its number as soon as it takes clients, and closes the pipe when it fails.
if ! read -r -t 60 number <"$folder/display"; then
  cat "$folder/log"
  echo "skipped: Xvfb did not start"
  exit 77
fi
DISPLAY=":$number" WAYLAND_DISPLAY='' QT_QPA_PLATFORM=xcb "$@"
