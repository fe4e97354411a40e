#include <algorithm>
#include <cstring>

#include <rasterkit/codecs/jpeg/rows/jpeg_stream_input.h>

namespace rasterkit::detail {
namespace {

constexpr size_t kPiece = 64 << 10;

}  // namespace

JpegStreamInput::JpegStreamInput(TStream& stream)
    : stream_(stream), next_(stream.Position()), end_(stream.Size()), wanted_(kPiece) {}

void JpegStreamInput::Reserve(size_t count) {
  constexpr size_t kPieces = 4;
  wanted_ = std::max(wanted_, count + std::max(count / kPieces, kPiece));
}

std::span<const uint8_t> JpegStreamInput::Fill(std::span<const uint8_t> left) {
  const uint64_t rest = end_ > next_ ? end_ - next_ : 0;
  const size_t wanted =
      left.size() + static_cast<size_t>(std::min<uint64_t>(rest, wanted_ - left.size()));
  if (wanted > room_) {
    auto larger = std::make_unique_for_overwrite<uint8_t[]>(wanted);
    std::copy(left.begin(), left.end(), larger.get());
    buffer_ = std::move(larger);
    room_ = wanted;
  } else if (!left.empty()) {
    std::memmove(buffer_.get(), left.data(), left.size());
  }
  size_t count = left.size();
  stream_.SetPosition(next_);
  while (count < wanted) {
    const size_t read = stream_.Read({buffer_.get() + count, wanted - count});
    if (read == 0) break;
    count += read;
    next_ += read;
  }
  return {buffer_.get(), count};
}

}  // namespace rasterkit::detail
