#pragma once

#include <cstdint>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Limits the calling thread to `bytes` per picture (see PictureMemoryLimit) during the lifetime of
/// this object, for background work such as previews. The limit of the process applies as well.
/// Scopes may be nested.
class RASTERKIT_EXPORT PictureMemoryScope {
 public:
  explicit PictureMemoryScope(uint64_t bytes);
  ~PictureMemoryScope();
  PictureMemoryScope(const PictureMemoryScope&) = delete;
  PictureMemoryScope& operator=(const PictureMemoryScope&) = delete;

 private:
  const uint64_t before_;
};

}  // namespace rasterkit
