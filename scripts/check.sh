# shellcheck shell=bash
# ./run check: what must hold before a change is merged, in parts that also run alone.

check_parts=(format scripts release-clang asan-ubsan tsan scalar tidy cppcheck arm64 i386)

check_format() {
  need "${check_packages[@]}"
  sources | xargs clang-format-14 --dry-run -Werror || stop "clang-format would change the files named above"
}

check_scripts() {
  need shellcheck
  programs_of_shell | xargs shellcheck --external-sources || stop "shellcheck found what is named above"
}

# check_preset PRESET: with all tests, among them those that compare with other programs.
check_preset() {
  need "${build_packages[@]}" "${test_packages[@]}" "${clang_packages[@]}" "${peer_packages[@]}"
  build "$1"
  run_tests "$1"
}

# prepare_analysis: a build folder that analyzers read. Only generated sources are built.
prepare_analysis() {
  local commands=build/analyze/compile_commands.json file missing=()
  need "${build_packages[@]}" "${clang_packages[@]}" "${check_packages[@]}"
  configure analyze
  while read -r file; do
    [ -e "build/analyze/$file" ] || missing+=("$file")
  done < <(sed -n "s|^ *\"file\": \"$PWD/build/analyze/\\(.*\\)\",*\$|\\1|p" "$commands" | sort -u)
  # CMake makes the headers of forms and the sources of resources with the same target.
  build analyze rasterkit_dialogs_objects_autogen ${missing[0]:+"${missing[@]}"} >/dev/null
}

check_tidy() {
  prepare_analysis
  sources | grep -E "$is_shipped_source" |
    xargs -P "$(jobs_count)" -n 4 clang-tidy-14 -p build/analyze --quiet ||
    stop "clang-tidy found what is named above"
}

check_cppcheck() {
  need cppcheck
  prepare_analysis
  local folder filters=()
  for folder in rasterkit tool worker; do filters+=("--file-filter=$folder/*"); done
  mkdir -p build/cppcheck
  cppcheck --project=build/analyze/compile_commands.json "${filters[@]}" --library=qt --library=posix \
    --enable=warning,performance,portability --platform=unix64 --suppressions-list=scripts/cppcheck.supp \
    --cppcheck-build-dir=build/cppcheck -j "$(jobs_count)" --quiet --error-exitcode=1 </dev/null ||
    stop "cppcheck found what is named above"
}

# check_foreign ARCHITECTURE: builds and tests for another processor, by its Debian name.
check_foreign() {
  local architecture=$1 package packages=(libc6-dev libstdc++-12-dev)
  [ "$(uname -m)" = x86_64 ] || stop "check $architecture requires an x86-64 machine"
  say "$architecture: packages"
  need cmake ninja-build pkg-config "crossbuild-essential-$architecture"
  if [ "$architecture" = arm64 ]; then need qemu-user-static; fi
  # The libraries among the packages of the build, without Qt.
  for package in "${build_packages[@]}"; do
    case "$package" in qt6-*) ;; *-dev) packages+=("$package") ;; esac
  done
  cmake/toolchains/make_sysroot.sh "$architecture" "build/sysroot-$architecture" "${packages[@]}" ||
    stop "$architecture cannot be checked without its packages"
  if [ "$architecture" = i386 ]; then
    build/sysroot-i386/lib/ld-linux.so.2 --help >/dev/null 2>&1 || stop "this machine's kernel runs no 32-bit programs"
  fi
  say "preset $architecture: build and tests"
  build "$architecture" rasterkit rasterkit_tool "${foreign_tests[@]}"
  run_tests "$architecture" --label-regex "^($(IFS='|'; echo "${foreign_tests[*]}"))\$"
}

check_part() {
  say "check $1"
  case "$1" in
    format | scripts | tidy | cppcheck) "check_$1" ;;
    release-clang | asan-ubsan | tsan | scalar) check_preset "$1" ;;
    arm64 | i386) check_foreign "$1" ;;
    *) stop "check knows --quick and the parts ${check_parts[*]}, not '$1'" ;;
  esac
}

# ---- changed files ---------------------------------------------------------------------------------------------------

# changed_files: since the branch left the main one, committed or not.
changed_files() {
  local ref base=HEAD
  for ref in '@{upstream}' origin/main main; do
    if base=$(git merge-base HEAD "$ref" 2>/dev/null); then break; fi
    base=HEAD
  done
  { git diff --name-only --diff-filter=d "$base" -- && git ls-files --others --exclude-standard; } | sort -u
}

# tidy_changed SECONDS FILE...: the file changed last comes first. Names those for which there was no time.
tidy_changed() {
  local end=$((SECONDS + $1)) file waiting=() passed=true
  shift
  mapfile -t waiting < <(ls -t -- "$@")
  while [ ${#waiting[@]} -gt 0 ] && [ "$SECONDS" -lt "$end" ]; do
    printf '%s\0' "${waiting[@]:0:$(jobs_count)}" |
      xargs -0 -P "$(jobs_count)" -n 1 clang-tidy-14 -p build/analyze --quiet 2>/dev/null || passed=false
    waiting=("${waiting[@]:$(jobs_count)}")
  done
  for file in ${waiting[0]:+"${waiting[@]}"}; do echo "no time for clang-tidy: $file (./run check tidy)"; done
  [ $passed = true ] || stop "clang-tidy found what is named above"
}

# run_text_tests: doors, words, layout, links. These programs read the sources and need no library.
run_text_tests() {
  local program
  build release test_doors test_texts >/dev/null
  for program in doors/test_doors docs/test_texts; do
    "build/release/tests/$program" --gtest_brief=1 || stop "$program failed"
  done
}

check_quick() {
  local changed formatted tidied shell begin=$SECONDS
  git rev-parse --git-dir >/dev/null 2>&1 || stop "check --quick needs a git checkout"
  need "${build_packages[@]}" "${clang_packages[@]}" "${check_packages[@]}"
  mapfile -t changed < <(changed_files)
  say "${#changed[@]} changed files"
  mapfile -t formatted < <(printf '%s\n' "${changed[@]}" | grep -E '\.(cpp|h)$')
  mapfile -t tidied < <(printf '%s\n' "${changed[@]}" | grep -E "$is_shipped_source")
  mapfile -t shell < <(printf '%s\n' "${changed[@]}" | grep -E '(\.sh|^run|^\.ci/run)$')
  if [ ${#formatted[@]} -gt 0 ]; then
    say "clang-format: ${#formatted[@]} files"
    clang-format-14 --dry-run -Werror "${formatted[@]}" || stop "clang-format would change the files named above"
  fi
  if [ ${#shell[@]} -gt 0 ]; then
    say "shellcheck"
    check_scripts
  fi
  say "doors, words, layout"
  run_text_tests
  if [ ${#tidied[@]} -gt 0 ]; then
    say "clang-tidy: ${#tidied[@]} files"
    prepare_analysis
    tidy_changed $((100 - SECONDS + begin)) "${tidied[@]}"
  fi
  say "passed: changed files, in $((SECONDS - begin)) seconds"
}

run_check() {
  local part
  case "${1:-}" in
    --quick) check_quick ;;
    "")
      for part in "${check_parts[@]}"; do check_part "$part"; done
      say "passed: ${check_parts[*]}" ;;
    *)
      for part in "$@"; do check_part "$part"; done
      say "passed: $*" ;;
  esac
}
