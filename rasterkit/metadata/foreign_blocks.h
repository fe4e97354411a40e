#pragma once

#include <cstdint>
#include <string>

#include <rasterkit/metadata/loss.h>
#include <rasterkit/metadata/metadata.h>
#include <rasterkit/runtime/export.h>

/// Blocks of one file format that another one has no place for.
namespace rasterkit::detail {

/// The four letters of a chunk as a number, the first in the high byte.
constexpr uint32_t PngKind(const char (&name)[5]) {
  uint32_t kind = 0;
  for (int i = 0; i < 4; i++) kind = kind << 8 | static_cast<uint8_t>(name[i]);
  return kind;
}

/// True for a chunk that says that the colors are sRGB, which pictures without a profile are: a
/// file format without such a place loses nothing.
RASTERKIT_EXPORT bool StatesPlainSrgb(const OtherBlock& chunk);

/// Adds one loss for the PNG chunks: "PNG chunks abCd, cICP". Chunks that say that the colors are
/// sRGB are no loss. Those that only help a program that shows or stores the file (background, time
/// of change, histogram, significant bits) are a note. `format` is "a JPEG file".
RASTERKIT_EXPORT void LosePngChunks(const Metadata& metadata, const std::string& format,
                                    Changes& changes);

/// Adds one loss for the TIFF tags, by number: "TIFF tags 42112, 65000".
RASTERKIT_EXPORT void LoseTiffTags(const Metadata& metadata, const std::string& format,
                                   Changes& changes);

}  // namespace rasterkit::detail
