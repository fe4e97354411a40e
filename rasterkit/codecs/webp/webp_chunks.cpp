#include <algorithm>

#include <rasterkit/codecs/webp/webp_chunks.h>

namespace rasterkit::detail {

namespace {

constexpr size_t kFileHeader = 12, kChunkHeader = 8, kLengthAt = 4;

uint32_t LittleEndian32(std::span<const uint8_t> bytes) {
  return bytes[0] | uint32_t{bytes[1]} << 8 | uint32_t{bytes[2]} << 16 | uint32_t{bytes[3]} << 24;
}

}  // namespace

WebpChunks::WebpChunks(std::span<const uint8_t> file)
    : rest_(file.subspan(std::min(kFileHeader, file.size()))) {}

bool WebpChunks::Next() {
  if (rest_.size() < kChunkHeader) return false;
  const size_t length = LittleEndian32(rest_.subspan(kLengthAt));
  name_ = rest_.first(kLengthAt);
  rest_ = rest_.subspan(kChunkHeader);
  isWhole_ = length <= rest_.size();
  data_ = rest_.first(std::min(length, rest_.size()));
  // Chunks start at even offsets.
  rest_ = rest_.subspan(std::min(data_.size() + length % 2, rest_.size()));
  return true;
}

bool WebpChunks::IsNamed(std::string_view name) const {
  return std::equal(name.begin(), name.end(), name_.begin(), name_.end(),
                    [](char a, uint8_t b) { return static_cast<uint8_t>(a) == b; });
}

bool IsWebpCutOff(std::span<const uint8_t> file) {
  return file.size() < kFileHeader ||
         LittleEndian32(file.subspan(kLengthAt)) > file.size() - kChunkHeader;
}

}  // namespace rasterkit::detail
