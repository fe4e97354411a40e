#pragma once

#include <cstdint>
#include <memory>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

namespace detail {
class MemoryJob;
}

/// A part of the memory that the pictures of the process take (see Limits::processBytes). Returned
/// when the object is destroyed. Move-only.
///
/// Counts only: the owner allocates and frees the memory itself.
class RASTERKIT_EXPORT MemoryShare {
 public:
  MemoryShare() = default;
  /// Takes `bytes`. If they do not fit, and the calling thread works for a job of several (see
  /// MemoryJobScope), waits until other jobs have returned memory. Throws LimitError, which states
  /// the limit and the need, if they do not fit otherwise.
  explicit MemoryShare(uint64_t bytes);
  ~MemoryShare();
  MemoryShare(MemoryShare&& other) noexcept;
  MemoryShare& operator=(MemoryShare&& other) noexcept;

  uint64_t Bytes() const { return bytes_; }

 private:
  uint64_t bytes_ = 0;
  std::shared_ptr<detail::MemoryJob> job_;
};

/// Returns the bytes of all shares of the process. May be called on any thread.
RASTERKIT_EXPORT uint64_t ProcessPictureBytes();

}  // namespace rasterkit
