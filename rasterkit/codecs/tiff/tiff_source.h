#pragma once

#include <cstdint>
#include <exception>
#include <mutex>
#include <span>

#include <rasterkit/runtime/files/stream.h>

namespace rasterkit::detail {

/// The bytes of a TIFF file within a stream, for several threads, which use the stream one at a
/// time.
class TiffSource {
 public:
  /// The file starts at the stream's position and ends with the stream, which must outlive the
  /// source.
  explicit TiffSource(TStream& stream)
      : stream_(stream), start_(stream.Position()), size_(stream.Size() - start_) {}

  uint64_t Size() const { return size_; }

  /// Reads bytes at an offset of the file; returns how many were there. Throws the errors of the
  /// stream.
  size_t ReadAt(uint64_t offset, std::span<uint8_t> target);

  /// The same for pieces that are filled one after another.
  size_t ReadAt(uint64_t offset, std::span<const std::span<uint8_t>> pieces);

  /// Reads for callers that must not throw: 0 on an error, which is kept.
  size_t TryReadAt(uint64_t offset, std::span<uint8_t> target) noexcept;
  /// Throws the first error that was kept.
  void RethrowKept();

 private:
  TStream& stream_;
  const uint64_t start_, size_;
  std::mutex mutex_;
  std::exception_ptr error_;
};

}  // namespace rasterkit::detail
