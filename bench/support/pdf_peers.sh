#!/usr/bin/env bash
# The tool beside pdftoppm and mutool (poppler-utils, mupdf-tools): seconds and most memory for a vector plan of A0 size, a
# scanned page and a page of text. Writes uncompressed files, so that drawing is what is measured.
#   build/bench/benchmarks/pdf_bench --benchmark_filter=none && bench/pdf_peers.sh build/bench
set -euo pipefail
build=${1:-build/bench}
files=${TMPDIR:-/tmp}/rasterkit-pdf-bench
"$build/benchmarks/pdf_bench" --benchmark_filter='text|scan|plan/150' --benchmark_min_time=0 >/dev/null 2>&1 || true
out=$(mktemp -d)
trap 'rm -rf "$out"' EXIT

# measure NAME COMMAND...: real seconds and MiB at the peak
measure() {
  local name=$1; shift
  /usr/bin/env python3 - "$name" "$@" <<'PYTHON'
import resource, subprocess, sys, time
start = time.monotonic()
code = subprocess.run(sys.argv[2:], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL).returncode
seconds = time.monotonic() - start
peak = resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss / 1024
print(f"  {sys.argv[1]:10} {seconds:8.2f} s {peak:8.0f} MiB" + (f"  (exit {code})" if code else ""))
PYTHON
}

for name in text scan plan; do
  for dpi in 150 300; do
    echo "$name.pdf at $dpi dpi"
    measure rasterkit "$build/tool/rasterkit" pdf "$files/$name.pdf" "$out/page.bmp" --dpi "$dpi" --overwrite
    measure pdftoppm pdftoppm -r "$dpi" -singlefile "$files/$name.pdf" "$out/page"
    measure mutool mutool draw -q -r "$dpi" -o "$out/page.ppm" "$files/$name.pdf" 1
  done
done
