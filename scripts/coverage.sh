# shellcheck shell=bash
# ./run coverage: the lines that the tests run.

# Without them ./run coverage fails: lines of the library without Qt that are run, in percent.
least_coverage=90

# covered NAME FILTER...: a report of the files that match, with the least covered first.
covered() {
  local name=$1 filter arguments=()
  shift
  for filter in "$@"; do arguments+=(--filter "$filter"); done
  gcovr --root . --object-directory build/coverage "${arguments[@]}" --exclude-throw-branches \
    --gcov-ignore-parse-errors=negative_hits.warn_once_per_file -j "$(jobs_count)" \
    --csv "build/coverage/$name.csv" --json-summary "build/coverage/$name.json" build/coverage >/dev/null \
    2>"build/coverage/$name.log" || { cat "build/coverage/$name.log" >&2; stop "gcovr failed"; }
}

# lines_of NAME: covered and all lines, and percent.
lines_of() {
  awk -F, 'NR > 1 { all += $2; run += $3 }
           END { printf "%d of %d lines, %.1f percent", run, all, all ? 100 * run / all : 0 }' "build/coverage/$1.csv"
}

# least_covered NAME: the twenty files with most lines that are not run.
least_covered() {
  awk -F, 'NR > 1 && $2 > $3 { printf "%5d of %5d lines not run  %s\n", $2 - $3, $2, $1 }' "build/coverage/$1.csv" |
    sort -rn | head -n 20
}

run_coverage() {
  need "${build_packages[@]}" "${test_packages[@]}" "${peer_packages[@]}" gcovr
  build coverage
  find build/coverage -name '*.gcda' -delete
  run_tests coverage
  covered library '^rasterkit/(?!qt/|dialogs/)'
  covered dialogs '^rasterkit/(qt|dialogs)/'
  covered tool '^tool/'
  say "least covered files of the library"
  least_covered library
  say "least covered files of rasterkit/qt and rasterkit/dialogs"
  least_covered dialogs
  say "library: $(lines_of library)"
  say "rasterkit/qt, rasterkit/dialogs: $(lines_of dialogs)"
  say "tool: $(lines_of tool)"
  lines_of library | awk -v least=$least_coverage '{ exit $(NF - 1) >= least ? 0 : 1 }' ||
    stop "fewer than $least_coverage percent of the library's lines are run"
}
