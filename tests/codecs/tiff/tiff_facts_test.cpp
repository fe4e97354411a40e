#include <gtest/gtest.h>

#include <rasterkit/codecs/tiff/tiff_facts.h>
#include <rasterkit/runtime/errors.h>

#include "tests/support/tiff_file.h"

namespace rasterkit::test {
namespace {

TiffFacts FactsOf(const TiffFile& file) {
  const std::vector<uint8_t> bytes = file.Bytes();
  TSpanStream stream(bytes);
  return ReadTiffFacts(stream);
}

TiffFile Picture() {
  TiffFile file;
  file.width = 37;
  file.height = 21;
  file.pixels.resize(file.PixelBytes());
  return file;
}

void DefineGeoTags(TIFF* tiff) {
  static char names[5][24] = {"PixelScale", "TiePoints", "Transformation", "GeoKeys", "NoData"};
  static const TIFFFieldInfo fields[] = {
      {33550, -1, -1, TIFF_DOUBLE, FIELD_CUSTOM, 1, 1, names[0]},
      {33922, -1, -1, TIFF_DOUBLE, FIELD_CUSTOM, 1, 1, names[1]},
      {34264, -1, -1, TIFF_DOUBLE, FIELD_CUSTOM, 1, 1, names[2]},
      {34735, -1, -1, TIFF_SHORT, FIELD_CUSTOM, 1, 1, names[3]},
      {42113, -1, -1, TIFF_ASCII, FIELD_CUSTOM, 1, 0, names[4]},
  };
  TIFFMergeFieldInfo(tiff, fields, 5);
}

TEST(TiffFacts, Layout_Should_BeTold) {
  for (const char* mode : {"wl", "wb", "wl8", "wb8"}) {
    SCOPED_TRACE(mode);
    TiffFile file = Picture();
    file.mode = mode;
    file.samples = 3;
    file.bits = 16;
    file.photometric = PHOTOMETRIC_RGB;
    file.isPlanar = true;
    file.tileWidth = file.tileHeight = 16;
    file.compression = COMPRESSION_LZW;
    file.sampleFormat = SAMPLEFORMAT_INT;
    file.setTags = [](TIFF* tiff) { TIFFSetField(tiff, TIFFTAG_ORIENTATION, 6); };
    file.pixels.resize(file.PixelBytes());
    const TiffFacts facts = FactsOf(file);
    EXPECT_EQ(facts.width, 37u);
    EXPECT_EQ(facts.height, 21u);
    EXPECT_EQ(facts.samples, 3);
    EXPECT_EQ(facts.bitsPerSample, 16);
    EXPECT_EQ(facts.sampleFormat, 2);
    EXPECT_EQ(facts.compression, COMPRESSION_LZW);
    EXPECT_EQ(facts.photometric, PHOTOMETRIC_RGB);
    EXPECT_TRUE(facts.isTiled && facts.isPlanar);
    EXPECT_EQ(facts.isBigTiff, std::string(mode).ends_with('8'));
    EXPECT_EQ(facts.isBigEndian, mode[1] == 'b');
    EXPECT_EQ(facts.orientation, 6);
    EXPECT_EQ(facts.pages, 1);
  }
  EXPECT_FALSE(FactsOf(Picture()).orientation);
}

TEST(TiffFacts, Positions_Should_BeToldToTheLastBit) {
  for (const char* mode : {"wl", "wb8"}) {
    TiffFile file = Picture();
    file.mode = mode;
    file.setTags = [](TIFF* tiff) {
      DefineGeoTags(tiff);
      const double scale[3] = {0.1, 1.0 / 3, 0};
      const double ties[12] = {0, 0, 0, 3363657.1889028, -5.5, 0, 1, 2, 3, 4, 5, 1e300};
      double matrix[16];
      for (int i = 0; i < 16; i++) matrix[i] = i / 7.0;
      const uint16_t keys[12] = {1, 1, 0, 2, 1024, 0, 1, 1, 1025, 0, 1, 2};
      TIFFSetField(tiff, 33550, 3, scale);
      TIFFSetField(tiff, 33922, 12, ties);
      TIFFSetField(tiff, 34264, 16, matrix);
      TIFFSetField(tiff, 34735, 12, keys);
      TIFFSetField(tiff, 42113, " -9999.5 ");
    };
    const TiffFacts facts = FactsOf(file);
    EXPECT_EQ(facts.pixelScale, (std::vector<double>{0.1, 1.0 / 3, 0}));
    EXPECT_EQ(facts.tiePoints,
              (std::vector<double>{0, 0, 0, 3363657.1889028, -5.5, 0, 1, 2, 3, 4, 5, 1e300}));
    ASSERT_EQ(facts.transformation.size(), 16u);
    EXPECT_EQ(facts.transformation[5], 5 / 7.0);
    EXPECT_EQ(facts.rasterType, 2);
    EXPECT_EQ(facts.noData, "-9999.5");
  }
}

TEST(TiffFacts, DamagedTags_Should_BeAbsent) {
  TiffFile file = Picture();
  file.setTags = [](TIFF* tiff) {
    DefineGeoTags(tiff);
    const double values[5] = {1, 2, 3, 4, 5};
    const uint16_t keys[5] = {1, 1, 0, 1, 1025};
    TIFFSetField(tiff, 33550, 2, values);
    TIFFSetField(tiff, 33922, 5, values);
    TIFFSetField(tiff, 34264, 5, values);
    TIFFSetField(tiff, 34735, 5, keys);
  };
  const TiffFacts facts = FactsOf(file);
  EXPECT_TRUE(facts.pixelScale.empty());
  EXPECT_TRUE(facts.tiePoints.empty());
  EXPECT_TRUE(facts.transformation.empty());
  EXPECT_EQ(facts.rasterType, 0);
  EXPECT_EQ(facts.noData, "");
}

TEST(TiffFacts, CoordinateSystem_Should_BeTold_When_AKeyNamesIt) {
  TiffFile file = Picture();
  file.setTags = [](TIFF* tiff) {
    DefineGeoTags(tiff);
    const uint16_t keys[12] = {1, 1, 0, 2, 1025, 0, 1, 1, 3072, 0, 1, 25832};
    TIFFSetField(tiff, 34735, 12, keys);
  };
  const TiffFacts facts = FactsOf(file);
  EXPECT_TRUE(facts.hasCoordinateSystem);
  EXPECT_EQ(facts.rasterType, 1);
  file.setTags = [](TIFF* tiff) {
    DefineGeoTags(tiff);
    const uint16_t keys[12] = {1, 1, 0, 2, 1024, 0, 1, 1, 1025, 0, 1, 1};
    TIFFSetField(tiff, 34735, 12, keys);
  };
  EXPECT_FALSE(FactsOf(file).hasCoordinateSystem);
}

TEST(TiffFacts, Metadata_Should_BeNamedByKind) {
  TiffFile file = Picture();
  EXPECT_TRUE(FactsOf(file).metadata.empty());
  file.setTags = [](TIFF* tiff) {
    const uint8_t bytes[8] = {};
    TIFFSetField(tiff, TIFFTAG_SOFTWARE, "plotter");
    TIFFSetField(tiff, TIFFTAG_XMLPACKET, 8, bytes);
    TIFFSetField(tiff, TIFFTAG_PHOTOSHOP, 8, bytes);
    TIFFSetField(tiff, TIFFTAG_ICCPROFILE, 8, bytes);
    TIFFSetField(tiff, TIFFTAG_GPSIFD, uint64_t{8});
  };
  EXPECT_EQ(FactsOf(file).metadata,
            (std::vector<MetadataKind>{MetadataKind::text, MetadataKind::xmp, MetadataKind::iptc,
                                       MetadataKind::profile, MetadataKind::exif}));
}

/// The directories of several files in one chain; the pixels do not matter.
std::vector<uint8_t> Chain(const std::vector<std::pair<uint16_t, uint32_t>>& kinds, bool isBig) {
  const auto put = [&](std::vector<uint8_t>& bytes, uint64_t number, int count) {
    for (int i = 0; i < count; i++) bytes.push_back(static_cast<uint8_t>(number >> (8 * i)));
  };
  const int wide = isBig ? 8 : 4;
  std::vector<uint8_t> bytes = {'I', 'I', static_cast<uint8_t>(isBig ? 43 : 42), 0};
  if (isBig) put(bytes, 8, 4);
  put(bytes, isBig ? 16 : 8, wide);
  for (size_t i = 0; i < kinds.size(); i++) {
    const auto entry = [&](uint16_t tag, uint16_t type, uint32_t value) {
      put(bytes, tag, 2);
      put(bytes, type, 2);
      put(bytes, 1, wide);
      put(bytes, value, wide);
    };
    put(bytes, 3, isBig ? 8 : 2);
    entry(254, kinds[i].first, kinds[i].second);
    entry(256, 3, 5);
    entry(257, 3, 4);
    put(bytes, i + 1 < kinds.size() ? bytes.size() + static_cast<size_t>(wide) : 0, wide);
  }
  return bytes;
}

TEST(TiffFacts, Pages_Should_BeToldApart_When_SomeAreCopiesOrMasks) {
  for (const bool isBig : {false, true}) {
    // A page, a smaller copy, one of several pages, the mask of one, a smaller copy of a mask.
    const auto bytes = Chain({{4, 0}, {4, 1}, {3, 2}, {3, 4}, {4, 5}}, isBig);
    TSpanStream stream(bytes);
    const TiffFacts facts = ReadTiffFacts(stream);
    EXPECT_EQ(facts.pages, 5);
    EXPECT_EQ(facts.secondaryPages, 3);
  }
}

TEST(TiffFacts, CompressionName_Should_BeTheUsualOne) {
  EXPECT_EQ(TiffCompressionName(1), "none");
  EXPECT_EQ(TiffCompressionName(2), "CCITT RLE");
  EXPECT_EQ(TiffCompressionName(3), "CCITT G3");
  EXPECT_EQ(TiffCompressionName(4), "CCITT G4");
  EXPECT_EQ(TiffCompressionName(5), "LZW");
  EXPECT_EQ(TiffCompressionName(6), "old JPEG");
  EXPECT_EQ(TiffCompressionName(7), "JPEG");
  EXPECT_EQ(TiffCompressionName(8), "Deflate");
  EXPECT_EQ(TiffCompressionName(32773), "PackBits");
  EXPECT_EQ(TiffCompressionName(32946), "Deflate");
  EXPECT_EQ(TiffCompressionName(34887), "LERC");
  EXPECT_EQ(TiffCompressionName(34925), "LZMA");
  EXPECT_EQ(TiffCompressionName(50000), "ZSTD");
  EXPECT_EQ(TiffCompressionName(50001), "WebP");
  EXPECT_EQ(TiffCompressionName(65000), "compression 65000");
}

}  // namespace
}  // namespace rasterkit::test
