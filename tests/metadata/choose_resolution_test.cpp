#include <gtest/gtest.h>

#include <rasterkit/metadata/metadata.h>

namespace rasterkit {
namespace {

StatedResolutions Stated(Resolution header, Resolution exif, Resolution photoshop) {
  StatedResolutions stated;
  stated.header = header;
  stated.exif = exif;
  stated.photoshop = photoshop;
  return stated;
}

TEST(ChooseResolution, Should_TakeTheHeaderThenExifThenPhotoshop) {
  const Resolution header = {300, 300}, exif = {240, 240}, photoshop = {180, 180};
  EXPECT_EQ(ChooseResolution(Stated(header, exif, photoshop)), header);
  EXPECT_EQ(ChooseResolution(Stated({}, exif, photoshop)), exif);
  EXPECT_EQ(ChooseResolution(Stated({}, {}, photoshop)), photoshop);
  EXPECT_FALSE(ChooseResolution({}).IsKnown());
}

TEST(ChooseResolution, Should_TakeExif_When_TheHeaderIsItsRounding) {
  StatedResolutions stated = Stated({300, 150}, {300.4, 149.5}, {});
  EXPECT_EQ(ChooseResolution(stated), stated.header);
  stated.headerIsWhole = true;
  EXPECT_EQ(ChooseResolution(stated), stated.exif);
  stated.exif.y = 149.4;
  EXPECT_EQ(ChooseResolution(stated), stated.header);
}

TEST(ChooseResolution, Should_RoundByTheHeadersUnit) {
  StatedResolutions stated = Stated({118 * 2.54, 118 * 2.54}, {300, 300}, {});
  stated.headerIsWhole = true;
  stated.headerUnit = 2.54;
  EXPECT_EQ(ChooseResolution(stated), stated.exif);
  stated.exif = {302, 302};
  EXPECT_EQ(ChooseResolution(stated), stated.header);
}

TEST(FromDotsPerMeter, Should_GiveAWholeDpi_When_ItIsWithinHalfAUnit) {
  for (int dpi = 1; dpi <= 5000; ++dpi) {
    const auto units = static_cast<uint32_t>(dpi / 0.0254 + 0.5);
    EXPECT_EQ(FromDotsPerMeter(units, units).x, dpi);
  }
  EXPECT_DOUBLE_EQ(FromDotsPerMeter(2836, 2835).x, 2836 * 0.0254);
  EXPECT_EQ(FromDotsPerMeter(2836, 2835).y, 72);
  EXPECT_FALSE(FromDotsPerMeter(0, 2835).IsKnown());
}

}  // namespace
}  // namespace rasterkit
