#pragma once

#include <rasterkit/runtime/memory/memory_budget.h>

namespace rasterkit::test {

/// Another picture memory limit for as long as it lives.
class MemoryLimit {
 public:
  explicit MemoryLimit(uint64_t bytes) { SetPictureMemoryLimit(bytes); }
  ~MemoryLimit() { SetPictureMemoryLimit(before_); }
  MemoryLimit(const MemoryLimit&) = delete;
  MemoryLimit& operator=(const MemoryLimit&) = delete;

 private:
  const uint64_t before_ = PictureMemoryLimit();
};

}  // namespace rasterkit::test
