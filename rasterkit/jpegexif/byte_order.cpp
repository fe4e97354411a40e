#include <limits>

#include <rasterkit/jpegexif/byte_order.h>

namespace rasterkit {
namespace {

/// The position `by` bytes behind `position`, at most the last one that can be stated. Nothing is
/// there.
int64_t Behind(int64_t position, int by) {
  constexpr int64_t kLast = std::numeric_limits<int64_t>::max();
  return position > kLast - by ? kLast : position + by;
}

}  // namespace

uint32_t TEndInd::Gather(std::string_view buff, int64_t oset, int count) const {
  uint32_t value = 0;
  for (int i = 0; i < count; ++i) {
    const int place = MotorolaOrder ? i : count - 1 - i;
    value = value << 8 | ByteAt(buff, Behind(oset, place));
  }
  return value;
}

void TEndInd::Scatter(std::string& buff, uint32_t value, int64_t posn, int count) const {
  for (int i = 0; i < count; ++i) {
    const int64_t position = Behind(posn, MotorolaOrder ? count - 1 - i : i);
    const bool inside = position >= 1 && position <= static_cast<int64_t>(buff.size());
    if (inside) buff[static_cast<size_t>(position - 1)] = static_cast<char>(value >> 8 * i & 0xFF);
  }
}

uint32_t TEndInd::Get16u(std::string_view buff, int64_t oset) const {
  return Gather(buff, oset, 2);
}

uint32_t TEndInd::Get32u(std::string_view buff, int64_t oset) const {
  return Gather(buff, oset, 4);
}

int32_t TEndInd::Get32s(std::string_view buff, int64_t oset) const {
  return static_cast<int32_t>(Get32u(buff, oset));
}

std::string TEndInd::Put32s(int32_t data) const {
  std::string bytes(4, '\0');
  WriteInt32(bytes, data, 1);
  return bytes;
}

void TEndInd::WriteInt16(std::string& buff, int32_t value, int64_t posn) const {
  Scatter(buff, static_cast<uint32_t>(value), posn, 2);
}

void TEndInd::WriteInt32(std::string& buff, int32_t value, int64_t posn) const {
  Scatter(buff, static_cast<uint32_t>(value), posn, 4);
}

}  // namespace rasterkit
