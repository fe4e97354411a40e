#pragma once

#include <cstdint>
#include <span>

#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit {

/// Formats of picture files, recognized by their first bytes alone.
enum class PictureType { unknown, bmp, jpeg, png, tiff, wmf, emf, pdf, gif, webp, jp2, heif };

/// The last one.
inline constexpr PictureType kLastPictureType = PictureType::heif;

/// Recognizes the first bytes of a file; may be fewer than a signature needs. 64 bytes are enough,
/// except for a PDF file with other bytes before its header, which is found within 1024.
RASTERKIT_EXPORT PictureType SniffPictureType(std::span<const uint8_t> bytes);

/// Recognizes a file from the stream's position on; the position stays. Do not use it on a pipe or
/// a device, which cannot be read twice: see ReadUnsizedPicture.
RASTERKIT_EXPORT PictureType SniffPictureType(TStream& stream);

/// The name of a format in lower case, such as "jpeg": that of the codec table, or "unknown".
RASTERKIT_EXPORT const char* PictureTypeName(PictureType type);

}  // namespace rasterkit
