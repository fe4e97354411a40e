#pragma once

#include <array>
#include <cstdint>

#include <rasterkit/codecs/tiff/pages/tag_reader.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit::detail {

/// A TIFF file whose first directory is another one of its directories: reads the file with a
/// changed header, so that whoever reads the first page reads that one.
class PageStream : public TStream {
 public:
  /// The file starts at the position of `stream`, which must outlive this object.
  PageStream(TStream& stream, const TagReader& reader, uint64_t directoryAt);

  size_t Read(std::span<uint8_t> target) override;
  /// Always throws.
  void Write(std::span<const uint8_t> source) override;
  uint64_t Position() const override { return position_; }
  void SetPosition(uint64_t position) override { position_ = position; }
  uint64_t Size() const override { return size_; }

 private:
  TStream& stream_;
  const uint64_t start_, size_;
  uint64_t position_ = 0;
  std::array<uint8_t, 16> header_{};
  size_t headerBytes_ = 8;
};

}  // namespace rasterkit::detail
