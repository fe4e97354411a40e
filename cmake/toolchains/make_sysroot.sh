#!/usr/bin/env bash
# make_sysroot.sh ARCHITECTURE FOLDER PACKAGE...: unpacks Debian packages of another architecture, with all that they
# depend on, into FOLDER. The machine's own sources and keys are used; its package database is not touched and does not
# learn of the architecture. Quick when FOLDER holds these packages already.
set -euo pipefail

stop() { printf 'make_sysroot.sh: %s\n' "$*" >&2; exit 1; }

[ $# -ge 3 ] || stop "usage: make_sysroot.sh ARCHITECTURE FOLDER PACKAGE..."
architecture=$1 folder=$2
shift 2
contents="$architecture $(printf '%s\n' "$@" | sort -u | paste -sd ' ')"
[ "$(cat "$folder/.contents" 2>/dev/null)" != "$contents" ] || exit 0
for program in apt-get dpkg-deb; do
  command -v "$program" >/dev/null || stop "requires $program: packages are available on Debian only"
done

rm -rf "$folder" "$folder.apt"
mkdir -p "$folder/usr" "$folder.apt"/{lists,cache/archives}/partial
folder=$(cd "$folder" && pwd) state=$(cd "$folder.apt" && pwd)
trap 'rm -rf "$state"' EXIT
: >"$state/status"
cat >"$state/apt.conf" <<TEXT
#clear APT::Architectures;
#clear APT::Update::Pre-Invoke;
#clear APT::Update::Post-Invoke;
#clear APT::Update::Post-Invoke-Success;
APT::Architecture "$architecture";
APT::Architectures "$architecture";
APT::Install-Recommends "false";
APT::Sandbox::User "$(id -un)";
Acquire::Languages "none";
Dir::State::lists "$state/lists";
Dir::State::status "$state/status";
Dir::State::extended_states "$state/extended_states";
Dir::Cache "$state/cache";
Dir::Log "$state";
TEXT
apt=(apt-get -q -c "$state/apt.conf")
log=$state.log
# A source that fails may not matter: the next line tells.
"${apt[@]}" update </dev/null >"$log" 2>&1 || printf 'apt-get update failed for %s; trying with the available lists\n' "$architecture"
"${apt[@]}" install -y --download-only "$@" </dev/null >>"$log" 2>&1 ||
  { cat "$log" >&2; stop "these packages of $architecture are not available: $*"; }

# The merged layout of a system of today; packages still bring files for both halves.
for half in bin sbin lib; do
  mkdir -p "$folder/usr/$half"
  ln -s "usr/$half" "$folder/$half"
done
for package in "$state"/cache/archives/*.deb; do
  dpkg-deb --fsys-tarfile "$package" | tar -x --keep-directory-symlink --no-same-owner -C "$folder" ||
    stop "cannot unpack $(basename "$package")"
done

# Links that start at the root would lead out of the folder.
find "$folder" -type l -lname '/*' -print0 |
  while IFS= read -r -d '' link; do
    ln -sfn "$(realpath -ms --relative-to="$(dirname "$link")" "$folder$(readlink "$link")")" "$link"
  done
printf '%s\n' "$contents" >"$folder/.contents"
