#include <algorithm>

#include <rasterkit/codecs/tiff/pages/page_stream.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit::detail {

PageStream::PageStream(TStream& stream, const TagReader& reader, uint64_t directoryAt)
    : stream_(stream),
      start_(stream.Position()),
      size_(reader.Size()),
      headerBytes_(reader.IsBig() ? 16 : 8) {
  if (!reader.ReadAt(0, std::span(header_).first(headerBytes_))) {
    throw FormatError("TIFF: the header is cut off");
  }
  const size_t offsetBytes = headerBytes_ / 2;
  for (size_t i = 0; i < offsetBytes; i++) {
    const size_t place = reader.IsBigEndian() ? offsetBytes - 1 - i : i;
    header_[offsetBytes + place] = static_cast<uint8_t>(directoryAt >> 8 * i);
  }
}

size_t PageStream::Read(std::span<uint8_t> target) {
  if (position_ >= size_) return 0;
  stream_.SetPosition(start_ + position_);
  const auto wanted = static_cast<size_t>(std::min<uint64_t>(target.size(), size_ - position_));
  const size_t count = stream_.Read(target.first(wanted));
  for (size_t i = 0; i < count && position_ + i < headerBytes_; i++) {
    target[i] = header_[static_cast<size_t>(position_) + i];
  }
  position_ += count;
  return count;
}

void PageStream::Write(std::span<const uint8_t>) {
  throw FileError("a page of a TIFF file cannot be written to");
}

}  // namespace rasterkit::detail
