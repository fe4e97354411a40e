#pragma once

#include <cstdint>
#include <span>

#include <rasterkit/codecs/rows/picture_header.h>
#include <rasterkit/codecs/rows/picture_writing.h>
#include <rasterkit/runtime/files/stream.h>

/// Headers of formats whose folders do not read them yet.
namespace rasterkit {

PictureHeader ReadBmpHeader(TStream& stream);
PictureHeader ReadGifHeader(std::span<const uint8_t> file);
PictureHeader ReadWebpHeader(std::span<const uint8_t> file);
WrittenPicture WriteBmp(const Pixels& pixels, const PictureWriting& writing, TStream& stream);

}  // namespace rasterkit
