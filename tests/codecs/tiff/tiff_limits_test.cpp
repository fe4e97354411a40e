// What a file may claim, judged before any memory is taken: nothing here is large.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/codecs/tiff/tiff_layout.h>
#include <rasterkit/runtime/errors.h>

#include "tests/support/memory_limit.h"
#include "tests/support/raw_tiff.h"

namespace rasterkit::test {
namespace {

/// Judges a file whose only strip has 8000 bytes.
void Judge(RawTiff file) {
  file.Long(TIFFTAG_STRIPBYTECOUNTS, 8000).Long(TIFFTAG_STRIPOFFSETS, 0);
  file.Long(TIFFTAG_STRIPOFFSETS, static_cast<uint32_t>(file.Bytes().size()));
  const std::vector<uint8_t> bytes = file.Bytes(8000);
  TSpanStream stream(bytes);
  detail::TiffSource source(stream);
  detail::TiffHandle handle(source);
  detail::PrepareTiff(handle);
  detail::RequirePlausibleSize(handle, detail::ReadTiffLayout(handle));
}

void ExpectNeed(const RawTiff& file, uint64_t bytes) {
  {
    const MemoryLimit limit(bytes);
    EXPECT_NO_THROW(Judge(file));
  }
  const MemoryLimit limit(bytes - 1);
  EXPECT_THROW(Judge(file), LimitError);
}

TEST(TiffLimits, Need_Should_CountTheNumbers_When_TheyAreStretched) {
  RawTiff file = RawTiff::Of(100, 100, 64, COMPRESSION_NONE);
  file.Entry(TIFFTAG_SAMPLEFORMAT, 3, 1, SAMPLEFORMAT_IEEEFP);
  ExpectNeed(file, 100 * 100 * (4 + 8));
}

TEST(TiffLimits, Need_Should_CountTheBand_When_TheLibraryConverts) {
  RawTiff file = RawTiff::Of(100, 100, 8, COMPRESSION_NONE).Long(TIFFTAG_ROWSPERSTRIP, 100);
  file.Entry(TIFFTAG_PHOTOMETRIC, 3, 1, PHOTOMETRIC_YCBCR).Entry(TIFFTAG_SAMPLESPERPIXEL, 3, 1, 3);
  ExpectNeed(file, 100 * 100 * (3 + 4));
}

TEST(TiffLimits, Need_Should_CountABlock_When_ItIsPacked) {
  ExpectNeed(RawTiff::Of(100, 100, 8, COMPRESSION_LZW), 100 * 100 * (1 + 1));
  ExpectNeed(RawTiff::Of(100, 100, 8, COMPRESSION_NONE), 100 * 100);
}

TEST(TiffLimits, BlankPlan_Should_BeAllowed_When_EachRowTakesABit) {
  EXPECT_NO_THROW(Judge(RawTiff::Of(60000, 60000, 1, COMPRESSION_CCITTFAX4)));
  EXPECT_THROW(Judge(RawTiff::Of(60000, 60000, 1, COMPRESSION_LZW)), FormatError);
  EXPECT_THROW(Judge(RawTiff::Of(60000, 60000, 1, COMPRESSION_NONE)), FormatError);
}

TEST(TiffLimits, SamplesThatDoNotCount_Should_HaveToBeThere) {
  RawTiff file = RawTiff::Of(10000, 10000, 8, COMPRESSION_NONE);
  EXPECT_NO_THROW(Judge(file));
  EXPECT_THROW(Judge(file.Entry(TIFFTAG_SAMPLESPERPIXEL, 3, 1, 65)), FormatError);
}

}  // namespace
}  // namespace rasterkit::test
