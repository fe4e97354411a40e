#pragma once

#include <memory>
#include <optional>
#include <string>

#include <rasterkit/codecs/picture_type.h>
#include <rasterkit/codecs/tiff/tiff_encoder.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/runtime/files/atomic_file.h>

#include "tool/command/output_options.h"

namespace rasterkit::tool {

struct SaveOptions {
  /// JPEG quality, 1 to 100.
  int quality = 90;
  /// For TIFF files: compression, number of threads, map position.
  TiffCompression compression = TiffCompression::standard;
  int threads = 1;
  std::optional<TiffGeoTags> geo;
  SaveRules rules;
};

/// Returns the type of a file with this name: bmp, jpeg, png, tiff, or unknown if the tool cannot
/// write it.
PictureType WritableType(const std::string& file);

/// Writes the bitmap with the type that the extension of `file` names. See WriteOutput.
std::unique_ptr<AtomicFile> SavePicture(const TBitmap& bitmap, const std::string& file,
                                        const SaveOptions& options);

}  // namespace rasterkit::tool
