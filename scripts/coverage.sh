# shellcheck shell=bash
# ./run coverage: the lines that the tests run.

# Lines of the library without Qt that must be run, in percent.
least_coverage=90

# count_lines: what the tests ran, of all files, in build/coverage/all.json.
count_lines() {
  gcovr --root . --object-directory build/coverage --filter '^rasterkit/' --filter '^tool/' \
    --gcov-ignore-parse-errors -j "$(jobs_count)" --json build/coverage/all.json build/coverage \
    >build/coverage/gcovr.log 2>&1 || { cat build/coverage/gcovr.log >&2; stop "gcovr failed"; }
}

# report NAME FILTER: the numbers of the files that match, in build/coverage/NAME.csv.
report() {
  gcovr --root . --add-tracefile build/coverage/all.json --filter "$2" --csv "build/coverage/$1.csv" \
    >>build/coverage/gcovr.log 2>&1 || stop "gcovr failed: build/coverage/gcovr.log"
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

# run_whole_programs: each program of tests once. A process for each test, as ctest has it, would add up the counters of
# the whole library thousands of times.
run_whole_programs() {
  local failed=build/coverage/failed.txt
  : >"$failed"
  export -f run_whole_program
  find "$PWD/build/coverage/tests" -type f -name 'test_*' -perm -u+x | sort |
    xargs -P "$(jobs_count)" -I '{}' bash -c 'run_whole_program "$@"' _ '{}' "$PWD/$failed"
  [ ! -s "$failed" ] || stop "failed: $(paste -sd ' ' "$failed")"
}

# run_whole_program PROGRAM FAILED: adds its name to a list if it fails. Programs with windows run without the user's
# display, settings and language.
run_whole_program() {
  local environment=()
  case "$1" in
    */tests/dialogs/* | */tests/qt/*) environment=(QT_QPA_PLATFORM=offscreen LC_ALL=C.UTF-8 LANGUAGE=) ;;
  esac
  cd "$(dirname "$1")" || return
  env ${environment[0]:+"${environment[@]}"} timeout 1800 "$1" --gtest_brief=1 >"$1.log" 2>&1 </dev/null ||
    basename "$1" >>"$2"
}

run_coverage() {
  need "${build_packages[@]}" "${test_packages[@]}" "${peer_packages[@]}" gcovr
  build coverage
  find build/coverage -name '*.gcda' -delete
  run_whole_programs
  run_tests coverage -R '^fuzz\.'
  count_lines
  report library '^rasterkit/(?!qt/|dialogs/)'
  report dialogs '^rasterkit/(qt|dialogs)/'
  report tool '^tool/'
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
