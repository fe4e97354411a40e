#include <algorithm>
#include <array>

#include <rasterkit/codecs/png/png_skeleton.h>
#include <rasterkit/metadata/png/png_chunks.h>
#include <rasterkit/runtime/limits.h>
#include <rasterkit/runtime/memory/memory_budget.h>

namespace rasterkit::detail {
namespace {

constexpr uint64_t kSignatureBytes = 8, kFrameBytes = 12;
constexpr uint32_t kData = PngKind("IDAT"), kEnd = PngKind("IEND");

/// An empty chunk of pixels with its checksum.
constexpr std::array<uint8_t, 12> kNoData = {0,   0,   0,    0,    'I',  'D',
                                             'A', 'T', 0x35, 0xAF, 0x06, 0x1E};

uint32_t LongOf(const uint8_t* bytes) {
  return uint32_t{bytes[0]} << 24 | uint32_t{bytes[1]} << 16 | uint32_t{bytes[2]} << 8 | bytes[3];
}

class SkeletonReader {
 public:
  explicit SkeletonReader(TStream& stream)
      : stream_(stream),
        start_(stream.Position()),
        size_(stream.Size() - std::min(stream.Size(), start_)) {}

  PngSkeleton Read() {
    Take(0, kSignatureBytes);
    for (uint64_t at = kSignatureBytes; at < size_;) {
      RequireTime();
      std::vector<uint8_t>& file = skeleton_.file;
      const size_t before = file.size();
      Take(at, kFrameBytes);
      const size_t taken = file.size() - before;
      if (taken < kFrameBytes) break;
      const uint64_t length = LongOf(file.data() + before);
      const uint32_t kind = LongOf(file.data() + before + 4);
      if (length > size_ - at - kFrameBytes) break;
      file.resize(before);
      if (kind == kData) {
        file.insert(file.end(), kNoData.begin(), kNoData.end());
      } else {
        Take(at, length + kFrameBytes);
      }
      at += length + kFrameBytes;
      if (kind == kEnd) {
        skeleton_.trailingBytes = size_ - at;
        break;
      }
    }
    stream_.SetPosition(start_);
    return std::move(skeleton_);
  }

 private:
  /// Appends bytes of the file, as many as there are.
  void Take(uint64_t at, uint64_t count) {
    std::vector<uint8_t>& file = skeleton_.file;
    count = std::min(count, size_ - std::min(size_, at));
    RequirePictureMemory(file.size() + count, "a PNG file without its pixels");
    size_t end = file.size();
    file.resize(end + static_cast<size_t>(count));
    stream_.SetPosition(start_ + at);
    while (end < file.size()) {
      const size_t read = stream_.Read(std::span(file).subspan(end));
      if (read == 0) break;
      end += read;
    }
    file.resize(end);
  }

  TStream& stream_;
  const uint64_t start_, size_;
  PngSkeleton skeleton_;
};

}  // namespace

PngSkeleton ReadPngSkeleton(TStream& stream) {
  return SkeletonReader(stream).Read();
}

}  // namespace rasterkit::detail
