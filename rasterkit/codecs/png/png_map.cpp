#include <algorithm>
#include <array>

#include <rasterkit/codecs/png/png_map.h>
#include <rasterkit/metadata/png/png_chunks.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit::detail {
namespace {

constexpr size_t kSignatureBytes = 8, kNameBytes = 8, kSumBytes = 4;
constexpr uint64_t kFrameBytes = kNameBytes + kSumBytes, kHeaderBytes = 13;
constexpr uint32_t kHeader = PngKind("IHDR"), kPalette = PngKind("PLTE"), kData = PngKind("IDAT");
constexpr uint32_t kEnd = PngKind("IEND"), kTransparency = PngKind("tRNS");

uint32_t LongOf(const uint8_t* bytes) {
  return uint32_t{bytes[0]} << 24 | uint32_t{bytes[1]} << 16 | uint32_t{bytes[2]} << 8 | bytes[3];
}

class Mapper {
 public:
  explicit Mapper(TStream& stream) : stream_(stream), start_(stream.Position()) {
    const uint64_t size = stream.Size();
    map_.fileBytes = size - std::min(size, start_);
  }

  PngMap Map() {
    ReadFront(std::min<uint64_t>(kSignatureBytes, map_.fileBytes));
    at_ = kSignatureBytes;
    while (map_.isTruncated && at_ + kFrameBytes <= map_.fileBytes) {
      if (!Walk()) break;
    }
    stream_.SetPosition(start_);
    return std::move(map_);
  }

 private:
  /// False if the chunk is not whole.
  bool Walk() {
    std::array<uint8_t, kNameBytes> name{};
    stream_.SetPosition(start_ + at_);
    if (ReadUpTo(name.data(), name.size()) < name.size()) return false;
    const uint64_t length = LongOf(name.data());
    const uint32_t kind = LongOf(name.data() + 4);
    if (length > map_.fileBytes - at_ - kFrameBytes) return false;
    RequireTime();
    if (at_ == kSignatureBytes) isKnown_ = kind == kHeader && length == kHeaderBytes;
    if (kind == kData) {
      AddData(length);
    } else if (map_.dataAt != 0) {
      isBehind_ = true;
    } else if (isKnown_ && (kind == kHeader || kind == kPalette || kind == kTransparency)) {
      stream_.SetPosition(start_ + at_);
      ReadFront(length + kFrameBytes);
    }
    map_.isTruncated = kind != kEnd;
    at_ += length + kFrameBytes;
    return true;
  }

  void AddData(uint64_t length) {
    if (map_.dataAt == 0) map_.dataAt = start_ + at_;
    if (isBehind_) return;
    map_.dataBytes += length;
    map_.mostBytes = std::max(map_.mostBytes, length);
  }

  size_t ReadUpTo(uint8_t* target, size_t count) {
    size_t done = 0;
    while (done < count) {
      const size_t read = stream_.Read({target + done, count - done});
      if (read == 0) break;
      done += read;
    }
    return done;
  }

  void ReadFront(uint64_t count) {
    const size_t before = map_.front.size();
    map_.front.resize(before + static_cast<size_t>(count));
    map_.front.resize(before + ReadUpTo(map_.front.data() + before, static_cast<size_t>(count)));
  }

  TStream& stream_;
  const uint64_t start_;
  uint64_t at_ = 0;
  bool isKnown_ = false, isBehind_ = false;
  PngMap map_;
};

}  // namespace

PngMap MapPng(TStream& stream) {
  return Mapper(stream).Map();
}

}  // namespace rasterkit::detail
