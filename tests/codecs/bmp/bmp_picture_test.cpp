#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/codecs/bmp/bmp_decoder.h>
#include <rasterkit/codecs/bmp/bmp_encoder.h>
#include <rasterkit/codecs/bmp/bmp_picture.h>
#include <rasterkit/metadata/png/png_chunks.h>
#include <rasterkit/runtime/errors.h>

#include "tests/support/corpus.h"
#include "tests/support/profiles.h"
#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"

namespace rasterkit::test {
namespace {

using testing::IsEmpty;
using testing::UnorderedElementsAre;

TEST(BmpPicture, Written_Should_KeepPixelsResolutionAndProfile) {
  std::mt19937 random(7);
  for (const TPixelFormat format : kEveryFormat) {
    for (const TAlphaFormat alpha : {afIgnored, afDefined}) {
      SCOPED_TRACE(format);
      Raster source = RandomRaster(format, 13, 7, random);
      source.alphaFormat = alpha;
      PictureWriting writing;
      writing.metadata.resolution = {300, 150};
      writing.metadata.profile = RgbProfile();
      Raster expected = source.Clone();
      expected.resolution = writing.metadata.resolution;
      expected.profile = writing.metadata.profile;
      TMemoryStream plain, stream;
      EncodeBmp(expected, plain, BmpProfile::embed);
      const WrittenPicture written = WriteBmp(Pixels(std::move(source)), writing, stream);
      EXPECT_THAT(written.changes.losses, IsEmpty());
      EXPECT_TRUE(std::ranges::equal(plain.Bytes(), stream.Bytes()));
      stream.SetPosition(0);
      const PictureHeader header = ReadBmpHeader(stream);
      EXPECT_EQ(header.width, 13);
      EXPECT_EQ(header.height, 7);
      EXPECT_EQ(header.metadata.resolution, (Resolution{300, 150}));
      ASSERT_TRUE(header.metadata.profile);
      EXPECT_EQ(*header.metadata.profile, *RgbProfile());
      EXPECT_EQ(header.layout.bits, written.layout.bits);
      EXPECT_EQ(header.layout.bands, written.layout.bands);
      EXPECT_EQ(header.layout.alpha, written.layout.alpha);
      EXPECT_EQ(header.layout.extraBands, written.layout.extraBands);
      EXPECT_EQ(header.layout.palette, written.layout.palette);
    }
  }
}

TEST(BmpPicture, EveryOtherKind_Should_BeALoss) {
  PictureWriting writing;
  Metadata& metadata = writing.metadata;
  metadata.exif = {'I', 'I', 42, 0, 8, 0, 0, 0, 1, 0, 0x25, 0x88, 4, 0, 1,   0, 0, 0, 26, 0, 0, 0,
                   0,   0,   0,  0, 1, 0, 1, 0, 2, 0, 2,    0,    0, 0, 'N', 0, 0, 0, 0,  0, 0, 0};
  metadata.xmp = "<x/>";
  metadata.iptc = {0x1C};
  metadata.photoshop = {1};
  metadata.comments = {"c"};
  metadata.texts.resize(2);
  metadata.jpegSegments.resize(1);
  metadata.tiffTags.resize(1);
  metadata.pngChunks = {{detail::PngKind("sRGB"), {0}, false},
                        {detail::PngKind("tIME"), {}, false},
                        {detail::PngKind("abCd"), {}, false}};
  metadata.profile = GrayProfile();
  Raster raster = GradientRaster(pf24bit, 3, 3);
  raster.transparentColor = clWhite;
  TMemoryStream stream;
  const WrittenPicture written = WriteBmp(Pixels(std::move(raster)), writing, stream);
  std::vector<LossKind> kinds;
  for (const Loss& loss : written.changes.losses) {
    kinds.push_back(loss.kind);
    EXPECT_FALSE(loss.what.empty());
    EXPECT_FALSE(loss.why.empty());
  }
  EXPECT_THAT(kinds, UnorderedElementsAre(LossKind::profile, LossKind::transparentColor,
                                          LossKind::exif, LossKind::gps, LossKind::xmp,
                                          LossKind::iptc, LossKind::otherBlock, LossKind::comment,
                                          LossKind::text, LossKind::otherBlock,
                                          LossKind::otherBlock, LossKind::otherBlock));
  EXPECT_THAT(written.changes.notes, testing::ElementsAre(testing::HasSubstr("tIME")));
}

TEST(BmpPicture, Samples_Should_BeRefused) {
  TMemoryStream stream;
  EXPECT_THROW(WriteBmp(Pixels(Samples(PixelLayout(), 2, 2)), {}, stream), UnsupportedError);
  EXPECT_EQ(stream.Size(), 0u);
}

TEST(BmpPictureCorpus, Header_Should_AgreeWithTheDecoder) {
  if (CorpusFolder().empty()) GTEST_SKIP() << "RASTERKIT_CORPUS names no folder";
  int decoded = 0;
  for (const CorpusEntry& entry : CorpusEntries("bmp")) {
    SCOPED_TRACE(entry.at("path"));
    TFileStream stream((CorpusFolder() / entry.at("path")).string());
    Raster raster;
    try {
      raster = DecodeBmp(stream);
    } catch (const Error&) {
      continue;
    }
    decoded++;
    stream.SetPosition(0);
    const PictureHeader header = ReadBmpHeader(stream);
    EXPECT_EQ(header.width, raster.Width());
    EXPECT_EQ(header.height, raster.Height());
    if (header.layout.model == ColorModel::palette) {
      EXPECT_EQ(raster.palette, header.layout.palette);
    } else if (!IsIndexed(raster.Format())) {
      EXPECT_EQ(header.layout.bands == 4, raster.Format() == pf32bit);
    }
    if (raster.alphaFormat == afDefined) {
      EXPECT_EQ(header.layout.alpha, AlphaKind::straight);
    }
    EXPECT_EQ(header.metadata.profile != nullptr, raster.profile != nullptr);
    EXPECT_NEAR(header.metadata.resolution.x, raster.resolution.x, 0.02);
  }
  EXPECT_GE(decoded, 40);
}

}  // namespace
}  // namespace rasterkit::test
