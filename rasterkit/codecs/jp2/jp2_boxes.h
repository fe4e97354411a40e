#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include <rasterkit/runtime/files/stream.h>

namespace rasterkit::detail {

/// The type of a box as a number.
constexpr uint32_t BoxType(const char (&letters)[5]) {
  uint32_t type = 0;
  for (int i = 0; i < 4; ++i) type = type << 8 | static_cast<uint8_t>(letters[i]);
  return type;
}

/// The boxes of a JPEG 2000 file, or of one of its boxes, one after another. Only their headers are
/// read.
class Jp2Boxes {
 public:
  /// Boxes from `begin` to `end`, which are places in the stream.
  Jp2Boxes(TStream& stream, uint64_t begin, uint64_t end)
      : stream_(stream), next_(begin), end_(end) {}

  /// Goes to the next box; false if there is none.
  bool Next();

  uint32_t Type() const { return type_; }
  /// Place of the content.
  uint64_t ContentAt() const { return contentAt_; }
  /// Bytes of the content that are there.
  uint64_t ContentBytes() const { return contentBytes_; }
  uint64_t ContentEnd() const { return contentAt_ + contentBytes_; }
  /// False if the box states more bytes than there are, or fewer than its own header has.
  bool IsWhole() const { return isWhole_; }
  /// The boxes within this one.
  Jp2Boxes Inner() const { return {stream_, contentAt_, ContentEnd()}; }
  /// The content; empty if it has more than `most` bytes.
  std::vector<uint8_t> Content(size_t most) const;

 private:
  TStream& stream_;
  uint64_t next_, end_;
  uint32_t type_ = 0;
  uint64_t contentAt_ = 0, contentBytes_ = 0;
  bool isWhole_ = false;
};

}  // namespace rasterkit::detail
