#pragma once

#include <cstdint>

#include <rasterkit/runtime/files/stream.h>

namespace rasterkit::detail {

/// Restores the position of a stream.
class KeptPosition {
 public:
  explicit KeptPosition(TStream& stream) : stream_(stream), position_(stream.Position()) {}
  ~KeptPosition() {
    try {
      stream_.SetPosition(position_);
    } catch (...) {
      // A pipe stays at its end.
    }
  }
  KeptPosition(const KeptPosition&) = delete;
  KeptPosition& operator=(const KeptPosition&) = delete;

 private:
  TStream& stream_;
  const uint64_t position_;
};

}  // namespace rasterkit::detail
