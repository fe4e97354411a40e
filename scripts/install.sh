# shellcheck shell=bash
# ./run install

# is_writable FOLDER: if it does not exist yet, the parent that exists counts.
is_writable() {
  local folder=$1
  while [ ! -e "$folder" ]; do folder=$(dirname "$folder"); done
  [ -d "$folder" ] && [ -w "$folder" ]
}

run_install() {
  local prefix=${1:-/usr/local} as_root=() folder ldconfig
  # All folders that files go to: a prefix can be writable although one of them is not.
  for folder in "$prefix" "$prefix"/{bin,include,lib,share}; do
    is_writable "$folder" && continue
    if [ "$(id -u)" -eq 0 ] || ! command -v sudo >/dev/null; then
      stop "$folder is not writable; please install as root or choose another PREFIX"
    fi
    as_root=(sudo)
  done
  need "${build_packages[@]}"
  build release installed_files
  "${as_root[@]}" cmake --install build/release --prefix "$prefix" </dev/null || stop "installing into $prefix failed"
  # Otherwise a later installation without root could not replace this list of files.
  [ ${#as_root[@]} -eq 0 ] || "${as_root[@]}" chown "$(id -u):$(id -g)" build/release/install_manifest.txt
  # The loader keeps a cache of the libraries in the system's folders.
  ldconfig=$(PATH=$PATH:/usr/sbin:/sbin command -v ldconfig) || return 0
  if [ ${#as_root[@]} -gt 0 ] || [ "$(id -u)" -eq 0 ]; then
    case "${prefix%/}" in
      /usr | /usr/local) "${as_root[@]}" "$ldconfig" </dev/null || stop "ldconfig failed" ;;
    esac
  fi
}
