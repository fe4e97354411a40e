#include <cstring>

#include <rasterkit/kernels/rows/reverse_row.h>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE <rasterkit/kernels/rows/reverse_row.cpp>
// clang-format off: this file is compiled once for each target by the next line.
#include <hwy/foreach_target.h>
#include <hwy/highway.h>
// clang-format on

HWY_BEFORE_NAMESPACE();
namespace rasterkit::kernels::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

template <size_t kBytes>
void ReverseOneByOne(uint8_t* first, uint8_t* end) {
  for (; first + kBytes < end; first += kBytes) {
    end -= kBytes;
    uint8_t pixel[kBytes];
    std::memcpy(pixel, first, kBytes);
    std::memcpy(first, end, kBytes);
    std::memcpy(end, pixel, kBytes);
  }
}

/// The pixels of a byte in reverse order.
template <int kBits>
uint8_t ReverseByte(unsigned byte) {
  byte = byte >> 4 | byte << 4;
  if constexpr (kBits == 4) return static_cast<uint8_t>(byte);
  byte = (byte >> 2 & 0x33) | (byte & 0x33) << 2;
  return static_cast<uint8_t>((byte >> 1 & 0x55) | (byte & 0x55) << 1);
}

template <int kBits>
void ReversePackedOneByOne(const uint8_t* source, size_t bytes, uint8_t* target) {
  for (size_t i = 0; i < bytes; ++i) target[i] = ReverseByte<kBits>(source[bytes - 1 - i]);
}

#if HWY_TARGET == HWY_SCALAR

template <size_t kBytes>
void Reverse(uint8_t* row, size_t count) {
  ReverseOneByOne<kBytes>(row, row + count * kBytes);
}

template <int kBits>
void ReversePacked(const uint8_t* source, size_t bytes, uint8_t* target) {
  ReversePackedOneByOne<kBits>(source, bytes, target);
}

#else

using Block = hn::Full128<uint8_t>;
using BlockVector = hn::Vec<Block>;
constexpr size_t kBlockBytes = 16;

/// Bytes of a block that are whole pixels: 15 where a pixel takes 3, else all.
template <size_t kBytes>
constexpr size_t kUsedBytes = kBlockBytes / kBytes* kBytes;

/// For TableLookupBytes: the whole pixels of a block in reverse order, read after the first
/// `skipped` bytes and made after the first `kept` ones; the bytes beside them are rubbish.
template <size_t kBytes>
HWY_INLINE BlockVector ReverseOrder(size_t skipped, size_t kept) {
  constexpr size_t kLast = kUsedBytes<kBytes> - kBytes;
  uint8_t order[kBlockBytes] = {};
  for (size_t i = 0; i < kUsedBytes<kBytes>; ++i) {
    order[kept + i] = static_cast<uint8_t>(skipped + kLast - i / kBytes * kBytes + i % kBytes);
  }
  return hn::LoadU(Block(), order);
}

/// Exchanges blocks from both ends of the row. A block on the left holds its pixels in its first
/// bytes, one on the right in its last; the byte beyond them is part of the next block. That one is
/// loaded before this one is stored, and so mends what was stored there; only the last pair has to
/// put back what was there.
template <size_t kBytes>
void Reverse(uint8_t* row, size_t count) {
  constexpr size_t kUsed = kUsedBytes<kBytes>, kRest = kBlockBytes - kUsed;
  constexpr ptrdiff_t kPair = 2 * kBlockBytes;
  const Block d;
  uint8_t *first = row, *end = row + count * kBytes;
  if (end - first >= kPair) {
    const auto toLeft = ReverseOrder<kBytes>(kRest, 0), toRight = ReverseOrder<kBytes>(0, kRest);
    auto left = hn::LoadU(d, first), right = hn::LoadU(d, end - kBlockBytes);
    for (; end - first >= ptrdiff_t{2 * kUsed} + kPair; first += kUsed, end -= kUsed) {
      const auto nextLeft = hn::LoadU(d, first + kUsed);
      const auto nextRight = hn::LoadU(d, end - kUsed - kBlockBytes);
      hn::StoreU(hn::TableLookupBytes(right, toLeft), d, first);
      hn::StoreU(hn::TableLookupBytes(left, toRight), d, end - kBlockBytes);
      left = nextLeft;
      right = nextRight;
    }
    const auto isLeft = hn::FirstN(d, kUsed), isNotRight = hn::FirstN(d, kRest);
    hn::StoreU(hn::IfThenElse(isLeft, hn::TableLookupBytes(right, toLeft), left), d, first);
    hn::StoreU(hn::IfThenElse(isNotRight, right, hn::TableLookupBytes(left, toRight)), d,
               end - kBlockBytes);
    first += kUsed;
    end -= kUsed;
  }
  ReverseOneByOne<kBytes>(first, end);
}

template <int kBits>
HWY_INLINE BlockVector ReverseInBytes(BlockVector bytes) {
  const Block d;
  const auto lowNibble = hn::Set(d, uint8_t{15});
  const auto low = hn::And(bytes, lowNibble);
  const auto high = hn::And(hn::ShiftRight<4>(bytes), lowNibble);
  if constexpr (kBits == 4) return hn::Or(hn::ShiftLeft<4>(low), high);
  alignas(16) constexpr uint8_t kReversed[16] = {0, 8, 4, 12, 2, 10, 6, 14,
                                                 1, 9, 5, 13, 3, 11, 7, 15};
  const auto reversed = hn::Load(d, kReversed);
  return hn::Or(hn::ShiftLeft<4>(hn::TableLookupBytes(reversed, low)),
                hn::TableLookupBytes(reversed, high));
}

template <int kBits>
void ReversePacked(const uint8_t* source, size_t bytes, uint8_t* target) {
  const Block d;
  const auto order = ReverseOrder<1>(0, 0);
  size_t i = 0;
  for (; i + kBlockBytes <= bytes; i += kBlockBytes) {
    const auto block = hn::LoadU(d, source + bytes - kBlockBytes - i);
    hn::StoreU(ReverseInBytes<kBits>(hn::TableLookupBytes(block, order)), d, target + i);
  }
  ReversePackedOneByOne<kBits>(source, bytes - i, target + i);
}

#endif

void BytePixels(uint8_t* row, size_t count, int bitsPerPixel) {
  switch (bitsPerPixel) {
    case 8:
      return Reverse<1>(row, count);
    case 16:
      return Reverse<2>(row, count);
    case 24:
      return Reverse<3>(row, count);
    default:
      return Reverse<4>(row, count);
  }
}

void PackedBytes(const uint8_t* source, size_t bytes, int bitsPerPixel, uint8_t* target) {
  return bitsPerPixel == 1 ? ReversePacked<1>(source, bytes, target)
                           : ReversePacked<4>(source, bytes, target);
}

}  // namespace
}  // namespace rasterkit::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace rasterkit::kernels {
namespace {

HWY_EXPORT(BytePixels);
HWY_EXPORT(PackedBytes);

}  // namespace

void ReverseBytePixels(uint8_t* row, size_t count, int bitsPerPixel) {
  HWY_DYNAMIC_DISPATCH(BytePixels)(row, count, bitsPerPixel);
}

void ReversePackedBytes(const uint8_t* source, size_t bytes, int bitsPerPixel, uint8_t* target) {
  HWY_DYNAMIC_DISPATCH(PackedBytes)(source, bytes, bitsPerPixel, target);
}

}  // namespace rasterkit::kernels
#endif
