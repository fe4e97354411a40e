# shellcheck shell=bash
# ./run screenshots

# in_neutral_folder COMMAND...: runs the command with an empty /srv of its own, whose folder the pictures show.
in_neutral_folder() {
  unshare --map-root-user --mount sh -c 'mount -t tmpfs tmpfs /srv && mkdir /srv/Riverside &&
    RASTERKIT_GALLERY_FOLDER=/srv/Riverside exec "$@"' sh "$@"
}

run_screenshots() {
  need "${build_packages[@]}" "${test_packages[@]}"
  local run_in=in_neutral_folder
  if [[ $PWD = /srv/* ]] || ! in_neutral_folder true 2>/dev/null; then
    say "the pictures will show temporary folders: this system does not allow a separate /srv"
    run_in="env"
  fi
  build release dialogs_screenshots
  local scale style language
  rm -rf build/screenshots
  for language in en de; do
    for scale in 1 2; do
      for style in light dark; do
        # A screen of ordinary size; the platform's own log messages are not useful here.
        LC_ALL='' LC_CTYPE=C.UTF-8 LANGUAGE='' LANG=$language QT_SCALE_FACTOR=$scale \
          QT_LOGGING_RULES="default.warning=false" \
          QT_QPA_PLATFORM=offscreen:configfile=tests/dialogs/gallery/screen.json \
          "$run_in" build/release/tests/dialogs/gallery/dialogs_screenshots build/screenshots "$style" "$language" ||
          stop "a screenshot failed"
      done
    done
  done
}
