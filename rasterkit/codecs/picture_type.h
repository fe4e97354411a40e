#pragma once

#include <cstdint>
#include <span>

#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit {

/// Kinds of picture files, told apart by their first bytes alone.
enum class PictureType { unknown, bmp, jpeg, png, tiff, wmf, emf, pdf, gif, webp };

/// Looks at the first bytes; fewer are looked at as far as they go. 64 are enough, except for a PDF
/// that has foreign bytes before its header, which is found within 1024.
RASTERKIT_EXPORT PictureType SniffPictureType(std::span<const uint8_t> bytes);

/// Looks at as many bytes as any kind needs, from the stream's position on, which stays where it
/// is. A pipe or a device, which states no size, is not to be read after that: see
/// ReadUnsizedPicture.
RASTERKIT_EXPORT PictureType SniffPictureType(TStream& stream);

/// "bmp", "jpeg", "png", "tiff", "wmf", "emf", "pdf", "gif", "webp"; "unknown".
RASTERKIT_EXPORT const char* PictureTypeName(PictureType type);

}  // namespace rasterkit
