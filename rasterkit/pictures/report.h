#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <rasterkit/codecs/picture_type.h>
#include <rasterkit/codecs/rows/form.h>
#include <rasterkit/metadata/loss.h>
#include <rasterkit/raster/pixel_layout.h>

namespace rasterkit {

/// What Plan foresees and what Save did.
struct Report {
  /// What the file lacks although no step or option says so.
  std::vector<Loss> losses;
  /// "the compressed pixels are copied", "the pixels are moved without recompression".
  std::vector<std::string> notes;
  /// Faults of the source that were read around, and doubts about its position.
  std::vector<std::string> warnings;
  /// The written file.
  PictureType type = PictureType::unknown;
  Form form;
  PixelLayout layout;
  int width = 0, height = 0;
  /// True if the compressed pixels are those of the source, byte for byte.
  bool isCopied = false;
  /// True if they are turned, mirrored or cropped without being decoded: no value of a block
  /// changes.
  bool isMoved = false;
  /// Why pixels that only move are compressed again nevertheless, or what was dropped for a move;
  /// empty else. It stands in `notes` too.
  std::string moveNote;
  /// Files beside the target that are written, replaced or removed: "writes plan.pgw".
  std::vector<std::string> sideFiles;
  /// Backups of the files that were replaced, as full names, that of the picture first. A plan
  /// names those that would be made.
  std::vector<std::string> backups;
  /// Bytes of the file: an upper bound in a plan.
  uint64_t bytes = 0;
  /// Upper bound of the bytes that a save holds at a time.
  uint64_t memory = 0;
  /// Upper bound of the bytes of its scratch file.
  uint64_t scratch = 0;
};

}  // namespace rasterkit
