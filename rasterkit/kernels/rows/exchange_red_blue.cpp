#include <hwy/cache_control.h>

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
size_t Stream24(const uint8_t*, size_t, uint8_t*) {
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

// Sixteen pixels are three blocks of 16 bytes. A block of the result takes its bytes from the same
// block of the source, and those of the pixels that reach over its ends from its neighbors. An
// index of kNone gives zero.
constexpr uint8_t kNone = 0x80;
constexpr size_t kGroupPixels = 16;
alignas(16) constexpr uint8_t kFirstOwn[16] = {2, 1,  0,  5, 4,  3,  8,  7,
                                               6, 11, 10, 9, 14, 13, 12, kNone};
alignas(16) constexpr uint8_t kMiddleOwn[16] = {0,  kNone, 4, 3,  2,  7,  6,     5,
                                                10, 9,     8, 13, 12, 11, kNone, 15};
alignas(16) constexpr uint8_t kLastOwn[16] = {kNone, 3, 2,  1,  6,  5,  4,  9,
                                              8,     7, 12, 11, 10, 15, 14, 13};
alignas(16) constexpr uint8_t kOrder32[16] = {2, 1, 0, 3, 6, 5, 4, 7, 10, 9, 8, 11, 14, 13, 12, 15};

/// Indexes that take one byte to a place and nothing else.
struct OneByte {
  alignas(16) uint8_t indexes[16];
  constexpr OneByte(size_t place, uint8_t from) : indexes() {
    for (uint8_t& index : indexes) index = kNone;
    indexes[place] = from;
  }
};
constexpr OneByte kFirstNext(15, 1), kMiddleBefore(1, 15), kMiddleNext(14, 0), kLastBefore(0, 14);

/// Pixels done: all that lie in whole groups. Blocks are stored where they were loaded, so that no
/// load waits for a store; with `isStreamed` the target must be aligned.
template <bool isStreamed>
size_t ExchangeGroups(const uint8_t* pixels, size_t width, uint8_t* target) {
  const Block d;
  const auto take = [&](auto block, const uint8_t* indexes) {
    return hn::TableLookupBytesOr0(block, hn::Load(d, indexes));
  };
  const auto put = [&](auto block, uint8_t* place) {
    if constexpr (isStreamed) {
      hn::Stream(block, d, place);
    } else {
      hn::StoreU(block, d, place);
    }
  };
  size_t x = 0;
  for (; x + kGroupPixels <= width; x += kGroupPixels) {
    const uint8_t* source = pixels + 3 * x;
    uint8_t* place = target + 3 * x;
    const auto first = hn::LoadU(d, source);
    const auto middle = hn::LoadU(d, source + 16);
    const auto last = hn::LoadU(d, source + 32);
    put(hn::Or(take(first, kFirstOwn), take(middle, kFirstNext.indexes)), place);
    put(hn::Or(hn::Or(take(first, kMiddleBefore.indexes), take(middle, kMiddleOwn)),
               take(last, kMiddleNext.indexes)),
        place + 16);
    put(hn::Or(take(middle, kLastBefore.indexes), take(last, kLastOwn)), place + 32);
  }
  return x;
}

size_t Exchange24(const uint8_t* pixels, size_t width, uint8_t* target) {
  return ExchangeGroups<false>(pixels, width, target);
}

size_t Stream24(const uint8_t* pixels, size_t width, uint8_t* target) {
  const size_t done = ExchangeGroups<true>(pixels, width, target);
  hwy::FlushStream();
  return done;
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

void Streamed24(const uint8_t* pixels, size_t width, uint8_t* target) {
  // The first pixels, up to an aligned place, and the last ones are stored as usual.
  size_t head = 0;
  while (head < width && reinterpret_cast<uintptr_t>(target + 3 * head) % 16 != 0) ++head;
  ExchangeOneByOne<3>(pixels, head, target);
  const size_t done = head + Stream24(pixels + 3 * head, width - head, target + 3 * head);
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
HWY_EXPORT(Streamed24);
HWY_EXPORT(Rows32);
HWY_EXPORT(Planes24);

}  // namespace

void ExchangeRedBlue24(const uint8_t* pixels, size_t width, uint8_t* target) {
  HWY_DYNAMIC_DISPATCH(Rows24)(pixels, width, target);
}

void StreamRedBlue24(const uint8_t* pixels, size_t width, uint8_t* target) {
  HWY_DYNAMIC_DISPATCH(Streamed24)(pixels, width, target);
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
