#include <cstring>

#include <rasterkit/kernels/rows/convert_rows.h>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE <rasterkit/kernels/rows/convert_rows.cpp>
// clang-format off: this file is compiled once for each target by the next line.
#include <hwy/foreach_target.h>
#include <hwy/highway.h>
// clang-format on

HWY_BEFORE_NAMESPACE();
namespace rasterkit::kernels::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

// A block at a time; the rest of the row a pixel at a time.
void ExpandRow(const uint8_t* HWY_RESTRICT pixels, size_t width, uint8_t* HWY_RESTRICT target) {
  size_t x = 0;
#if HWY_TARGET != HWY_SCALAR
  const hn::ScalableTag<uint8_t> d;
  const size_t block = hn::Lanes(d);
  const auto opaque = hn::Set(d, 255);
  for (; x + block <= width; x += block) {
    hn::Vec<decltype(d)> b, g, r;
    hn::LoadInterleaved3(d, pixels + 3 * x, b, g, r);
    hn::StoreInterleaved4(b, g, r, opaque, d, target + 4 * x);
  }
#endif
  for (; x < width; ++x) {
    std::memcpy(target + 4 * x, pixels + 3 * x, 3);
    target[4 * x + 3] = 255;
  }
}

void ShrinkRow(const uint8_t* HWY_RESTRICT pixels, size_t width, uint8_t* HWY_RESTRICT target) {
  size_t x = 0;
#if HWY_TARGET != HWY_SCALAR
  const hn::ScalableTag<uint8_t> d;
  const size_t block = hn::Lanes(d);
  for (; x + block <= width; x += block) {
    hn::Vec<decltype(d)> b, g, r, alpha;
    hn::LoadInterleaved4(d, pixels + 4 * x, b, g, r, alpha);
    hn::StoreInterleaved3(b, g, r, d, target + 3 * x);
  }
#endif
  for (; x < width; ++x) std::memcpy(target + 3 * x, pixels + 4 * x, 3);
}

// Eight comparison results make a byte, the first in bit 7: each is worth its own power of two, and
// the powers of eight bytes add up without a carry.
void PackBits(const uint8_t* HWY_RESTRICT values, size_t width, uint8_t threshold,
              uint8_t* HWY_RESTRICT target) {
  size_t x = 0;
#if HWY_TARGET != HWY_SCALAR
  const hn::ScalableTag<uint8_t> d;
  const hn::Repartition<uint64_t, decltype(d)> d64;
  const size_t block = hn::Lanes(d);
  if (block % 8 == 0) {
    const auto limit = hn::Set(d, threshold);
    const auto powers = hn::BitCast(d, hn::Set(d64, 0x0102040810204080u));
    HWY_ALIGN uint64_t sums[HWY_MAX_BYTES / 8];
    for (; x + block <= width; x += block) {
      const auto above = hn::Gt(hn::LoadU(d, values + x), limit);
      hn::Store(hn::SumsOf8(hn::IfThenElseZero(above, powers)), d64, sums);
      for (size_t i = 0; i < block / 8; ++i) *target++ = static_cast<uint8_t>(sums[i]);
    }
  }
#endif
  for (; x < width; x += 8) {
    unsigned byte = 0;
    for (size_t i = 0; i < 8; ++i) {
      byte = byte << 1 | (x + i < width && values[x + i] > threshold ? 1u : 0u);
    }
    *target++ = static_cast<uint8_t>(byte);
  }
}

}  // namespace rasterkit::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace rasterkit::kernels {

HWY_EXPORT(ExpandRow);
HWY_EXPORT(ShrinkRow);
HWY_EXPORT(PackBits);

void Row24To32(const uint8_t* pixels, size_t width, uint8_t* target) {
  HWY_DYNAMIC_DISPATCH(ExpandRow)(pixels, width, target);
}

void Row32To24(const uint8_t* pixels, size_t width, uint8_t* target) {
  HWY_DYNAMIC_DISPATCH(ShrinkRow)(pixels, width, target);
}

void BitsAbove(const uint8_t* values, size_t width, uint8_t threshold, uint8_t* target) {
  HWY_DYNAMIC_DISPATCH(PackBits)(values, width, threshold, target);
}

// Looking up a table is a load for each pixel, regardless of the processor: these stay scalar.
void Row8To32(const uint8_t* indexes, size_t width, const uint8_t* table, uint8_t* target) {
  for (size_t x = 0; x < width; ++x) std::memcpy(target + 4 * x, table + 4 * indexes[x], 4);
}

// Writes whole entries of four bytes, the fourth of which the next pixel overwrites.
void Row8To24(const uint8_t* indexes, size_t width, const uint8_t* table, uint8_t* target) {
  if (width == 0) return;
  for (size_t x = 0; x + 1 < width; ++x) std::memcpy(target + 3 * x, table + 4 * indexes[x], 4);
  std::memcpy(target + 3 * (width - 1), table + 4 * indexes[width - 1], 3);
}

}  // namespace rasterkit::kernels

#endif
