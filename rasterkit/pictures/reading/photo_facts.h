#pragma once

#include <cstdint>
#include <span>

#include <rasterkit/metadata/facts_of_metadata.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Reads the facts of a whole JPEG file. Finds orientation and position in any segment, even where
/// the photo query does not look.
RASTERKIT_EXPORT PhotoFacts ReadPhotoFacts(std::span<const uint8_t> jpeg);

/// Reads the facts of an EXIF block (see PictureMetadata::exif). There is no photo query for it.
RASTERKIT_EXPORT PhotoFacts ReadExifFacts(std::span<const uint8_t> exif);

}  // namespace rasterkit
