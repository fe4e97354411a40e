#pragma once

#include <cstdint>
#include <span>

#include <rasterkit/codecs/rows/picture_metadata.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Lists the metadata of a file without decoding: all formats of the codec table that have a reader
/// of metadata; other files give an empty list. Never throws: the list ends where the file is
/// damaged.
RASTERKIT_EXPORT PictureMetadata ReadMetadata(std::span<const uint8_t> file);

}  // namespace rasterkit
