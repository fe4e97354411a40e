// YCbCr in separate planes, compared with the same samples interleaved, which libtiff converts.

#include <cstring>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/codecs/tiff/tiff_decoder.h>
#include <rasterkit/runtime/errors.h>

#include "tests/support/tiff_file.h"

namespace rasterkit::test {
namespace {

using testing::HasSubstr;
using ByteList = std::vector<uint8_t>;

struct Sampling {
  uint32_t across = 1, down = 1;
};

/// One plane of each component, those of Cb and Cr with fewer samples.
struct Components {
  uint32_t width = 0, height = 0;
  Sampling sampling;
  ByteList samples[3];

  uint32_t Width(size_t plane) const {
    return plane == 0 ? width : (width + sampling.across - 1) / sampling.across;
  }
  uint32_t Height(size_t plane) const {
    return plane == 0 ? height : (height + sampling.down - 1) / sampling.down;
  }
};

Components RandomComponents(uint32_t width, uint32_t height, Sampling sampling) {
  Components components{width, height, sampling, {}};
  std::mt19937 random(71);
  for (size_t plane = 0; plane < 3; plane++) {
    components.samples[plane].resize(components.Width(plane) * components.Height(plane));
    for (uint8_t& sample : components.samples[plane]) sample = static_cast<uint8_t>(random());
  }
  return components;
}

TiffFile YcbcrFile(const Components& components, bool isPlanar) {
  TiffFile file;
  file.width = components.width;
  file.height = components.height;
  file.samples = 3;
  file.photometric = PHOTOMETRIC_YCBCR;
  file.isPlanar = isPlanar;
  file.setTags = [sampling = components.sampling](TIFF* tiff) {
    TIFFSetField(tiff, TIFFTAG_YCBCRSUBSAMPLING, sampling.across, sampling.down);
  };
  return file;
}

/// The file with interleaved samples: all of luma that share a sample of Cb and Cr, then these.
ByteList Interleaved(const Components& components) {
  const auto [across, down] = components.sampling;
  TiffFile file = YcbcrFile(components, false);
  ByteList units;
  for (uint32_t v = 0; v < components.Height(1); v++) {
    for (uint32_t u = 0; u < components.Width(1); u++) {
      for (uint32_t i = 0; i < across * down; i++) {
        const uint32_t x = std::min(u * across + i % across, components.width - 1);
        const uint32_t y = std::min(v * down + i / across, components.height - 1);
        units.push_back(components.samples[0][y * components.width + x]);
      }
      units.push_back(components.samples[1][v * components.Width(1) + u]);
      units.push_back(components.samples[2][v * components.Width(1) + u]);
    }
  }
  file.packedStrips = {units};
  return file.Bytes();
}

/// Packs the strips of one plane by writing it as a gray picture.
std::vector<ByteList> PackedPlane(const ByteList& samples, uint32_t width, uint32_t height,
                                  uint32_t rowsPerStrip, uint16_t compression) {
  TiffFile gray;
  gray.width = width;
  gray.height = height;
  gray.rowsPerStrip = rowsPerStrip;
  gray.compression = compression;
  gray.pixels = samples;
  return PackedStrips(gray.Bytes());
}

ByteList InPlanes(const Components& components, uint32_t rowsPerStrip, uint16_t compression) {
  TiffFile file = YcbcrFile(components, true);
  file.rowsPerStrip = rowsPerStrip;
  file.compression = compression;
  for (size_t plane = 0; plane < 3; plane++) {
    const uint32_t rows = plane == 0 ? rowsPerStrip : rowsPerStrip / components.sampling.down;
    for (ByteList& strip : PackedPlane(components.samples[plane], components.Width(plane),
                                       components.Height(plane), rows, compression))
      file.packedStrips.push_back(std::move(strip));
  }
  return file.Bytes();
}

ImagingFrame Decode(const ByteList& bytes, CodecReport* report = nullptr, int threads = 1) {
  TSpanStream stream(bytes);
  return DecodeTiff(stream, {.threads = threads}, report);
}

void ExpectSameRows(const Raster& actual, const Raster& expected, int rows) {
  ASSERT_EQ(actual.Width(), expected.Width());
  for (int y = 0; y < rows; y++)
    ASSERT_EQ(std::memcmp(actual.Row(y), expected.Row(y), expected.RowBytes()), 0) << "row " << y;
}

constexpr Sampling kSamplings[] = {{1, 1}, {2, 1}, {2, 2}, {4, 1}, {4, 2}, {4, 4}, {1, 2}};
constexpr uint16_t kCompressions[] = {COMPRESSION_NONE, COMPRESSION_LZW, COMPRESSION_ADOBE_DEFLATE,
                                      COMPRESSION_PACKBITS};

TEST(TiffYcbcrPlanes, Strips_Should_EqualInterleavedSamples_When_Subsampled) {
  for (const Sampling& sampling : kSamplings) {
    for (const auto& [width, height] : {std::pair{48u, 32u}, std::pair{45u, 31u}}) {
      const Components components = RandomComponents(width, height, sampling);
      const ImagingFrame expected = Decode(Interleaved(components));
      for (const uint16_t compression : kCompressions) {
        for (const uint32_t rows : {height, 8u}) {
          SCOPED_TRACE(testing::Message()
                       << sampling.across << " x " << sampling.down << ", " << width << " wide, "
                       << compression << ", strips of " << rows);
          if (rows % sampling.down != 0 && rows < height) continue;
          const uint32_t rounded = (rows + sampling.down - 1) / sampling.down * sampling.down;
          CodecReport report;
          const ImagingFrame frame =
              Decode(InPlanes(components, rows == height ? rounded : rows, compression), &report);
          ASSERT_EQ(frame.format, GUID_WICPixelFormat24bppBGR);
          EXPECT_FALSE(frame.isConverted);
          EXPECT_THAT(report.warnings, testing::IsEmpty());
          ExpectSameRows(frame.rows, expected.rows, static_cast<int>(height));
        }
      }
    }
  }
}

TEST(TiffYcbcrPlanes, Colors_Should_FollowTheFormula) {
  Components components = RandomComponents(40, 20, {});
  const ImagingFrame frame = Decode(InPlanes(components, 20, COMPRESSION_NONE));
  for (int y = 0; y < 20; y++) {
    for (int x = 0; x < 40; x++) {
      const auto at = static_cast<size_t>(y * 40 + x);
      const double luma = components.samples[0][at], cb = components.samples[1][at] - 128.0,
                   cr = components.samples[2][at] - 128.0;
      const double rgb[3] = {luma + 1.402 * cr, luma - 0.344136 * cb - 0.714136 * cr,
                             luma + 1.772 * cb};
      for (int i = 0; i < 3; i++)
        ASSERT_NEAR(frame.rows.Row(y)[3 * x + 2 - i], std::clamp(rgb[i], 0.0, 255.0), 1.5);
    }
  }
}

TEST(TiffYcbcrPlanes, PlanesOfFullSize_Should_BeRead_When_TheTagSaysSubsampled) {
  const Components full = RandomComponents(48, 32, {});
  const ImagingFrame expected = Decode(Interleaved(full));
  for (const uint16_t compression : kCompressions) {
    SCOPED_TRACE(compression);
    TiffFile file = YcbcrFile(full, true);
    file.compression = compression;
    file.rowsPerStrip = 8;
    file.setTags = [](TIFF* tiff) { TIFFSetField(tiff, TIFFTAG_YCBCRSUBSAMPLING, 2, 2); };
    for (const ByteList& plane : full.samples)
      file.pixels.insert(file.pixels.end(), plane.begin(), plane.end());
    ExpectSameRows(Decode(file.Bytes()).rows, expected.rows, 32);
  }
}

TEST(TiffYcbcrPlanes, Tiles_Should_EqualInterleavedSamples) {
  const Components full = RandomComponents(45, 37, {});
  const ImagingFrame expected = Decode(Interleaved(full));
  for (const uint16_t compression : kCompressions) {
    SCOPED_TRACE(compression);
    TiffFile file = YcbcrFile(full, true);
    file.compression = compression;
    file.tileWidth = file.tileHeight = 16;
    for (const ByteList& plane : full.samples)
      file.pixels.insert(file.pixels.end(), plane.begin(), plane.end());
    ExpectSameRows(Decode(file.Bytes()).rows, expected.rows, 37);
  }
}

TEST(TiffYcbcrPlanes, JpegPlanes_Should_BeRead_When_OfFullSize) {
  Components flat = RandomComponents(32, 32, {});
  const uint8_t colors[3] = {120, 90, 200};
  for (size_t plane = 0; plane < 3; plane++)
    std::fill(flat.samples[plane].begin(), flat.samples[plane].end(), colors[plane]);
  const ImagingFrame expected = Decode(Interleaved(flat));
  TiffFile file = YcbcrFile(flat, true);
  file.compression = COMPRESSION_JPEG;
  file.rowsPerStrip = 16;
  for (const ByteList& plane : flat.samples)
    file.pixels.insert(file.pixels.end(), plane.begin(), plane.end());
  const ByteList bytes = file.Bytes();
  ASSERT_FALSE(bytes.empty());
  ExpectSameRows(Decode(bytes).rows, expected.rows, 32);
}

TEST(TiffYcbcrPlanes, LostRowsOfAnyPlane_Should_BeWhite) {
  const Components components = RandomComponents(48, 32, {2, 2});
  const ImagingFrame expected = Decode(Interleaved(components));
  for (size_t lost = 0; lost < 3; lost++) {
    TiffFile file = YcbcrFile(components, true);
    file.compression = COMPRESSION_PACKBITS;
    file.rowsPerStrip = 16;
    for (size_t plane = 0; plane < 3; plane++) {
      auto strips = PackedPlane(components.samples[plane], components.Width(plane),
                                components.Height(plane), plane == 0 ? 16 : 8, file.compression);
      if (plane == lost) strips[1].resize(1);
      for (ByteList& strip : strips) file.packedStrips.push_back(std::move(strip));
    }
    const ByteList bytes = file.Bytes();
    CodecReport report;
    const ImagingFrame frame = Decode(bytes, &report);
    ExpectSameRows(frame.rows, expected.rows, 16);
    for (int y = 16; y < 32; y++)
      for (size_t i = 0; i < frame.rows.RowBytes(); i++) ASSERT_EQ(frame.rows.Row(y)[i], 255);
    EXPECT_THAT(report.warnings, testing::Contains(HasSubstr("16 of 32 rows")));
    for (const int threads : {2, 5})
      ExpectSameRows(Decode(bytes, nullptr, threads).rows, frame.rows, 32);
  }
}

TEST(TiffYcbcrPlanes, Should_Refuse_When_SubsampledPlanesHaveAPredictor) {
  const Components components = RandomComponents(48, 32, {2, 2});
  TiffFile file = YcbcrFile(components, true);
  file.compression = COMPRESSION_LZW;
  file.predictor = 2;
  for (size_t plane = 0; plane < 3; plane++)
    file.packedStrips.push_back(PackedPlane(components.samples[plane], components.Width(plane),
                                            components.Height(plane), 32, COMPRESSION_LZW)[0]);
  EXPECT_THROW(Decode(file.Bytes()), UnsupportedError);
}

}  // namespace
}  // namespace rasterkit::test
