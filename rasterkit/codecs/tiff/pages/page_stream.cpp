#include <algorithm>

#include <rasterkit/codecs/tiff/pages/page_stream.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit::detail {

PageStream::PageStream(TStream& stream, const TagReader& reader, uint64_t directoryAt)
    : stream_(stream), start_(reader.Start()), size_(reader.Size()) {
  SetNumber(reader, reader.IsBig() ? 8 : 4, directoryAt);
}

void PageStream::EndAfter(const TagReader& reader, uint64_t directoryAt, const PageChain& chain) {
  pages_ = chain.Pages();
  lostPages_ = chain.Lost();
  if (const auto link = reader.Link(directoryAt)) SetNumber(reader, link->at, 0);
}

/// In the width and the order of the file.
void PageStream::SetNumber(const TagReader& reader, uint64_t at, uint64_t number) {
  Patch patch{at, {}};
  const int count = reader.IsBig() ? 8 : 4;
  for (int i = 0; i < count; i++) patch.bytes.push_back(static_cast<uint8_t>(number >> 8 * i));
  if (reader.IsBigEndian()) std::reverse(patch.bytes.begin(), patch.bytes.end());
  patches_.push_back(std::move(patch));
}

size_t PageStream::Read(std::span<uint8_t> target) {
  if (position_ >= size_) return 0;
  // Others may read the file from its beginning in between.
  const uint64_t before = stream_.Position();
  stream_.SetPosition(start_ + position_);
  const auto wanted = static_cast<size_t>(std::min<uint64_t>(target.size(), size_ - position_));
  const size_t count = stream_.Read(target.first(wanted));
  stream_.SetPosition(before);
  const uint64_t end = position_ + count;
  for (const Patch& patch : patches_) {
    const uint64_t last = std::min<uint64_t>(end, patch.at + patch.bytes.size());
    for (uint64_t at = std::max(position_, patch.at); at < last; at++) {
      target[static_cast<size_t>(at - position_)] = patch.bytes[static_cast<size_t>(at - patch.at)];
    }
  }
  position_ = end;
  return count;
}

void PageStream::Write(std::span<const uint8_t>) {
  throw FileError("a page of a TIFF file cannot be written to");
}

}  // namespace rasterkit::detail
