#pragma once

#include <cstring>
#include <functional>
#include <memory>
#include <random>

#include <gtest/gtest.h>

#include <rasterkit/graphics/bitmap.h>

#include "tests/support/same_pixels.h"
#include "tests/support/simd_targets.h"
#include "tests/support/test_pictures.h"

/// Common parts of the tests of operations on whole bitmaps.
namespace rasterkit::test {

/// Same pixels, palette and format, and the same bytes to the end of each row.
inline testing::AssertionResult SameRows(const TBitmap& expected, const TBitmap& actual) {
  if (testing::AssertionResult same = SamePixels(expected, actual); !same) return same;
  for (int y = 0; y < expected.Height() && expected.Stride() > 0; ++y) {
    if (std::memcmp(expected.ScanLine(y), actual.ScanLine(y), expected.Stride()) != 0)
      return testing::AssertionFailure() << "row " << y << " differs behind its last pixel";
  }
  return testing::AssertionSuccess();
}

/// Random pixels in any format, pfDevice and pfCustom (32 bits both) included.
inline TBitmap AnyBitmap(TPixelFormat format, int width, int height, std::mt19937& random) {
  const bool isNamed = format != pfDevice && format != pfCustom;
  TBitmap bitmap = RandomBitmap(isNamed ? format : pf32bit, width, height, random);
  bitmap.SetPixelFormat(format);
  bitmap.SetModified(false);
  return bitmap;
}

/// Random pixels and a random palette of any number of entries.
inline TBitmap PaletteBitmap(TPixelFormat format, int width, int height, int entries,
                             std::mt19937& random) {
  TBitmap bitmap = RandomBitmap(format, width, height, random);
  bitmap.SetPalette(RandomPalette(entries, random));
  bitmap.SetModified(false);
  return bitmap;
}

inline constexpr TPixelFormat kEveryNamedFormat[] = {pfDevice, pf1bit,  pf4bit,  pf8bit,  pf15bit,
                                                     pf16bit,  pf24bit, pf32bit, pfCustom};

/// Runs `operation` on copies of `before`, once per SIMD target, and compares each with the result
/// of `rule` on another copy.
inline void ExpectLikeReference(const TBitmap& before, const std::function<void(TBitmap&)>& rule,
                                const std::function<void(TBitmap&)>& operation) {
  const std::unique_ptr<TBitmap> expected = before.Clone();
  rule(*expected);
  ForEachSimdTarget([&](int64_t target) {
    const std::unique_ptr<TBitmap> actual = before.Clone();
    operation(*actual);
    ASSERT_TRUE(SameRows(*expected, *actual)) << hwy::TargetName(target);
  });
}

}  // namespace rasterkit::test
