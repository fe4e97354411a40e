#include <cstring>

#include <rasterkit/kernels/rows/color_rows32.h>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE <rasterkit/kernels/rows/color_rows32.cpp>
// clang-format off: this file is compiled once for each target by the next line.
#include <hwy/foreach_target.h>
#include <hwy/highway.h>
// clang-format on

HWY_BEFORE_NAMESPACE();
namespace rasterkit::kernels::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

void ReplaceOneByOne(uint8_t* bgra, const uint8_t* bgr, size_t width) {
  for (size_t x = 0; x < width; ++x) std::memcpy(bgra + 4 * x, bgr + 3 * x, 3);
}

void TakeOneByOne(uint8_t* bgra, const uint8_t* source, const uint8_t* keep, size_t width) {
  for (size_t x = 0; x < width; ++x) {
    if (keep[3 * x] == 0) std::memcpy(bgra + 4 * x, source + 4 * x, 4);
  }
}

#if HWY_TARGET == HWY_SCALAR

size_t ReplaceBlocks(uint8_t*, const uint8_t*, size_t) {
  return 0;
}
size_t TakeBlocks(uint8_t*, const uint8_t*, const uint8_t*, size_t) {
  return 0;
}

#else

// Blocks of four pixels; three-byte ones are loaded with four bytes of the next.
using Block = hn::Full128<uint8_t>;
constexpr size_t kBlockPixels = 4;
constexpr size_t kLoadedPixels = 6;
alignas(16) constexpr uint8_t kColors[16] = {0, 1, 2, 0x80, 3, 4,  5,  0x80,
                                             6, 7, 8, 0x80, 9, 10, 11, 0x80};
alignas(16) constexpr uint8_t kFirsts[16] = {0, 0, 0, 0, 3, 3, 3, 3, 6, 6, 6, 6, 9, 9, 9, 9};
alignas(16) constexpr uint8_t kAlpha[16] = {0, 0, 0, 255, 0, 0, 0, 255, 0, 0, 0, 255, 0, 0, 0, 255};

size_t ReplaceBlocks(uint8_t* bgra, const uint8_t* bgr, size_t width) {
  const Block d;
  const auto places = hn::Load(d, kColors), alpha = hn::Load(d, kAlpha);
  size_t x = 0;
  for (; x + kLoadedPixels <= width; x += kBlockPixels) {
    const auto colors = hn::TableLookupBytesOr0(hn::LoadU(d, bgr + 3 * x), places);
    const auto old = hn::And(hn::LoadU(d, bgra + 4 * x), alpha);
    hn::StoreU(hn::Or(colors, old), d, bgra + 4 * x);
  }
  return x;
}

size_t TakeBlocks(uint8_t* bgra, const uint8_t* source, const uint8_t* keep, size_t width) {
  const Block d;
  const auto places = hn::Load(d, kFirsts);
  size_t x = 0;
  for (; x + kLoadedPixels <= width; x += kBlockPixels) {
    const auto kept = hn::TableLookupBytes(hn::LoadU(d, keep + 3 * x), places);
    const auto old = hn::And(hn::LoadU(d, bgra + 4 * x), kept);
    hn::StoreU(hn::Or(old, hn::AndNot(kept, hn::LoadU(d, source + 4 * x))), d, bgra + 4 * x);
  }
  return x;
}

#endif

void Replace(uint8_t* bgra, const uint8_t* bgr, size_t width) {
  const size_t done = ReplaceBlocks(bgra, bgr, width);
  ReplaceOneByOne(bgra + 4 * done, bgr + 3 * done, width - done);
}

void Take(uint8_t* bgra, const uint8_t* source, const uint8_t* keep, size_t width) {
  const size_t done = TakeBlocks(bgra, source, keep, width);
  TakeOneByOne(bgra + 4 * done, source + 4 * done, keep + 3 * done, width - done);
}

}  // namespace
}  // namespace rasterkit::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace rasterkit::kernels {
namespace {

HWY_EXPORT(Replace);
HWY_EXPORT(Take);

}  // namespace

void ReplaceColors32(uint8_t* bgra, const uint8_t* bgr, size_t width) {
  HWY_DYNAMIC_DISPATCH(Replace)(bgra, bgr, width);
}

void TakePixels32(uint8_t* bgra, const uint8_t* source, const uint8_t* keep, size_t width) {
  HWY_DYNAMIC_DISPATCH(Take)(bgra, source, keep, width);
}

}  // namespace rasterkit::kernels
#endif
