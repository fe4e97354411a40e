#pragma once

#include <algorithm>
#include <cstdint>

#include <rasterkit/runtime/limits.h>

namespace rasterkit {

/// Limits the calling thread to `bytes` per picture (see Limits::pictureBytes) during the lifetime
/// of this object, for background work such as previews. The limit that the thread has applies as
/// well. Scopes may be nested.
class PictureMemoryScope {
 public:
  explicit PictureMemoryScope(uint64_t bytes) : scope_(WithPictureBytes(bytes)) {}

 private:
  static Limits WithPictureBytes(uint64_t bytes) {
    Limits limits = CurrentLimits();
    limits.pictureBytes = std::min(limits.pictureBytes, bytes);
    return limits;
  }

  const LimitsScope scope_;
};

}  // namespace rasterkit
