#pragma once

#include <memory>
#include <string>
#include <vector>

#include <rasterkit/host/codecs/picture_type.h>
#include <rasterkit/host/graphics/bitmap.h>

#include "apps/rasterkit/photo_facts.h"

namespace rasterkit::tool {

/// A picture as its file holds it, not yet turned upright.
struct LoadedPicture {
  PictureType type = PictureType::unknown;
  std::unique_ptr<TBitmap> bitmap;
  PhotoFacts photo;
  /// What lies in the file beside the pixels: see PictureMetadata::kinds.
  std::vector<std::string> metadata;
  std::vector<std::string> warnings;
  uint64_t bytes = 0;
};

/// Loads by content, whatever the file is called. Throws Failure(exitInputUnreadable).
LoadedPicture LoadPicture(const std::string& file);

/// The same; what was learnt before a failure (type, size of the file, facts of the photograph)
/// stays in `picture`.
void LoadPictureInto(LoadedPicture& picture, const std::string& file);

/// What a file of this name would be written as: bmp, jpeg, png, or unknown.
PictureType WritableType(const std::string& file);

/// Writes the bitmap as the name's extension says, whole or not at all. Throws
/// Failure(exitOutputNotWritten), or Failure(exitInterrupted) as long as the file has not got its
/// name.
void SavePicture(const TBitmap& bitmap, const std::string& file, int quality);

}  // namespace rasterkit::tool
