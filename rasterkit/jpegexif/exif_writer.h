#pragma once

#include <cstdint>

#include <rasterkit/runtime/files/stream.h>

namespace rasterkit::detail {

/// Moves a JPEG stream past the start marker and past what an encoder writes about a picture: one
/// APP0 section, then APP1, APP2, APP12, APP13, APP14 and comment sections in any number and order.
/// Returns where the stream now stands: at the first other marker, or at or behind the end of a
/// stream that is cut off. Never fails on damaged bytes; what they hold is not checked.
uint64_t SkipEncoderMetadata(TStream& jpeg);

}  // namespace rasterkit::detail
