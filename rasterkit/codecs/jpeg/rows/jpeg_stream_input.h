#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include <rasterkit/codecs/jpeg/jpeg_reader.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit::detail {

/// Reads a file from a stream through a buffer.
class JpegStreamInput : public JpegInput {
 public:
  /// Reads from the stream's position on. The stream must outlive the object.
  explicit JpegStreamInput(TStream& stream);

  std::span<const uint8_t> Fill(std::span<const uint8_t> left) override;
  void Skip(uint64_t count) override { next_ += count; }
  /// Makes room for so many bytes and a piece to read at a time.
  void Reserve(size_t count);

 private:
  TStream& stream_;
  /// Place of the byte after those in the buffer.
  uint64_t next_;
  const uint64_t end_;
  size_t wanted_, room_ = 0;
  std::unique_ptr<uint8_t[]> buffer_;
};

}  // namespace rasterkit::detail
