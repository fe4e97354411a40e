#include <algorithm>
#include <array>
#include <memory>

#include <libdeflate.h>

#include <rasterkit/codecs/png/rows/png_inflate.h>
#include <rasterkit/codecs/rows/plausible_size.h>
#include <rasterkit/metadata/foreign_blocks.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>
#include <rasterkit/runtime/threads/call_or_leave.h>

namespace rasterkit::detail {
namespace {

constexpr size_t kNameBytes = 8, kSumBytes = 4;
constexpr uint32_t kData = PngKind("IDAT"), kEnd = PngKind("IEND");
/// The most that libpng reads of a chunk without a word.
constexpr uint64_t kChunkBytes = uint64_t{16} << 20;

/// Chunks after the pixels that libpng skips without a word.
constexpr std::array kSkipped = {PngKind("tEXt"), PngKind("zTXt"), PngKind("iTXt"), PngKind("tIME"),
                                 PngKind("eXIf")};

uint32_t LongOf(const uint8_t* bytes) {
  return uint32_t{bytes[0]} << 24 | uint32_t{bytes[1]} << 16 | uint32_t{bytes[2]} << 8 | bytes[3];
}

struct FreeDecompressor {
  void operator()(libdeflate_decompressor* unpacker) const {
    libdeflate_free_decompressor(unpacker);
  }
};

/// One call of the unpacker, which may outlive the call that started it.
struct UnpackedAtOnce {
  std::unique_ptr<libdeflate_decompressor, FreeDecompressor> unpacker;
  PixelMemory packed, rows;
  bool isWhole = false;

  void Unpack() {
    size_t used = 0;
    const auto result = libdeflate_zlib_decompress_ex(unpacker.get(), packed.Data(), packed.Size(),
                                                      rows.Data(), rows.Size(), &used, nullptr);
    isWhole = result == LIBDEFLATE_SUCCESS && used == packed.Size();
  }
};

class DataReader {
 public:
  DataReader(TStream& stream, const PngMap& map) : stream_(stream), map_(map) {}

  /// The chunks of pixels, joined. False if a chunk is damaged.
  bool ReadData(uint8_t* target) {
    stream_.SetPosition(map_.dataAt);
    for (uint64_t done = 0; done < map_.dataBytes; done += length_) {
      if (!ReadName() || kind_ != kData || length_ > map_.dataBytes - done) return false;
      if (!ReadChunk(target + done)) return false;
    }
    return true;
  }

  /// The chunks after the pixels. False if one of them is damaged or has a kind that libpng reads.
  bool ReadEnd() {
    std::array<uint8_t, size_t{1} << 12> piece;
    while (ReadName()) {
      const bool isEnd = kind_ == kEnd && length_ == 0;
      const bool isSkipped = std::find(kSkipped.begin(), kSkipped.end(), kind_) != kSkipped.end();
      if (!isEnd && (!isSkipped || length_ > kChunkBytes)) return false;
      for (uint64_t left = length_; left > 0;) {
        const auto count = static_cast<size_t>(std::min<uint64_t>(left, piece.size()));
        if (!ReadUpTo(piece.data(), count)) return false;
        sum_ = libdeflate_crc32(sum_, piece.data(), count);
        left -= count;
      }
      if (!HoldsSum()) return false;
      if (isEnd) return true;
    }
    return false;
  }

 private:
  bool ReadUpTo(uint8_t* target, size_t count) {
    RequireTime();
    while (count > 0) {
      const size_t read = stream_.Read({target, count});
      if (read == 0) return false;
      target += read;
      count -= read;
    }
    return true;
  }

  bool ReadName() {
    std::array<uint8_t, kNameBytes> name{};
    if (!ReadUpTo(name.data(), name.size())) return false;
    length_ = LongOf(name.data());
    kind_ = LongOf(name.data() + 4);
    sum_ = libdeflate_crc32(0, name.data() + 4, 4);
    return true;
  }

  bool ReadChunk(uint8_t* target) {
    // In pieces, so that the sum is taken while they are in the cache.
    constexpr uint64_t kPiece = uint64_t{1} << 18;
    for (uint64_t done = 0; done < length_;) {
      const auto count = static_cast<size_t>(std::min(kPiece, length_ - done));
      if (!ReadUpTo(target + done, count)) return false;
      sum_ = libdeflate_crc32(sum_, target + done, count);
      done += count;
    }
    return HoldsSum();
  }

  bool HoldsSum() {
    std::array<uint8_t, kSumBytes> sum{};
    return ReadUpTo(sum.data(), sum.size()) && LongOf(sum.data()) == sum_;
  }

  TStream& stream_;
  const PngMap& map_;
  uint64_t length_ = 0;
  uint32_t kind_ = 0, sum_ = 0;
};

/// True if zlib accepts the window of these data: one of 32 KiB, or one that holds everything.
bool HasUsualWindow(const uint8_t* data, uint64_t unpackedBytes) {
  constexpr unsigned kWholeWindow = 7, kLeastBits = 8;
  const unsigned window = data[0] >> 4;
  return window == kWholeWindow ||
         (window < kWholeWindow && unpackedBytes <= uint64_t{1} << (window + kLeastBits));
}

bool HasFilters(const uint8_t* rows, uint64_t bytes, uint64_t stride) {
  constexpr uint8_t kLastFilter = 4;
  for (uint64_t at = 0; at < bytes; at += stride) {
    if (rows[at] > kLastFilter) return false;
  }
  return true;
}

bool IsForOneCall(const PngMap& map, const PngFacts& facts, uint64_t bytes) {
  // Beyond this, packed data hold empty blocks.
  constexpr uint64_t kPackedShare = 256, kPackedMore = 65536, kLeast = 6;
  const uint64_t held = bytes + map.dataBytes;
  return !facts.interlaced && !map.isTruncated && bytes <= kPngBytesInOneCall &&
         map.dataBytes >= kLeast && map.dataBytes <= bytes + bytes / kPackedShare + kPackedMore &&
         map.mostBytes <= std::max(kChunkBytes, bytes) && bytes <= map.dataBytes * kDeflateRatio &&
         held <= CurrentLimits().pictureBytes &&
         held <= CurrentLimits().processBytes / kPngPartInOneCall;
}

}  // namespace

uint64_t FilteredPngBytes(uint64_t width, uint64_t height, unsigned bitsPerPixel) {
  return SaturatedProduct(height, 1 + (width * bitsPerPixel + 7) / 8);
}

PixelMemory InflatePng(TStream& stream, const PngMap& map, const PngFacts& facts) {
  const uint64_t bytes = FilteredPngBytes(facts.width, facts.height, facts.SampleBits());
  if (!IsForOneCall(map, facts, bytes)) return {};
  try {
    // Larger ones take more than some milliseconds.
    constexpr uint64_t kMostAtOnce = uint64_t{4} << 20;
    const auto call = std::make_shared<UnpackedAtOnce>();
    call->packed = PixelMemory(static_cast<size_t>(map.dataBytes));
    DataReader reader(stream, map);
    if (!reader.ReadData(call->packed.Data()) || !reader.ReadEnd()) return {};
    if (!HasUsualWindow(call->packed.Data(), bytes)) return {};
    call->rows = PixelMemory(static_cast<size_t>(bytes));
    call->unpacker.reset(libdeflate_alloc_decompressor());
    if (!call->unpacker) return {};
    if (bytes <= kMostAtOnce) {
      call->Unpack();
    } else {
      CallOrLeave([call] { call->Unpack(); });
    }
    if (!call->isWhole || !HasFilters(call->rows.Data(), bytes, bytes / facts.height)) return {};
    return std::move(call->rows);
  } catch (const TimeLimitError&) {
    throw;
  } catch (const LimitError&) {
    return {};
  }
}

}  // namespace rasterkit::detail
