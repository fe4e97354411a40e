#pragma once

#include <cstdint>
#include <string_view>

#include <rasterkit/runtime/export.h>

/// The memory limit per decoded picture, checked before memory is allocated. A short form of the
/// field `pictureBytes` of Limits.
namespace rasterkit {

/// Returns `CurrentLimits().pictureBytes`.
RASTERKIT_EXPORT uint64_t PictureMemoryLimit();
/// Sets `pictureBytes` of the default limits. May be called on any thread.
RASTERKIT_EXPORT void SetPictureMemoryLimit(uint64_t bytes);

/// Throws LimitError if a picture exceeds the limits of this thread: its sides, its pixels, or the
/// `bytes` of its rows. `what` names it: "PNG picture of 65535 x 65535 pixels".
RASTERKIT_EXPORT void RequirePicture(uint64_t width, uint64_t height, uint64_t bytes,
                                     std::string_view what);

/// Throws LimitError if `bytes` exceeds the limit; the message names both in bytes. `what` names
/// the object that needs the memory: "PNG picture of 65535 x 65535 pixels".
RASTERKIT_EXPORT void RequirePictureMemory(uint64_t bytes, std::string_view what);

}  // namespace rasterkit
