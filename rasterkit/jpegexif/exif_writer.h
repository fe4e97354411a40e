#pragma once

#include <cstdint>

#include <rasterkit/runtime/files/stream.h>

namespace rasterkit::detail {

/// Moves a JPEG stream past the start marker and the metadata of an encoder: one APP0 section, then
/// APP1, APP2, APP12, APP13, APP14 and comment sections in any number and order. Returns the new
/// position: at the first other marker, or at or after the end of a truncated stream. Never fails
/// on damaged bytes, whose content is not checked.
uint64_t SkipEncoderMetadata(TStream& jpeg);

}  // namespace rasterkit::detail
