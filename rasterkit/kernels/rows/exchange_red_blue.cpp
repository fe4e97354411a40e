#include <rasterkit/kernels/rows/exchange_red_blue.h>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE <rasterkit/kernels/rows/exchange_red_blue.cpp>
// clang-format off: this file is compiled once for each target by the next line.
#include <hwy/foreach_target.h>
#include <hwy/highway.h>
// clang-format on

HWY_BEFORE_NAMESPACE();
namespace rasterkit::kernels::HWY_NAMESPACE {
namespace {

template <size_t kPixelBytes>
void ExchangeOneByOne(const uint8_t* pixels, size_t width, uint8_t* target) {
  for (size_t x = 0; x < width; ++x, pixels += kPixelBytes, target += kPixelBytes) {
    const uint8_t first = pixels[0];
    target[0] = pixels[2];
    target[1] = pixels[1];
    target[2] = first;
    if constexpr (kPixelBytes == 4) target[3] = pixels[3];
  }
}

// The emulated target has no interleaved loads worth their price.
#if HWY_TARGET == HWY_SCALAR || HWY_TARGET == HWY_EMU128

size_t Exchange24(const uint8_t*, size_t, uint8_t*) {
  return 0;
}
size_t Exchange32(const uint8_t*, size_t, uint8_t*) {
  return 0;
}
size_t Join24(const uint8_t*, const uint8_t*, const uint8_t*, size_t, uint8_t*) {
  return 0;
}

#else

namespace hn = hwy::HWY_NAMESPACE;

using Bytes = hn::ScalableTag<uint8_t>;
using Block = hn::Full128<uint8_t>;

// A 16-byte block holds five whole pixels of three bytes; its last byte stays and is done again as
// the first one of the next block.
alignas(16) constexpr uint8_t kOrder24[16] = {2, 1, 0, 5, 4, 3, 8, 7, 6, 11, 10, 9, 14, 13, 12, 15};
alignas(16) constexpr uint8_t kOrder32[16] = {2, 1, 0, 3, 6, 5, 4, 7, 10, 9, 8, 11, 14, 13, 12, 15};
constexpr size_t kBlockPixels = 5;

/// Pixels done: all that lie in whole blocks.
size_t Exchange24(const uint8_t* pixels, size_t width, uint8_t* target) {
  const Block d;
  const auto order = hn::Load(d, kOrder24);
  size_t x = 0;
  // One pixel more than a block's must be there, for its last byte. Four loads come before their
  // stores, which overlap the next block's first byte with what was loaded from there.
  for (; x + 4 * kBlockPixels + 1 <= width; x += 4 * kBlockPixels) {
    const uint8_t* source = pixels + 3 * x;
    uint8_t* place = target + 3 * x;
    const auto a = hn::LoadU(d, source);
    const auto b = hn::LoadU(d, source + 15);
    const auto c = hn::LoadU(d, source + 30);
    const auto e = hn::LoadU(d, source + 45);
    hn::StoreU(hn::TableLookupBytes(a, order), d, place);
    hn::StoreU(hn::TableLookupBytes(b, order), d, place + 15);
    hn::StoreU(hn::TableLookupBytes(c, order), d, place + 30);
    hn::StoreU(hn::TableLookupBytes(e, order), d, place + 45);
  }
  return x;
}

size_t Exchange32(const uint8_t* pixels, size_t width, uint8_t* target) {
  const Bytes d;
  const size_t step = hn::Lanes(d) / 4;
  const auto order = hn::LoadDup128(d, kOrder32);
  size_t x = 0;
  for (; x + step <= width; x += step) {
    hn::StoreU(hn::TableLookupBytes(hn::LoadU(d, pixels + 4 * x), order), d, target + 4 * x);
  }
  return x;
}

size_t Join24(const uint8_t* red, const uint8_t* green, const uint8_t* blue, size_t width,
              uint8_t* target) {
  const Bytes d;
  const size_t step = hn::Lanes(d);
  size_t x = 0;
  for (; x + step <= width; x += step) {
    hn::StoreInterleaved3(hn::LoadU(d, blue + x), hn::LoadU(d, green + x), hn::LoadU(d, red + x), d,
                          target + 3 * x);
  }
  return x;
}

#endif

void Rows24(const uint8_t* pixels, size_t width, uint8_t* target) {
  const size_t done = Exchange24(pixels, width, target);
  ExchangeOneByOne<3>(pixels + 3 * done, width - done, target + 3 * done);
}

void Rows32(const uint8_t* pixels, size_t width, uint8_t* target) {
  const size_t done = Exchange32(pixels, width, target);
  ExchangeOneByOne<4>(pixels + 4 * done, width - done, target + 4 * done);
}

void Planes24(const uint8_t* red, const uint8_t* green, const uint8_t* blue, size_t width,
              uint8_t* target) {
  for (size_t x = Join24(red, green, blue, width, target); x < width; ++x) {
    target[3 * x] = blue[x];
    target[3 * x + 1] = green[x];
    target[3 * x + 2] = red[x];
  }
}

}  // namespace
}  // namespace rasterkit::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace rasterkit::kernels {
namespace {

HWY_EXPORT(Rows24);
HWY_EXPORT(Rows32);
HWY_EXPORT(Planes24);

}  // namespace

void ExchangeRedBlue24(const uint8_t* pixels, size_t width, uint8_t* target) {
  HWY_DYNAMIC_DISPATCH(Rows24)(pixels, width, target);
}

void ExchangeRedBlue32(const uint8_t* pixels, size_t width, uint8_t* target) {
  HWY_DYNAMIC_DISPATCH(Rows32)(pixels, width, target);
}

void JoinPlanes24(const uint8_t* red, const uint8_t* green, const uint8_t* blue, size_t width,
                  uint8_t* target) {
  HWY_DYNAMIC_DISPATCH(Planes24)(red, green, blue, width, target);
}

}  // namespace rasterkit::kernels
#endif
