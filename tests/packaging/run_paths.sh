#!/bin/sh
# Checks where the loader searches for the libraries of programs: an empty or relative element of the
# run path stands for the current folder, where anybody may have put a library.
# usage: run_paths.sh PROGRAM...
command -v readelf >/dev/null || exit 77

code=0
for program in "$@"; do
  paths=$(readelf -d "$program" | sed -n 's/.*(R\(UN\)\{0,1\}PATH).*\[\(.*\)\]$/\2/p') || exit 1
  echo "$program: '$paths'"
  [ -n "$paths" ] || continue
  rest="$paths:"
  while [ -n "$rest" ]; do
    element=${rest%%:*}
    rest=${rest#*:}
    case $element in
      /* | '$ORIGIN' | '$ORIGIN'/*) ;;
      *) echo "  the element '$element' is searched in the current folder"; code=1 ;;
    esac
  done
done
exit $code
