#pragma once

#include <optional>
#include <string>

#include <rasterkit/codecs/picture_type.h>
#include <rasterkit/codecs/tiff/tiff_encoder.h>
#include <rasterkit/graphics/bitmap.h>

namespace rasterkit::tool {

struct SaveOptions {
  /// Of JPEG files, 1 to 100.
  int quality = 90;
  /// Of TIFF files: how they are packed, on how many threads, and where on the map they lie.
  TiffCompression compression = TiffCompression::standard;
  int threads = 1;
  std::optional<TiffGeoTags> geo;
};

/// What a file of this name would be written as: bmp, jpeg, png, tiff, or unknown.
PictureType WritableType(const std::string& file);

/// Writes the bitmap as the name's extension says, whole or not at all. Throws
/// Failure(exitOutputNotWritten), or Failure(exitInterrupted) as long as the file has not got its
/// name.
void SavePicture(const TBitmap& bitmap, const std::string& file, const SaveOptions& options);

}  // namespace rasterkit::tool
