#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include <rasterkit/runtime/export.h>

/// This folder keeps bytes in `std::string` (byte strings, not text) and counts their positions
/// from 1, as in the fields `RawPos` and `CommentPosn`: position p is the p-th byte. Positions are
/// 64-bit, so no sum of offsets from a file overflows. Bytes outside a buffer read as 0 and are
/// never written, at any position.
namespace rasterkit {

/// Integers of 16 and 32 bits in a byte string, in either byte order.
class RASTERKIT_EXPORT TEndInd {
 public:
  /// False: little-endian ("II"), true: big-endian ("MM").
  bool MotorolaOrder = false;

  /// Unsigned value of the two bytes from position `oset`.
  uint32_t Get16u(std::string_view buff, int64_t oset) const;
  /// Unsigned value of the four bytes from position `oset`.
  uint32_t Get32u(std::string_view buff, int64_t oset) const;
  /// Signed value of the four bytes from position `oset`.
  int32_t Get32s(std::string_view buff, int64_t oset) const;

  /// Four bytes that hold `data`.
  std::string Put32s(int32_t data) const;
  /// Overwrites the two bytes from position `posn` with the low 16 bits of `value`.
  void WriteInt16(std::string& buff, int32_t value, int64_t posn) const;
  /// Overwrites the four bytes from position `posn` with `value`.
  void WriteInt32(std::string& buff, int32_t value, int64_t posn) const;

 private:
  uint32_t Gather(std::string_view buff, int64_t oset, int count) const;
  void Scatter(std::string& buff, uint32_t value, int64_t posn, int count) const;
};

/// Byte at a 1-based position; 0 outside the buffer.
constexpr uint8_t ByteAt(std::string_view buff, int64_t position) {
  const bool inside = position >= 1 && position <= static_cast<int64_t>(buff.size());
  return inside ? static_cast<uint8_t>(buff[static_cast<size_t>(position - 1)]) : 0;
}

}  // namespace rasterkit
