# shellcheck shell=bash
# What the commands of ./run share. Sourced by it, in the root of the source tree.

say() { printf '\n== %s\n' "$*"; }
stop() { printf './run: %s\n' "$*" >&2; exit 1; }

# ---- packages --------------------------------------------------------------------------------------------------------

is_installed() { [ "$(dpkg-query -W -f='${db:Status-Status}' "$1" 2>/dev/null)" = installed ]; }

# need PACKAGE...: installs missing packages and says so; silent and without apt if there are none.
need() {
  command -v dpkg-query >/dev/null || { say "no dpkg here; this needs: $*"; return 0; }
  local missing=() package as_root=()
  for package in "$@"; do is_installed "$package" || missing+=("$package"); done
  [ ${#missing[@]} -gt 0 ] || return 0
  if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || stop "please install as root: apt-get install ${missing[*]}"
    as_root=(sudo)
  fi
  say "installing Debian packages: ${missing[*]}"
  "${as_root[@]}" apt-get update -q </dev/null || say "apt-get update failed; trying with the available lists"
  # A new machine often runs its own updates first: wait for them.
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -q -y --no-install-recommends \
    -o DPkg::Lock::Timeout=600 "${missing[@]}" </dev/null || stop "apt-get could not install: ${missing[*]}"
}

# ---- building and testing --------------------------------------------------------------------------------------------

jobs_count() { nproc 2>/dev/null || echo 2; }

# configure PRESET: if its build folder does not exist yet or the presets have changed.
configure() {
  local preset=$1
  if [ ! -e "build/$preset/build.ninja" ] || [ CMakePresets.json -nt "build/$preset/build.ninja" ]; then
    mkdir -p build
    cmake --preset "$preset" </dev/null >"build/$preset.configure.log" 2>&1 ||
      { cat "build/$preset.configure.log" >&2; stop "configuring preset $preset failed"; }
  fi
}

# build PRESET [TARGET...]: configures if needed, then builds.
build() {
  local preset=$1; shift
  configure "$preset"
  cmake --build --preset "$preset" --parallel "$(jobs_count)" ${1:+--target "$@"} </dev/null ||
    stop "building preset $preset failed"
}

# run_tests PRESET [CTEST ARGUMENT...]
run_tests() {
  local preset=$1; shift
  # Libraries that are not instrumented for the thread sanitizer.
  TSAN_OPTIONS="suppressions='$PWD/tests/support/tsan.supp'" \
    ctest --test-dir "build/$preset" --parallel "$(jobs_count)" --output-on-failure --no-tests=error "$@" </dev/null ||
    stop "tests failed with preset $preset"
}

# ---- sources ---------------------------------------------------------------------------------------------------------

sources() {
  git ls-files '*.cpp' '*.h' 2>/dev/null ||
    find bench examples fuzz rasterkit samples tests tool worker \( -name '*.cpp' -o -name '*.h' \) 2>/dev/null
}

# What clang-tidy and cppcheck look at.
is_shipped_source='^(rasterkit|tool|worker)/.*\.cpp$'

# Programs of the shell. Those of scripts/ are part of ./run.
programs_of_shell() {
  { git ls-files run .ci/run '*.sh' 2>/dev/null || find run bench cmake samples tests -name '*.sh' -o -name run; } |
    grep -v '^scripts/'
}
