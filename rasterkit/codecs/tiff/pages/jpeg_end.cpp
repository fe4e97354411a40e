#include <algorithm>
#include <array>
#include <vector>

#include <rasterkit/codecs/tiff/pages/jpeg_end.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit::detail {

namespace {

constexpr uint8_t kMark = 0xFF, kStart = 0xD8, kEnd = 0xD9, kScan = 0xDA;
constexpr size_t kPieceBytes = 64 << 10;

/// After the end marker, or the end of the file.
uint64_t EndOfScans(const TagReader& reader, uint64_t at) {
  std::vector<uint8_t> piece;
  bool isMarked = false;
  while (at < reader.Size()) {
    RequireTime();
    piece.resize(static_cast<size_t>(std::min<uint64_t>(kPieceBytes, reader.Size() - at)));
    if (!reader.ReadAt(at, piece)) break;
    for (size_t i = 0; i < piece.size(); i++) {
      if (isMarked && piece[i] == kEnd) return at + i + 1;
      isMarked = piece[i] == kMark;
    }
    at += piece.size();
  }
  return reader.Size();
}

}  // namespace

uint64_t JpegEnd(const TagReader& reader, uint64_t at, bool hasStrips) {
  std::array<uint8_t, 4> bytes{};
  if (!reader.ReadAt(at, std::span(bytes).first(2)) || bytes[0] != kMark || bytes[1] != kStart) {
    return 0;
  }
  uint64_t place = at + 2;
  while (reader.ReadAt(place, bytes) && bytes[0] == kMark) {
    RequireTime();
    if (bytes[1] == kMark) {
      place++;
      continue;
    }
    if (bytes[1] == kEnd) return place + 2;
    const uint64_t end = place + 2 + (uint64_t{bytes[2]} << 8 | bytes[3]);
    if (bytes[1] == kScan) {
      return hasStrips ? std::min(end, reader.Size()) : EndOfScans(reader, end);
    }
    place = end;
  }
  return 0;
}

}  // namespace rasterkit::detail
