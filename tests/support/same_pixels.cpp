#include "tests/support/same_pixels.h"

#include <algorithm>
#include <ios>
#include <sstream>

namespace rasterkit::test {
namespace {

constexpr int kMismatchesShown = 5;

uint32_t StoredPixel(const Raster& raster, int x, int y) {
  const uint8_t* row = raster.Row(y);
  const auto column = static_cast<size_t>(x);
  const int bits = StoredBitsPerPixel(raster.Format());
  if (bits == 1) return row[column / 8] >> (7 - column % 8) & 1u;
  if (bits == 4) return row[column / 2] >> (column % 2 == 0 ? 4 : 0) & 15u;
  const auto bytes = static_cast<size_t>(bits / 8);
  uint32_t value = 0;
  for (size_t i = 0; i < bytes; ++i)
    value |= static_cast<uint32_t>(row[column * bytes + i]) << (8 * i);
  return value;
}

template <class Read>
testing::AssertionResult ComparePixels(const Raster& expected, const Raster& actual, Read read) {
  std::ostringstream list;
  int64_t mismatches = 0;
  for (int y = 0; y < expected.Height(); ++y) {
    for (int x = 0; x < expected.Width(); ++x) {
      const uint32_t want = read(expected, x, y), have = read(actual, x, y);
      if (want == have) continue;
      if (mismatches++ < kMismatchesShown)
        list << "\n  (" << x << ", " << y << "): expected 0x" << std::hex << want << ", is 0x"
             << have << std::dec;
    }
  }
  if (mismatches == 0) return testing::AssertionSuccess();
  return testing::AssertionFailure()
         << mismatches << " of " << int64_t{expected.Width()} * expected.Height()
         << " pixels differ in " << expected.Width() << " x " << expected.Height() << list.str();
}

testing::AssertionResult SameSize(const Raster& expected, const Raster& actual) {
  if (expected.Width() == actual.Width() && expected.Height() == actual.Height())
    return testing::AssertionSuccess();
  return testing::AssertionFailure()
         << "expected " << expected.Width() << " x " << expected.Height() << " pixels, is "
         << actual.Width() << " x " << actual.Height();
}

testing::AssertionResult SamePalette(const HPALETTE& expected, const HPALETTE& actual) {
  if (expected == actual) return testing::AssertionSuccess();
  if (expected.Count() != actual.Count())
    return testing::AssertionFailure()
           << "expected " << expected.Count() << " palette entries, is " << actual.Count();
  int i = 0;
  while (expected.Entry(i) == actual.Entry(i)) ++i;
  return testing::AssertionFailure()
         << "palette entry " << i << ": expected 0x" << std::hex << EntryColor(expected.Entry(i))
         << ", is 0x" << EntryColor(actual.Entry(i)) << " (or other flags)";
}

}  // namespace

testing::AssertionResult SamePixels(const Raster& expected, const Raster& actual) {
  if (expected.Format() != actual.Format())
    return testing::AssertionFailure()
           << "expected pixel format " << expected.Format() << ", is " << actual.Format();
  if (testing::AssertionResult same = SameSize(expected, actual); !same) return same;
  if (testing::AssertionResult same = SamePalette(expected.palette, actual.palette); !same)
    return same;
  return ComparePixels(expected, actual, StoredPixel);
}

testing::AssertionResult SameColors(const Raster& expected, const Raster& actual) {
  if (testing::AssertionResult same = SameSize(expected, actual); !same) return same;
  return ComparePixels(expected, actual, [](const Raster& raster, int x, int y) {
    return static_cast<uint32_t>(raster.PixelColor(x, y));
  });
}

testing::AssertionResult PaddingIsZero(const Raster& raster) {
  const size_t pixelBits = static_cast<size_t>(raster.Width()) *
                           static_cast<size_t>(StoredBitsPerPixel(raster.Format()));
  for (int y = 0; y < raster.Height(); ++y) {
    for (size_t bit = pixelBits; bit < raster.Stride() * 8; ++bit) {
      if ((raster.Row(y)[bit / 8] >> (7 - bit % 8) & 1) != 0)
        return testing::AssertionFailure() << "row " << y << " has a padding bit set, bit " << bit
                                           << " of " << raster.Stride() * 8;
    }
  }
  return testing::AssertionSuccess();
}

}  // namespace rasterkit::test
