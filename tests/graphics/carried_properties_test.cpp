#include <gtest/gtest.h>

#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/graphics/canvas.h>
#include <rasterkit/raster/cut_out.h>

#include "tests/support/test_pictures.h"

/// Every property of a picture goes along with it. A property that is added to RasterProperties
/// does not compile here before it is listed, and fails here until it is carried.
namespace rasterkit {
namespace {

ColorProfile SampleProfile() {
  return std::make_shared<const std::vector<uint8_t>>(std::vector<uint8_t>{1, 2, 3});
}

/// Gives every property a value that a new raster does not have.
void SetEveryProperty(Raster& raster) {
  auto& [palette, resolution, profile, alphaFormat, transparentColor] = raster.Properties();
  palette = GrayPalette(17);
  resolution = {300, 150};
  profile = SampleProfile();
  alphaFormat = afDefined;
  transparentColor = RGB(9, 8, 7);
}

void ExpectSame(const RasterProperties& expected, const RasterProperties& actual) {
  const auto& [palette, resolution, profile, alphaFormat, transparentColor] = expected;
  const auto& [palette2, resolution2, profile2, alphaFormat2, transparentColor2] = actual;
  EXPECT_EQ(palette2, palette);
  EXPECT_EQ(resolution2, resolution);
  EXPECT_EQ(profile2, profile);
  EXPECT_EQ(alphaFormat2, alphaFormat);
  EXPECT_EQ(transparentColor2, transparentColor);
}

void ExpectSameTransparency(const TBitmap& expected, const TBitmap& actual) {
  EXPECT_EQ(actual.Transparent(), expected.Transparent());
  EXPECT_EQ(actual.TransparentMode(), expected.TransparentMode());
  EXPECT_EQ(actual.TransparentColor(), expected.TransparentColor());
}

Raster SampleRaster(TPixelFormat format = pf8bit) {
  Raster raster = test::GradientRaster(format, 17, 9);
  SetEveryProperty(raster);
  return raster;
}
TBitmap SampleBitmap(TPixelFormat format = pf8bit) {
  return TBitmap(SampleRaster(format));
}
TBitmap NewBitmap(TPixelFormat format = pf8bit) {
  TBitmap bitmap;
  bitmap.ResetPixels(format, 5, 4);
  return bitmap;
}

TEST(CarriedProperties, Raster_Should_CopyAndMoveAll) {
  const Raster source = SampleRaster();
  Raster target(pf24bit, 3, 3);
  target.CopyProperties(source);
  ExpectSame(source, target);
  ExpectSame(source, source.Clone());
  ExpectSame(source, CutOut(source, {1, 1, 4, 4}));
  Raster moved = std::move(target);
  ExpectSame(source, moved);
  ExpectSame(Raster(), target);  // NOLINT(bugprone-use-after-move): a raster moved from is empty
}

TEST(CarriedProperties, Bitmap_Should_CopyMoveAndResizeWithAll) {
  TBitmap source = SampleBitmap();
  TBitmap assigned;
  assigned.Assign(&source);
  ExpectSame(source.Content(), assigned.Content());
  ExpectSameTransparency(source, assigned);
  ExpectSame(source.Content(), source.Clone()->Content());
  TBitmap moved = std::move(assigned);
  ExpectSame(source.Content(), moved.Content());
  ExpectSameTransparency(source, moved);
  moved.SetSize(40, 30);
  ExpectSame(source.Content(), moved.Content());
  ExpectSameTransparency(source, moved);
  moved.ResetPixels(pf8bit, 3, 3);
  ExpectSame(source.Content(), moved.Content());
}

TEST(CarriedProperties, CarryFrom_Should_TakeAllAndNothingElse) {
  const TBitmap source = SampleBitmap();
  TBitmap target = NewBitmap();
  target.SetModified(false);
  target.CarryFrom(source);
  ExpectSame(source.Content(), target.Content());
  ExpectSameTransparency(source, target);
  EXPECT_TRUE(target.Modified());
  EXPECT_EQ(target.Width(), 5);
  EXPECT_EQ(target.Height(), 4);
  EXPECT_EQ(target.PixelFormat(), pf8bit);
}

TEST(CarriedProperties, CarryFrom_Should_LeaveWhatTheCallExcludes) {
  const TBitmap source = SampleBitmap();
  const TBitmap fresh = NewBitmap();
  TBitmap target = NewBitmap();
  target.CarryFrom(source, {.resolution = false});
  EXPECT_EQ(target.Dpi(), fresh.Dpi());
  target.SetDpi(source.Dpi());
  ExpectSame(source.Content(), target.Content());

  target = NewBitmap();
  target.CarryFrom(source, {.profile = false});
  EXPECT_EQ(target.Profile(), nullptr);
  target.SetProfile(source.Profile());
  ExpectSame(source.Content(), target.Content());

  target = NewBitmap();
  target.CarryFrom(source, {.palette = false});
  EXPECT_EQ(target.Palette(), fresh.Palette());
  target.SetPalette(source.Palette());
  ExpectSame(source.Content(), target.Content());

  target = NewBitmap();
  target.CarryFrom(source, {.alphaFormat = false});
  EXPECT_EQ(target.AlphaFormat(), afIgnored);
  target.SetAlphaFormat(afDefined);
  ExpectSame(source.Content(), target.Content());

  target = NewBitmap();
  target.CarryFrom(source, {.transparency = CarriedTransparency::none});
  ExpectSame(source.Content(), target.Content());
  EXPECT_FALSE(target.Transparent());
  EXPECT_EQ(target.TransparentMode(), tmAuto);
}

TEST(CarriedProperties, CarryFrom_Should_KeepThePalette_When_TheFormatsDiffer) {
  for (const TPixelFormat format : test::kEveryFormat) {
    if (format == pf8bit) continue;
    TBitmap target = NewBitmap(format);
    target.CarryFrom(SampleBitmap());
    EXPECT_EQ(target.Palette(), NewBitmap(format).Palette()) << format;
    EXPECT_EQ(target.Profile() != nullptr, true);
  }
}

TEST(CarriedProperties, CarryFrom_Should_ExchangeTheResolutionWithTheAxes) {
  TBitmap target = NewBitmap();
  target.CarryFrom(SampleBitmap(), {.exchangedAxes = true});
  EXPECT_EQ(target.Dpi(), (Resolution{150, 300}));
  target.CarryFrom(SampleBitmap(), {.exchangedAxes = true, .resolution = false});
  EXPECT_EQ(target.Dpi(), (Resolution{150, 300})) << "its own stays as it is";
}

TEST(CarriedProperties, Transparency_Should_FollowTheCorner_When_Same) {
  TBitmap source = test::GradientBitmap(pf24bit, 17, 9);
  source.SetTransparent(true);
  TBitmap target = NewBitmap(pf24bit);
  target.Canvas().Brush.Color = RGB(1, 2, 3);
  target.Canvas().FillRect({0, 0, 5, 4});
  target.CarryFrom(source);
  EXPECT_TRUE(target.Transparent());
  EXPECT_EQ(target.TransparentMode(), tmAuto);
  EXPECT_EQ(target.TransparentColor(), RGB(1, 2, 3));
}

TEST(CarriedProperties, Transparency_Should_KeepItsColor_When_Fixed) {
  TBitmap source = test::GradientBitmap(pf24bit, 17, 9);
  source.SetTransparent(true);
  TBitmap target = NewBitmap(pf24bit);
  target.CarryFrom(source, {.transparency = CarriedTransparency::fixed});
  EXPECT_TRUE(target.Transparent());
  EXPECT_EQ(target.TransparentMode(), tmFixed);
  EXPECT_EQ(target.TransparentColor(), source.PixelColor(0, 8));

  source.SetTransparent(false);
  target = NewBitmap(pf24bit);
  target.CarryFrom(source, {.transparency = CarriedTransparency::fixed});
  EXPECT_FALSE(target.Transparent());
  EXPECT_EQ(target.TransparentMode(), tmAuto) << "nothing is transparent that could be lost";
}

/// The members of TGraphic and TBitmap. A member that is added to one of them changes a size below,
/// unless it fills the gap before `transparency`: carry it (or decide not to), test that here, and
/// list it.
struct GraphicMembers {
  virtual ~GraphicMembers() = default;
  bool modified;
  struct {
    bool isOn;
    TTransparentMode mode;
    TColor color;
  } transparency;
};
struct BitmapMembers : GraphicMembers {
  Raster raster;
  std::unique_ptr<TCanvas> canvas;
  TPixelFormat format;
};
/// A member of a derived class stands right after the last one of its base.
template <class Base>
struct OneByteMore : Base {
  char more;
};
static_assert(sizeof(TGraphic) == sizeof(GraphicMembers));
static_assert(sizeof(TBitmap) == sizeof(BitmapMembers));
static_assert(sizeof(OneByteMore<TBitmap>) == sizeof(OneByteMore<BitmapMembers>));

TEST(CarriedProperties, Bitmap_Should_HaveNoOtherMembers) {
  OneByteMore<TBitmap> bitmap;
  OneByteMore<BitmapMembers> members;
  EXPECT_EQ(&bitmap.more - reinterpret_cast<char*>(&bitmap),
            &members.more - reinterpret_cast<char*>(&members));
}

}  // namespace
}  // namespace rasterkit
