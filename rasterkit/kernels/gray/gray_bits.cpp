#include <algorithm>
#include <cstring>

#include <rasterkit/kernels/gray/gray.h>
#include <rasterkit/kernels/gray/gray_bits.h>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE <rasterkit/kernels/gray/gray_bits.cpp>
// clang-format off: this file is compiled once for each target by the next line.
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include <rasterkit/kernels/gray/gray_test-inl.h>
// clang-format on

HWY_BEFORE_NAMESPACE();
namespace rasterkit::kernels::HWY_NAMESPACE {
namespace {

#if HWY_TARGET == HWY_SCALAR

template <int kBytes>
void BitsOfRow(const uint8_t* pixels, size_t width, int level, uint8_t* bits) {
  for (size_t x = 0; x < width; x += 8) {
    unsigned byte = 255;
    const size_t count = std::min<size_t>(8, width - x);
    for (size_t i = 0; i < count; ++i, pixels += kBytes) {
      if (GrayOf(pixels[2], pixels[1], pixels[0]) < level) byte -= 128u >> i;
    }
    *bits++ = static_cast<uint8_t>(byte);
  }
}

#else

// The first pixel of a byte goes to its highest bit, while the first lane of a mask is its lowest:
// the pixels of each byte (of each half of one, where a vector has four lanes) are loaded in
// reverse.
struct ReverseOrders {
  LaneOrder lanes;
  ByteVector bytes;
};

template <int kBytes>
HWY_INLINE ReverseOrders MakeReverseOrders() {
  constexpr uint8_t kBackwards[2][16] = {{9, 10, 11, 11, 6, 7, 8, 8, 3, 4, 5, 5, 0, 1, 2, 2},
                                         {12, 13, 14, 15, 8, 9, 10, 11, 4, 5, 6, 7, 0, 1, 2, 3}};
  const int otherBlock = hn::Lanes(Lanes()) >= 8 ? 1 : 0;
  return {OrderLanes([otherBlock](int i) { return (i / 4 ^ otherBlock) * kBytes + i % 4; }),
          hn::LoadDup128(Bytes(), kBackwards[kBytes - 3])};
}

template <int kBytes>
HWY_INLINE LaneVector LoadReversed(const ReverseOrders& orders, const uint8_t* pixels) {
  auto loaded = hn::LoadU(Bytes(), pixels);
  if constexpr (hn::MaxLanes(Bytes()) > 16) {
    loaded = hn::BitCast(Bytes(), hn::TableLookupLanes(hn::BitCast(Lanes(), loaded), orders.lanes));
  }
  return hn::BitCast(Lanes(), hn::TableLookupBytes(loaded, orders.bytes));
}

/// Stores a mask of a whole number of bytes.
HWY_INLINE void StoreBytes(LaneMask mask, uint8_t* target) {
  uint8_t bytes[8];
  hn::StoreMaskBits(Lanes(), mask, bytes);
  std::memcpy(target, bytes, hn::Lanes(Lanes()) / 8);
}

/// Stores two masks of four lanes.
HWY_INLINE void StoreHalves(LaneMask first, LaneMask second, uint8_t* target) {
  uint8_t high[8], low[8];
  hn::StoreMaskBits(Lanes(), first, high);
  hn::StoreMaskBits(Lanes(), second, low);
  *target = static_cast<uint8_t>(high[0] << 4 | low[0]);
}

HWY_INLINE void StoreBits(const QuadMask& m, uint8_t* target) {
  const size_t bytes = hn::Lanes(Lanes()) / 8;
  if (bytes == 0) {
    StoreHalves(m.m0, m.m1, target);
    StoreHalves(m.m2, m.m3, target + 1);
  } else {
    StoreBytes(m.m0, target);
    StoreBytes(m.m1, target + bytes);
    StoreBytes(m.m2, target + 2 * bytes);
    StoreBytes(m.m3, target + 3 * bytes);
  }
}

/// The bits of as many pixels as a vector has bytes.
template <int kBytes>
HWY_INLINE void BitsOfQuad(const ReverseOrders& orders, const GrayTest& test, const uint8_t* pixels,
                           uint8_t* bits) {
  const size_t step = hn::Lanes(Lanes()) * kBytes;
  const Quad quad{LoadReversed<kBytes>(orders, pixels), LoadReversed<kBytes>(orders, pixels + step),
                  LoadReversed<kBytes>(orders, pixels + 2 * step),
                  LoadReversed<kBytes>(orders, pixels + 3 * step)};
  StoreBits(IsAtLeast(test, quad), bits);
}

template <int kBytes>
void BitsOfRow(const uint8_t* pixels, size_t width, int level, uint8_t* bits) {
  const ReverseOrders orders = MakeReverseOrders<kBytes>();
  const GrayTest test = MakeGrayTest(level);
  const size_t step = hn::Lanes(Bytes());
  const size_t touched = step + PixelsReadAhead<kBytes>(step);
  size_t x = 0;
  for (; x + touched <= width; x += step) {
    BitsOfQuad<kBytes>(orders, test, pixels + x * kBytes, bits + x / 8);
  }
  if (x == width) return;
  uint8_t rest[(2 * kBytes + 1) * kMaxVectorBytes] = {};
  uint8_t bitsOfRest[2 * kMaxVectorBytes / 8];
  std::memcpy(rest, pixels + x * kBytes, (width - x) * kBytes);
  for (size_t i = 0; i < width - x; i += step) {
    BitsOfQuad<kBytes>(orders, test, rest + i * kBytes, bitsOfRest + i / 8);
  }
  std::memcpy(bits + x / 8, bitsOfRest, (width - x + 7) / 8);
  if (width % 8 != 0) bits[width / 8] |= static_cast<uint8_t>(255u >> width % 8);
}

#endif

void Bits24(const uint8_t* bgr, size_t width, int level, uint8_t* bits) {
  BitsOfRow<3>(bgr, width, level, bits);
}

void Bits32(const uint8_t* bgra, size_t width, int level, uint8_t* bits) {
  BitsOfRow<4>(bgra, width, level, bits);
}

}  // namespace
}  // namespace rasterkit::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace rasterkit::kernels {
namespace {

HWY_EXPORT(Bits24);
HWY_EXPORT(Bits32);

}  // namespace

void GrayBits24(const uint8_t* bgr, size_t width, int level, uint8_t* bits) {
  HWY_DYNAMIC_DISPATCH(Bits24)(bgr, width, level, bits);
}

void GrayBits32(const uint8_t* bgra, size_t width, int level, uint8_t* bits) {
  HWY_DYNAMIC_DISPATCH(Bits32)(bgra, width, level, bits);
}

}  // namespace rasterkit::kernels
#endif
