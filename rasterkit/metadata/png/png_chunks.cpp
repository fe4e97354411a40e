#include <algorithm>

#include <zlib.h>

#include <rasterkit/metadata/png/png_chunks.h>

namespace rasterkit::detail {
namespace {

constexpr size_t kSignatureBytes = 8;
/// Length, name and checksum.
constexpr size_t kFrameBytes = 12;

uint32_t LongAt(std::span<const uint8_t> bytes, size_t offset) {
  return uint32_t{bytes[offset]} << 24 | uint32_t{bytes[offset + 1]} << 16 |
         uint32_t{bytes[offset + 2]} << 8 | bytes[offset + 3];
}

}  // namespace

bool PngChunk::Holds() const {
  const size_t counted = data.size() + 4;
  // zlib counts in 32 bits; a chunk is shorter than 4 GiB.
  const auto sum = crc32(0, whole.data() + 4, static_cast<uInt>(counted));
  return static_cast<uint32_t>(sum) == LongAt(whole, whole.size() - 4);
}

PngChunks::PngChunks(std::span<const uint8_t> file)
    : rest_(file.subspan(std::min(kSignatureBytes, file.size()))) {}

bool PngChunks::Next() {
  if (isAtEnd_ || isCutOff_) return false;
  isCutOff_ = rest_.size() < kFrameBytes;
  if (isCutOff_) return false;
  const size_t length = LongAt(rest_, 0);
  isCutOff_ = length > rest_.size() - kFrameBytes;
  if (isCutOff_) return false;
  chunk_.kind = LongAt(rest_, 4);
  chunk_.data = rest_.subspan(8, length);
  chunk_.whole = rest_.first(length + kFrameBytes);
  rest_ = rest_.subspan(length + kFrameBytes);
  isAtEnd_ = chunk_.kind == PngKind("IEND");
  return true;
}

}  // namespace rasterkit::detail
