#pragma once

#include <cstdint>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Keeps the calling thread to no more than `bytes` a picture (see PictureMemoryLimit) for as long
/// as it lives, for work that nobody waits for, as a preview is. The process's limit holds as well.
/// Scopes nest.
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
