#!/usr/bin/env bash
# under_xvfb.sh PROGRAM [ARGUMENT...]: runs the program on its own X server; exit code 77 if there is none.
set -u
command -v Xvfb >/dev/null || { echo "skipped: Xvfb is not installed"; exit 77; }
folder=$(mktemp -d) || exit 1
mkfifo "$folder/display"
# Without -noreset the server resets after its last client and refuses the next program for a moment.
Xvfb -noreset -displayfd 3 -screen 0 1280x1024x24 -nolisten tcp 3>"$folder/display" 2>"$folder/log" &
server=$!
trap 'kill "$server" 2>/dev/null; wait "$server" 2>/dev/null; rm -rf "$folder"' EXIT
# The server writes its number when it accepts clients, and closes the pipe if it fails.
if ! read -r -t 60 number <"$folder/display"; then
  cat "$folder/log"
  echo "skipped: Xvfb did not start"
  exit 77
fi
DISPLAY=":$number" WAYLAND_DISPLAY='' QT_QPA_PLATFORM=xcb "$@"
