# shellcheck shell=bash
# ./run fuzz

# corpus_seeds TARGET: files of the collection that a target can begin with, as extensions.
corpus_extensions() {
  case "$1" in
    bmp) echo bmp dib ;;
    gif | png | webp | emf | wmf) echo "$1" ;;
    icon) echo ico ;;
    jpeg | exif_*) echo jpg jpeg ;;
    metadata) echo jpg jpeg png webp gif ;;
    tiff | tiff_pages) echo tif tiff ;;
    wmf_to_emf) echo wmf ;;
  esac
}

# link_corpus_seeds TARGET FOLDER: links the files of RASTERKIT_CORPUS that the target reads, up to 1 MiB each, since the
# engine is slow with large ones. They are only read: what grows from them goes elsewhere.
link_corpus_seeds() {
  local extension names=()
  [ -n "${RASTERKIT_CORPUS:-}" ] || return 0
  for extension in $(corpus_extensions "$1"); do names+=(${names[0]:+-o} -iname "*.$extension"); done
  [ ${#names[@]} -gt 0 ] || return 0
  find "$(realpath "$RASTERKIT_CORPUS")" -type f -size -1025k \( "${names[@]}" \) -print0 |
    while IFS= read -r -d '' file; do ln -sf "$file" "$2/$(printf '%s' "$file" | sha1sum | cut -c 1-16)"; done
}

# edges_of LOG: how many edges the seeds covered, and how many in the end.
edges_of() {
  awk '/INITED/ || /cov: / { for (i = 1; i < NF; i++) if ($i == "cov:") last = $(i + 1) }
       /INITED/ { first = last }
       END { print first + 0, last + 0 }' "$1"
}

# fuzz_target PROGRAM SECONDS: findings go to build/fuzz/findings, the grown corpus to build/fuzz/corpus.
fuzz_target() {
  local name corpus log seeds first last note=
  name=$(basename "$1" _fuzzer)
  corpus=build/fuzz/corpus/$name
  seeds=build/fuzz/real/$name
  log=build/fuzz/$name.log
  rm -rf "$seeds"
  mkdir -p "$corpus" "$seeds" build/fuzz/findings
  link_corpus_seeds "$name" "$seeds"
  if LSAN_OPTIONS="suppressions=$PWD/fuzz/lsan.supp:print_suppressions=0" \
       "$1" -max_total_time="$2" -print_final_stats=1 -rss_limit_mb=4096 -timeout=25 \
       -artifact_prefix="build/fuzz/findings/$name-" "$corpus" "fuzz/seeds/$name" "$seeds" >"$log" 2>&1 </dev/null; then
    read -r first last < <(edges_of "$log")
    [ "$last" -le "$first" ] || note=', still grows'
    printf '%-18s %10s executions, %6d edges, %5d of them new%s\n' "$name" \
      "$(awk '/number_of_executed_units/ {print $2}' "$log")" "$last" $((last - first)) "$note"
  else
    tail -n 40 "$log" >&2
    printf '%-18s FOUND SOMETHING: %s and build/fuzz/findings\n' "$name" "$log"
    return 1
  fi
}

run_fuzz() {
  local seconds=${1:-60} pattern=${2:-.} names=()
  [[ $seconds =~ ^[0-9]+$ ]] || stop "fuzz takes a number of seconds, not '$seconds'"
  mapfile -t names < <(sed 's|.*/||' fuzz/targets.txt | grep -E -- "$pattern")
  [ ${#names[@]} -gt 0 ] || stop "no fuzz target matches '$pattern'"
  need "${build_packages[@]}" "${clang_packages[@]}"
  build fuzz "${names[@]/%/_fuzzer}"
  say "each target for $seconds seconds, two at a time"
  export -f fuzz_target corpus_extensions link_corpus_seeds edges_of
  printf 'build/fuzz/fuzzers/%s_fuzzer\n' "${names[@]}" |
    xargs -P 2 -I '{}' bash -c 'fuzz_target "$@"' _ '{}' "$seconds" | tee build/fuzz/summary.txt ||
    stop "a fuzz target found something"
  say "still growing: $(awk '/still grows/ { printf "%s%s", separator, $1; separator = ", " }
                             END { if (separator == "") printf "none" }' build/fuzz/summary.txt)"
}
