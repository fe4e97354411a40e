#pragma once

#include <string>
#include <vector>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// What a written picture can lack. docs/nothing-lost.md explains each kind.
enum class LossKind {
  // Pixels.
  bits,
  colors,
  chroma,
  alpha,
  transparentColor,
  noData,
  damage,
  // Other pictures of the file.
  pages,
  frames,
  hiddenPictures,
  // Position.
  position,
  controlPoints,
  coordinateSystem,
  sideFile,
  // Metadata.
  exif,
  gps,
  xmp,
  iptc,
  comment,
  text,
  profile,
  resolution,
  thumbnail,
  makerNote,
  otherBlock,
  // How the file is built.
  tiling,
  records,
};

/// The name in reports, in lower case with hyphens: "coordinate-system".
RASTERKIT_EXPORT const char* LossKindName(LossKind kind);

/// One thing that the written file lacks and that was not asked to be dropped.
struct Loss {
  LossKind kind = LossKind::exif;
  /// What is lost: "2 of 3 pages", "ICC profile \"Adobe RGB\"".
  std::string what;
  /// Why: "a BMP file holds one picture".
  std::string why;
};

/// What happened to a picture on its way: losses, and notes that are no losses ("turned without
/// recompression", "8 columns trimmed").
struct Changes {
  std::vector<Loss> losses;
  std::vector<std::string> notes;

  void Lose(LossKind kind, std::string what, std::string why) {
    losses.push_back({kind, std::move(what), std::move(why)});
  }
  void Note(std::string text) { notes.push_back(std::move(text)); }
};

}  // namespace rasterkit
