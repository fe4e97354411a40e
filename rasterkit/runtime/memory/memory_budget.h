#pragma once

#include <cstdint>
#include <string_view>

#include <rasterkit/runtime/export.h>

/// How much memory one decoded picture may take, whatever its file claims about itself.
namespace rasterkit {

/// The limit in bytes for the decoded rows of one picture; 4 GiB unless set. Process-wide, safe on
/// any thread.
RASTERKIT_EXPORT uint64_t PictureMemoryLimit();
RASTERKIT_EXPORT void SetPictureMemoryLimit(uint64_t bytes);

/// Throws LimitError, which names the limit and the need in bytes, when `bytes` exceeds the limit.
/// `what` says what wanted them: "PNG picture of 65535 x 65535 pixels".
RASTERKIT_EXPORT void RequirePictureMemory(uint64_t bytes, std::string_view what);

}  // namespace rasterkit
