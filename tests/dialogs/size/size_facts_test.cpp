#include <gtest/gtest.h>

#include <rasterkit/dialogs/size/size_answer.h>
#include <rasterkit/dialogs/size/size_facts.h>
#include <rasterkit/runtime/limits.h>

#include "tests/dialogs/size/size_picture.h"
#include "tests/support/memory_limit.h"

namespace rasterkit {
namespace {

using test::PictureOf;
using Field = ChangeSizeModel::Field;

class SizeFactsTest : public testing::Test {
 protected:
  void Start(int width, int height, const Resolution& dpi, TPixelFormat format = pf24bit) {
    picture = PictureOf(width, height, dpi, format);
    model = ChangeSizeModel(width, height, kEditorSizeRules);
    StartSize(model, picture, {});
    model.BytesOf = [this](int32_t w, int32_t h) {
      return BytesAtSize(picture, w, h, model.GetFilter());
    };
  }

  Picture picture = PictureOf(1, 1, {});
  ChangeSizeModel model{1, 1};
};

TEST_F(SizeFactsTest, ThePicture_Should_BeToldWithResolutionAndMemory) {
  Start(600, 400, {300, 300});
  EXPECT_EQ(SizeFactsText(picture), "600 x 400 pixels, 703 KiB, 300 dpi");
  Start(10, 10, {});
  EXPECT_EQ(SizeFactsText(picture), "10 x 10 pixels, 300 bytes, no resolution");
  Start(2000, 10, {204, 98}, pf1bit);
  EXPECT_EQ(SizeFactsText(picture), "2000 x 10 pixels, 2.4 KiB, 204 x 98 dpi");
}

TEST_F(SizeFactsTest, PixelsAndPercent_Should_KeepTheSizeOnPaper) {
  Start(600, 400, {300, 300});
  model.FlEdChange(Field::width, 200);
  EXPECT_EQ(SizeResultText(model, picture), "200 x 133 pixels, 77.9 KiB, 100 x 99.75 dpi");
  model.SetUnit(LengthUnit::percent);
  model.FlEdChange(Field::width, 50);
  EXPECT_EQ(SizeResultText(model, picture), "300 x 200 pixels, 176 KiB, 150 dpi");
}

TEST_F(SizeFactsTest, Millimeters_Should_StateTheirResolution) {
  Start(600, 400, {300, 300});
  model.SetUnit(LengthUnit::millimeters);
  model.SetDpi(127.5);
  model.FlEdChange(Field::width, 25.4);
  EXPECT_EQ(SizeResultText(model, picture), "128 x 85 pixels, 31.9 KiB, 127.5 dpi");
}

TEST_F(SizeFactsTest, Memory_Should_FollowTheFilter_When_MixedPixelsNeedMoreBits) {
  Start(800, 800, {}, pf1bit);
  model.SetFilter(Filter::nearest);
  model.FlEdChange(Field::width, 400);
  EXPECT_EQ(SizeResultText(model, picture), "400 x 400 pixels, 19.5 KiB, no resolution");
  model.SetFilter(Filter::area);
  EXPECT_EQ(SizeResultText(model, picture), "400 x 400 pixels, 156 KiB, no resolution");
}

TEST_F(SizeFactsTest, Faults_Should_BeToldWithTheirReason) {
  Start(600, 400, {300, 300});
  EXPECT_EQ(SizeFaultText(model), "The picture has this size.");
  EXPECT_NE(SizeResultText(model, picture), "");
  model.SetProportional(false);
  model.FlEdChange(Field::width, 0);
  EXPECT_EQ(SizeFaultText(model),
            "Width and height must be 1 to 1000000 pixels. This size has 0 x 400.");
  EXPECT_EQ(SizeResultText(model, picture), "");
  model.FlEdChange(Field::width, 999999999);
  EXPECT_EQ(SizeFaultText(model),
            "Width and height must be 1 to 1000000 pixels. This size has 999999999 x 400.");
  model.FlEdChange(Field::width, 100);
  EXPECT_EQ(SizeFaultText(model), "");
  model.SetUnit(LengthUnit::millimeters);
  model.SetDpi(0);
  EXPECT_EQ(SizeFaultText(model), "Millimeters need a resolution of 1 to 100000 dpi.");
}

TEST_F(SizeFactsTest, Memory_Should_BeToldWithNeedAndLimit) {
  const test::MemoryLimit limit(uint64_t{4} << 20);
  Start(600, 400, {300, 300});
  model.FlEdChange(Field::width, 3000);
  EXPECT_EQ(SizeFaultText(model), "This size needs 17.2 MiB of memory. The limit is 4 MiB.");
  EXPECT_EQ(SizeResultText(model, picture), "");
}

TEST_F(SizeFactsTest, TheLargestSides_Should_BeBeyondMemory) {
  Start(600, 400, {300, 300});
  model.SetProportional(false);
  model.FlEdChange(Field::width, 1e6);
  model.FlEdChange(Field::height, 1e6);
  EXPECT_EQ(model.Fault(), SizeFault::beyondMemory);
  EXPECT_EQ(SizeFaultText(model), "This size needs 2.7 TiB of memory. The limit is 4 GiB.");
}

TEST_F(SizeFactsTest, LimitsOfTheProgram_Should_BeToldAsSuch) {
  Start(600, 400, {300, 300});
  for (const auto& [side, pixels] : {std::pair<uint64_t, uint64_t>{5000, kNoLimit},
                                     std::pair<uint64_t, uint64_t>{kNoLimit, 10'000'000}}) {
    Limits limits = CurrentLimits();
    limits.side = side;
    limits.pixels = pixels;
    const LimitsScope limited(limits);
    model.FlEdChange(Field::width, 6000);
    EXPECT_EQ(model.Fault(), SizeFault::tooLarge);
    EXPECT_EQ(SizeFaultText(model),
              "The limits of this program allow no picture of 6000 x 4000 pixels.");
    EXPECT_EQ(SizeResultText(model, picture), "");
    model.FlEdChange(Field::width, 3000);
    EXPECT_EQ(model.Fault(), SizeFault::none);
  }
}

TEST_F(SizeFactsTest, NumbersBeyond32Bits_Should_BeToldAsTheyAre) {
  Start(600, 400, {300, 300});
  model.SetProportional(false);
  model.SetUnit(LengthUnit::percent);
  model.FlEdChange(Field::width, 1e9);
  EXPECT_EQ(SizeFaultText(model),
            "Width and height must be 1 to 1000000 pixels. This size has 6000000000 x 400.");
  model.SetUnit(LengthUnit::pixels);
  model.FlEdChange(Field::width, 600);
  model.SetUnit(LengthUnit::millimeters);
  model.FlEdChange(Field::width, 254e6);
  EXPECT_EQ(SizeFaultText(model),
            "Width and height must be 1 to 1000000 pixels. This size has 3000000000 x 400.");
}

TEST_F(SizeFactsTest, SizesThatAPictureCannotHave_Should_HaveNoBytes) {
  Start(6, 4, {});
  EXPECT_EQ(BytesAtSize(picture, 0, 5, Filter::automatic), std::nullopt);
  EXPECT_EQ(BytesAtSize(picture, 5, 7, Filter::automatic), 105u);
}

}  // namespace
}  // namespace rasterkit
