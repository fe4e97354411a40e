#include <algorithm>
#include <array>

#include <rasterkit/codecs/jp2/jp2_boxes.h>
#include <rasterkit/metadata/ifd.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit::detail {

bool Jp2Boxes::Next() {
  constexpr uint64_t kHeader = 8, kLongHeader = 16;
  constexpr uint32_t kToTheEnd = 0, kLongLength = 1;
  RequireTime();
  if (next_ > end_ || end_ - next_ < kHeader) return false;
  std::array<uint8_t, kLongHeader> bytes{};
  stream_.SetPosition(next_);
  const size_t count = stream_.Read(
      std::span(bytes).first(static_cast<size_t>(std::min<uint64_t>(kLongHeader, end_ - next_))));
  if (count < kHeader) return false;
  const OrderedBytes numbers(bytes, true);
  const uint32_t stated = numbers.Long(0);
  type_ = numbers.Long(4);
  const uint64_t header = stated == kLongLength ? kLongHeader : kHeader;
  if (count < header) return false;
  uint64_t length = stated;
  if (stated == kToTheEnd) length = end_ - next_;
  if (stated == kLongLength) length = uint64_t{numbers.Long(8)} << 32 | numbers.Long(12);
  isWhole_ = length >= header && length <= end_ - next_;
  contentAt_ = next_ + header;
  // A box that is shorter than its own header ends the list: where the next one starts is unknown.
  const bool hasEnd = length >= header;
  contentBytes_ = hasEnd ? std::min(length, end_ - next_) - header : 0;
  next_ = isWhole_ ? next_ + length : end_;
  return true;
}

std::vector<uint8_t> Jp2Boxes::Content(size_t most) const {
  if (contentBytes_ > most) return {};
  std::vector<uint8_t> bytes(static_cast<size_t>(contentBytes_));
  stream_.SetPosition(contentAt_);
  bytes.resize(stream_.Read(bytes));
  return bytes;
}

}  // namespace rasterkit::detail
