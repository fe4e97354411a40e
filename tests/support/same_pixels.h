#pragma once

#include <gtest/gtest.h>

#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/raster/raster.h>

/// Comparisons for EXPECT_TRUE; a failure lists the first mismatches with their coordinates.
namespace rasterkit::test {

/// Same format, size, palette and stored bits of every pixel (the padding is not looked at).
testing::AssertionResult SamePixels(const Raster& expected, const Raster& actual);
inline testing::AssertionResult SamePixels(const TBitmap& expected, const TBitmap& actual) {
  return SamePixels(expected.Content(), actual.Content());
}

/// Same size and colors, regardless of the formats; alpha is not looked at.
testing::AssertionResult SameColors(const Raster& expected, const Raster& actual);
inline testing::AssertionResult SameColors(const TBitmap& expected, const TBitmap& actual) {
  return SameColors(expected.Content(), actual.Content());
}

/// Every bit between the last pixel and the end of each row is zero.
testing::AssertionResult PaddingIsZero(const Raster& raster);
inline testing::AssertionResult PaddingIsZero(const TBitmap& bitmap) {
  return PaddingIsZero(bitmap.Content());
}

}  // namespace rasterkit::test
