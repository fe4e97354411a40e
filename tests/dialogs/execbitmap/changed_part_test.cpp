#include <random>

#include <gtest/gtest.h>

#include <rasterkit/dialogs/execbitmap/changed_part.h>
#include <rasterkit/dialogs/execbitmap/value_change.h>

#include "tests/reference/change_values_reference.h"
#include "tests/reference/contrast_brightness_reference.h"
#include "tests/reference/gray_mono.h"
#include "tests/support/copy_of.h"
#include "tests/support/full_run.h"
#include "tests/support/paper_pictures.h"
#include "tests/support/same_pixels.h"

namespace rasterkit {
namespace {

using test::CopyOf;
using test::PaperBitmap;
using test::SamePixels;

constexpr TColor kGround = 0x204060;

/// The change of the whole picture, step by step.
void ApplyByReference(const ValueChange& change, TBitmap& bitmap) {
  if (change.operation == 5)
    reference::ColorBmpTo1Bit(bitmap, change.grayValue, 0, 0, 0, 255, 255, 255);
  if (change.operation != 0) return;
  for (const int32_t task : change.taskSlots) {
    if (task == 1) reference::Helligkeit(bitmap, change.lightness, 1);
    if (task == 2) reference::Kontrast(bitmap, change.contrast, 1);
    if (task == 3) reference::Sharpen(bitmap, change.sharpen);
    if (task == 4)
      reference::ShiftColors(bitmap, static_cast<float>(change.red),
                             static_cast<float>(change.green), static_cast<float>(change.blue));
  }
}

/// The part after the whole picture was changed and drawn.
TBitmap DrawnFromWhole(const TBitmap& whole, const TRect& part) {
  TBitmap drawn;
  drawn.ResetPixels(pf32bit, part.Right - part.Left, part.Bottom - part.Top);
  drawn.Canvas().Brush.Color = kGround;
  drawn.Canvas().FillRect({0, 0, drawn.Width(), drawn.Height()});
  drawn.Canvas().Draw(-part.Left, -part.Top, whole);
  return drawn;
}

ValueChange RandomChange(std::mt19937& random) {
  const auto percent = [&] {
    return random() % 5 == 0 ? 0 : static_cast<int32_t>(random() % 201) - 100;
  };
  ValueChange change;
  constexpr int32_t kOperations[] = {0, 0, 0, 0, 0, 0, 5, 5, 3};
  change.operation = kOperations[random() % std::size(kOperations)];
  for (int32_t& slot : change.taskSlots) slot = static_cast<int32_t>(random() % 5);
  if (random() % 4 == 0) change.taskSlots.fill(kTaskBrightness);
  change.lightness = percent();
  change.contrast = percent();
  change.sharpen = percent();
  change.red = percent();
  change.green = percent();
  change.blue = percent();
  change.grayValue = static_cast<int32_t>(random() % 256);
  return change;
}

TRect RandomPart(int width, int height, std::mt19937& random) {
  const auto range = [&](int size, int& first, int& last) {
    first = static_cast<int>(random() % static_cast<unsigned>(size));
    last = first + 1 + static_cast<int>(random() % static_cast<unsigned>(size - first));
  };
  TRect part;
  range(width, part.Left, part.Right);
  range(height, part.Top, part.Bottom);
  return part;
}

TBitmap RandomPicture(TPixelFormat format, std::mt19937& random) {
  TBitmap bitmap = PaperBitmap(format, 1 + static_cast<int>(random() % 70),
                               1 + static_cast<int>(random() % 20), random);
  // Palettes that do not fit the format lose parts of the rows.
  if (IsIndexed(format) && random() % 3 == 0)
    bitmap.SetPalette(test::PaperPalette(random() % 2 == 0 ? 2 : 16, random));
  if (bitmap.StoredBits() == 32 && random() % 3 == 0) bitmap.SetAlphaFormat(afDefined);
  bitmap.SetTransparent(random() % 3 == 0);
  if (random() % 4 == 0)
    bitmap.SetTransparentColor(bitmap.PixelColor(static_cast<int>(random() % 10), 0));
  return bitmap;
}

class ChangedPartTest : public testing::TestWithParam<TPixelFormat> {};

TEST_P(ChangedPartTest, EveryPart_Should_BeToTheByteWhatTheWholeComputationGives) {
  const unsigned seed = 600 + static_cast<unsigned>(GetParam());
  std::mt19937 random(seed);
  const int rounds = test::IsFullRun() ? 4000 : 500;
  for (int round = 0; round < rounds; ++round) {
    const TBitmap picture = RandomPicture(GetParam(), random);
    const ValueChange change = RandomChange(random);
    const TRect part = RandomPart(picture.Width(), picture.Height(), random);
    TBitmap whole = CopyOf(picture);
    change.ApplyTo(whole);
    ASSERT_TRUE(
        SamePixels(DrawnFromWhole(whole, part), DrawChangedPart(picture, part, change, kGround)))
        << "seed " << seed << ", round " << round << ", part " << part.Left << " " << part.Top
        << " " << part.Right << " " << part.Bottom << " of " << picture.Width() << " x "
        << picture.Height() << ", operation " << change.operation;
  }
}

TEST_P(ChangedPartTest, TheWholeComputation_Should_EqualTheReferenceStepByStep) {
  const unsigned seed = 900 + static_cast<unsigned>(GetParam());
  std::mt19937 random(seed);
  for (int round = 0; round < 200; ++round) {
    const TBitmap picture = RandomPicture(GetParam(), random);
    const ValueChange change = RandomChange(random);
    TBitmap expected = CopyOf(picture), actual = CopyOf(picture);
    ApplyByReference(change, expected);
    change.ApplyTo(actual);
    ASSERT_TRUE(SamePixels(expected, actual)) << "seed " << seed << ", round " << round;
    ASSERT_EQ(expected.PixelFormat(), actual.PixelFormat());
  }
}

INSTANTIATE_TEST_SUITE_P(Formats, ChangedPartTest, testing::ValuesIn(test::kEveryFormat),
                         [](const auto& info) { return "Format" + std::to_string(info.param); });

TEST(ChangedPartTest, AFormatWithoutASizeOfItsOwn_Should_BePreviewedToo) {
  std::mt19937 random(3);
  TBitmap picture = PaperBitmap(pf24bit, 20, 9, random);
  picture.SetPixelFormat(pfCustom);
  ValueChange change;
  change.taskSlots = {kTaskSharpen, kTaskContrast};
  change.sharpen = change.contrast = 60;
  TBitmap whole = CopyOf(picture);
  change.ApplyTo(whole);
  const TRect part{7, 2, 19, 8};
  EXPECT_TRUE(
      SamePixels(DrawnFromWhole(whole, part), DrawChangedPart(picture, part, change, kGround)));
}

TEST(ChangedPartTest, AnEmptyPart_Should_BeEmpty) {
  const TBitmap nothing;
  EXPECT_TRUE(DrawChangedPart(nothing, {0, 0, 0, 0}, ValueChange{}, kGround).Empty());
}

TEST(ChangedPartTest, OnlySharpening_Should_NeedNeighbors) {
  ValueChange change;
  change.taskSlots = {kTaskBrightness, kTaskSharpen, kTaskColors};
  EXPECT_EQ(change.Margin(), 0);
  change.sharpen = 1;
  EXPECT_EQ(change.Margin(), 1);
  change.operation = 5;
  EXPECT_EQ(change.Margin(), 0);
}

}  // namespace
}  // namespace rasterkit
