#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <rasterkit/bitmaptools/engine/manage_threads.h>
#include <rasterkit/bitmaptools/rotation/rotate.h>
#include <rasterkit/bitmaptools/rotation/rotate_thread.h>
#include <rasterkit/bitmaptools/rotation/rotation_background.h>
#include <rasterkit/bitmaptools/rotation/rotation_driver.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/graphics/canvas.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/memory/memory_budget.h>
#include <rasterkit/runtime/ports.h>
#include <rasterkit/runtime/threads/thread_queue.h>
#include <rasterkit/strings/strings.h>

#include "tests/reference/rotate_reference.h"
#include "tests/support/full_run.h"
#include "tests/support/memory_limit.h"
#include "tests/support/same_pixels.h"
#include "tests/support/test_pictures.h"
#include "tests/support/test_rows.h"

namespace rasterkit {
namespace {

using test::TestRows;

class RotateBitmapTest : public testing::Test {
 protected:
  void SetUp() override {
    HostPorts().messageBox = [this](const std::string& text) { messages_.push_back(text); };
  }
  void TearDown() override {
    HostPorts().messageBox = nullptr;
    SetPictureMemoryLimit(uint64_t{4} << 30);
  }

  std::vector<std::string> messages_;
};

std::unique_ptr<TBitmap> RandomBitmap(TPixelFormat format, int width, int height,
                                      uint32_t seed = 3) {
  auto bitmap = std::make_unique<TBitmap>();
  bitmap->ResetPixels(format, width, height);
  std::mt19937 random(seed);
  for (int y = 0; y < height; ++y) {
    uint8_t* row = bitmap->ScanLine(y);
    for (int x = 0; x < width * bitmap->StoredBits() / 8; ++x)
      row[x] = static_cast<uint8_t>(random());
  }
  return bitmap;
}

TestRows RowsOf(const TBitmap& bitmap) {
  TestRows rows(bitmap.Width(), bitmap.Height(), bitmap.StoredBits());
  for (int y = 0; y < rows.height; ++y)
    std::copy_n(bitmap.ScanLine(y), rows.stride,
                rows.bytes.begin() + static_cast<ptrdiff_t>(y * rows.stride));
  return rows;
}

void ExpectSame(const TestRows& actual, const TestRows& expected, const std::string& what) {
  ASSERT_EQ(actual.width, expected.width) << what;
  ASSERT_EQ(actual.height, expected.height) << what;
  ASSERT_TRUE(actual.bytes == expected.bytes) << what;
}

TEST_F(RotateBitmapTest, ANullBitmapGivesFalse) {
  std::unique_ptr<TBitmap> none;
  EXPECT_FALSE(RotateBitmap(30, none, 0, 1, nullptr));
  EXPECT_TRUE(messages_.empty());
}

TEST_F(RotateBitmapTest, InfiniteAnglesAndNaNGiveFalse) {
  for (float angle :
       {std::numeric_limits<float>::infinity(), -std::numeric_limits<float>::infinity(),
        std::numeric_limits<float>::quiet_NaN()}) {
    auto bitmap = RandomBitmap(pf24bit, 5, 3);
    EXPECT_FALSE(RotateBitmap(angle, bitmap, 0, 1, nullptr));
    EXPECT_EQ(bitmap->Width(), 5);
  }
}

TEST_F(RotateBitmapTest, NoTurnLeavesTheVeryObject) {
  for (float angle :
       {0.0f, 0.0099f, -0.01f, 359.995f, 360.0f, 720.005f, -720.0f, 360.009f, 3600.0f}) {
    auto bitmap = RandomBitmap(pf24bit, 5, 3);
    const TBitmap* before = bitmap.get();
    EXPECT_TRUE(RotateBitmap(angle, bitmap, -1, 4, nullptr)) << angle;
    EXPECT_EQ(bitmap.get(), before) << angle;
    EXPECT_FALSE(bitmap->Transparent());
  }
}

TEST_F(RotateBitmapTest, TheThresholdsAreSinglePrecision) {
  auto bitmap = RandomBitmap(pf24bit, 50, 30);
  const TBitmap* before = bitmap.get();
  EXPECT_TRUE(RotateBitmap(std::nextafter(0.01f, 0.0f), bitmap, 0, 1, nullptr));
  EXPECT_EQ(bitmap.get(), before);
  EXPECT_TRUE(RotateBitmap(0.01f, bitmap, 0, 1, nullptr));
  EXPECT_NE(bitmap.get(), before);
  before = bitmap.get();
  EXPECT_TRUE(RotateBitmap(std::nextafter(359.99f, 400.0f), bitmap, 0, 1, nullptr));
  EXPECT_EQ(bitmap.get(), before);
  EXPECT_TRUE(RotateBitmap(359.99f, bitmap, 0, 1, nullptr));
  EXPECT_NE(bitmap.get(), before);
}

// The loops of single-precision additions that the closed form stands for.
float LoopedAngle(float angle) {
  while (angle < -0.01f) angle += 360.0f;
  while (angle > 360.01f) angle -= 360.0f;
  return angle;
}

TEST(NormalizeAngleTest, EqualsTheLoopBelow130Million) {
  std::mt19937 random(8);
  for (int i = 0; i < 4000; ++i) {
    const float exponent =
        std::uniform_real_distribution<float>(-20, i < 3900 ? 22 : 26.9f)(random);
    const float angle = std::exp2(exponent) * (i % 2 == 0 ? 1.0f : -1.0f);
    ASSERT_EQ(detail::NormalizeAngle(angle), LoopedAngle(angle)) << angle;
  }
  for (int turns = -40; turns <= 40; ++turns)
    for (float rest : {0.0f, 0.005f, 0.0099f, 0.01f, 0.0101f, 0.02f, 359.99f, 89.5f, 90.5f})
      for (float sign : {1.0f, -1.0f}) {
        const float angle = static_cast<float>(turns) * 360.0f + sign * rest;
        for (float near : {std::nextafter(angle, -1e9f), angle, std::nextafter(angle, 1e9f)})
          ASSERT_EQ(detail::NormalizeAngle(near), LoopedAngle(near)) << near;
      }
}

TEST(NormalizeAngleTest, OneSubtractionTurns720Point005Into360Point005) {
  EXPECT_EQ(detail::NormalizeAngle(720.005f), 720.005f - 360.0f);
}

TEST(NormalizeAngleTest, HugeAnglesEndAtOnce) {
  for (float angle : {1e9f, -1e9f, 3e38f, -3e38f}) {
    const float normal = detail::NormalizeAngle(angle);
    EXPECT_GE(normal, -0.01f);
    EXPECT_LE(normal, 360.01f);
  }
}

// The exact path, straight from its table.
TestRows PlainQuarterTurn(const TestRows& source, int degrees) {
  const int w = source.width, h = source.height;
  TestRows target(degrees == 180 ? w : h, degrees == 180 ? h : w, 24);
  target.FillWith(0);
  for (int y = 0; y < target.height; ++y)
    for (int x = 0; x < target.width; ++x) {
      const uint32_t pixel = degrees == 90    ? source.Pixel(w - 1 - y, x)
                             : degrees == 180 ? source.Pixel(w - 1 - x, h - 1 - y)
                                              : source.Pixel(y, h - 1 - x);
      target.SetPixel(x, y, pixel);
    }
  return target;
}

TEST_F(RotateBitmapTest, QuarterTurnsOf24And32BitAreExactAndGive24Bit) {
  for (TPixelFormat format : {pf24bit, pf32bit})
    for (int degrees : {90, 180, 270})
      for (int turns : {-2, -1, 0, 1}) {
        auto bitmap = RandomBitmap(format, 37, 22);
        bitmap->SetTransparent(true);
        const TestRows source = RowsOf(*bitmap);
        ASSERT_TRUE(
            RotateBitmap(static_cast<float>(degrees + 360 * turns), bitmap, -1, 3, nullptr));
        EXPECT_EQ(bitmap->PixelFormat(), pf24bit);
        EXPECT_FALSE(bitmap->Transparent());
        ExpectSame(RowsOf(*bitmap), PlainQuarterTurn(source, degrees), std::to_string(degrees));
      }
}

TEST_F(RotateBitmapTest, AnglesThatRoundToAQuarterTakeTheExactPath) {
  for (float angle : {89.5f, 89.6f, 90.0f, 90.4f, 90.5f, 179.6f, 180.5f, 269.51f, 270.5f}) {
    auto bitmap = RandomBitmap(pf24bit, 64, 31);
    const TestRows source = RowsOf(*bitmap);
    ASSERT_TRUE(RotateBitmap(angle, bitmap, 0, 1, nullptr));
    const int degrees = static_cast<int>(angle / 90 + 0.5f) * 90;
    ExpectSame(RowsOf(*bitmap), PlainQuarterTurn(source, degrees), std::to_string(angle));
  }
}

TEST_F(RotateBitmapTest, HalvesBesideAQuarterRoundToEven) {
  // 179.5 rounds to 180, 269.5 to 270, 90.5 to 90; 89.49 and 90.51 do not round to 90.
  for (float angle : {89.49f, 90.51f, 179.49f, 180.51f, 269.49f, 270.51f}) {
    auto bitmap = RandomBitmap(pf24bit, 64, 31);
    const TestRows source = RowsOf(*bitmap);
    ASSERT_TRUE(RotateBitmap(angle, bitmap, 0x123456, 1, nullptr));
    const TestRows expected = reference::Rotate(source, reference::ExactTurn(angle), 0x563412);
    ExpectSame(RowsOf(*bitmap), expected, std::to_string(angle));
  }
}

TEST_F(RotateBitmapTest, AnEightBitQuarterTurnIsTheGeneralOneShiftedByAPixel) {
  auto bitmap = RandomBitmap(pf8bit, 6, 4);
  const TestRows source = RowsOf(*bitmap);
  ASSERT_TRUE(RotateBitmap(90, bitmap, clBlack, 1, nullptr));
  ASSERT_EQ(bitmap->PixelFormat(), pf8bit);
  ASSERT_EQ(bitmap->Width(), 4);
  ASSERT_EQ(bitmap->Height(), 6);
  const TestRows turned = RowsOf(*bitmap);
  for (int x = 0; x < 4; ++x) {
    EXPECT_EQ(turned.Pixel(x, 0), 0u);  // the background's entry
    for (int y = 1; y < 6; ++y) EXPECT_EQ(turned.Pixel(x, y), source.Pixel(6 - y, x));
  }
}

struct FormatCase {
  TPixelFormat format;
  int bits;
};

class RotateFormatsTest : public testing::TestWithParam<FormatCase> {};

// Every format through the exported routine, with as many threads as bands allow.
TEST_P(RotateFormatsTest, EqualsTheReferenceWithOneToSevenThreads) {
  const auto [format, bits] = GetParam();
  std::mt19937 random(50 + bits);
  const int rounds = test::IsFullRun() ? 400 : 60;
  for (int round = 0; round < rounds; ++round) {
    const bool isLarge = test::IsFullRun() && round % 40 == 0;
    const int width = 8 + static_cast<int>(random() % (isLarge ? 2000 : 62));
    const int height = 8 + static_cast<int>(random() % (isLarge ? 2000 : 62));
    const float angles[] = {
        static_cast<float>(random() % 24) * 15, static_cast<float>(random() % 36000) / 100,
        -static_cast<float>(random() % 360), 1e6f + static_cast<float>(random() % 1000)};
    const float angle = angles[round % 4];
    const float normal = LoopedAngle(angle);
    if (normal < 0.01f || normal > 359.99f) continue;
    if (bits >= 24 && std::lrintf(normal) % 90 == 0 && std::lrintf(normal) % 360 != 0) continue;

    const auto original = RandomBitmap(format, width, height, random());
    const TColor color = static_cast<TColor>(random() & 0xFFFFFF);
    TestRows expected(0, 0, bits);
    for (int threads = 1; threads <= 7; ++threads) {
      auto bitmap = original->Clone();
      ASSERT_TRUE(RotateBitmap(angle, bitmap, color, threads, nullptr));
      ASSERT_EQ(bitmap->PixelFormat(), format);
      if (threads == 1) {
        // Corner pixels of these sizes are uncovered at some row unless the turn is a quarter; the
        // background pixel is what a fill with the color gives.
        TBitmap fill;
        fill.ResetPixels(format, 1, 1);
        if (IsIndexed(format)) fill.SetPalette(original->Palette());
        fill.Canvas().Brush.Color = color;
        fill.Canvas().FillRect({0, 0, 1, 1});
        expected = reference::Rotate(RowsOf(*original), reference::ExactTurn(normal),
                                     RowsOf(fill).Pixel(0, 0));
      }
      ExpectSame(RowsOf(*bitmap), expected,
                 std::to_string(width) + " x " + std::to_string(height) + " by " +
                     std::to_string(angle) + ", threads " + std::to_string(threads));
      if (HasFatalFailure()) return;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Formats, RotateFormatsTest,
                         testing::Values(FormatCase{pf1bit, 1}, FormatCase{pf4bit, 4},
                                         FormatCase{pf8bit, 8}, FormatCase{pf15bit, 16},
                                         FormatCase{pf16bit, 16}, FormatCase{pf24bit, 24},
                                         FormatCase{pf32bit, 32}));

TEST_F(RotateBitmapTest, FiveHundredThreadsCountAsAHundredAndNoneAsOne) {
  const auto original = RandomBitmap(pf24bit, 150, 120);
  auto expected = original->Clone();
  ASSERT_TRUE(RotateBitmap(33, expected, 0, 1, nullptr));
  for (int threads : {-5, 0, 64, 65, 100, 101, 500, std::numeric_limits<int>::max()}) {
    auto bitmap = original->Clone();
    ASSERT_TRUE(RotateBitmap(33, bitmap, 0, threads, nullptr)) << threads;
    ExpectSame(RowsOf(*bitmap), RowsOf(*expected), std::to_string(threads));
  }
}

TEST(RotationThreadsTest, AreOneToAHundred) {
  EXPECT_EQ(detail::RotationThreads(std::numeric_limits<int32_t>::min()), 1);
  EXPECT_EQ(detail::RotationThreads(0), 1);
  EXPECT_EQ(detail::RotationThreads(64), 64);
  EXPECT_EQ(detail::RotationThreads(100), 100);
  EXPECT_EQ(detail::RotationThreads(101), 100);
  EXPECT_EQ(detail::RotationThreads(std::numeric_limits<int32_t>::max()), 100);
}

TEST_F(RotateBitmapTest, MoreThreadsThanFourTimesTheRowsFailAndSaySo) {
  auto bitmap = RandomBitmap(pf8bit, 1, 1);
  const TBitmap* before = bitmap.get();
  EXPECT_FALSE(RotateBitmap(20, bitmap, 0, 8, nullptr));
  EXPECT_EQ(bitmap.get(), before);
  EXPECT_EQ(messages_, std::vector<std::string>{"Bitmap to large to rotate."});
}

TEST_F(RotateBitmapTest, AnEmptyBitmapHasNoRowsAndFails) {
  auto bitmap = RandomBitmap(pf24bit, 0, 0);
  EXPECT_FALSE(RotateBitmap(20, bitmap, 0, 1, nullptr));
  EXPECT_EQ(messages_.size(), 1u);
  EXPECT_TRUE(RotateBitmap(90, bitmap, 0, 1, nullptr));
}

TEST_F(RotateBitmapTest, TooLargeAResultLeavesTheBitmapAndShowsTheMessage) {
  for (float angle : {30.0f, 90.0f}) {
    auto bitmap = RandomBitmap(pf24bit, 100, 90);
    const TestRows before = RowsOf(*bitmap);
    SetPictureMemoryLimit(1000);
    EXPECT_FALSE(RotateBitmap(angle, bitmap, 0, 2, nullptr));
    SetPictureMemoryLimit(uint64_t{4} << 30);
    ExpectSame(RowsOf(*bitmap), before, "unchanged");
  }
  EXPECT_EQ(messages_, (std::vector<std::string>(2, "Bitmap to large to rotate.")));
}

TEST_F(RotateBitmapTest, OnlyTheGeneralWaysMessageIsTranslated) {
  SetTranslator([](std::string_view) { return std::string("zu gross"); });
  for (float angle : {30.0f, 90.0f}) {
    auto bitmap = RandomBitmap(pf24bit, 100, 90);
    SetPictureMemoryLimit(1000);
    EXPECT_FALSE(RotateBitmap(angle, bitmap, 0, 2, nullptr));
    SetPictureMemoryLimit(uint64_t{4} << 30);
  }
  SetTranslator(nullptr);
  EXPECT_EQ(messages_, (std::vector<std::string>{"zu gross", "Bitmap to large to rotate."}));
}

TEST_F(RotateBitmapTest, AFailedTurnOfAMonoBitmapLeavesItMono) {
  auto bitmap = RandomBitmap(pf1bit, 1, 1);
  EXPECT_FALSE(RotateBitmap(20, bitmap, -1, 50, nullptr));
  EXPECT_EQ(bitmap->PixelFormat(), pf1bit);
}

TEST_F(RotateBitmapTest, ABitmapWithoutFormatIsTurnedAs32Bit) {
  auto bitmap = RandomBitmap(pfDevice, 20, 10);
  ASSERT_TRUE(RotateBitmap(45, bitmap, clWhite, 1, nullptr));
  EXPECT_EQ(bitmap->PixelFormat(), pf32bit);
  EXPECT_EQ(bitmap->Width(), 21);
  EXPECT_EQ(bitmap->Height(), 21);
}

TEST_F(RotateBitmapTest, TheResultCarriesWhatACopyWould) {
  auto bitmap = RandomBitmap(pf32bit, 20, 10);
  bitmap->SetDpi({300, 200});
  bitmap->SetProfile(std::make_shared<const std::vector<uint8_t>>(4, uint8_t{1}));
  bitmap->SetTransparent(true);
  bitmap->SetTransparentColor(0x112233);
  bitmap->SetAlphaFormat(afDefined);
  ASSERT_TRUE(RotateBitmap(45, bitmap, clWhite, 1, nullptr));
  EXPECT_EQ(bitmap->Dpi(), (Resolution{300, 200}));
  EXPECT_NE(bitmap->Profile(), nullptr);
  EXPECT_TRUE(bitmap->Transparent());
  EXPECT_EQ(bitmap->TransparentColor(), 0x112233);
  EXPECT_EQ(bitmap->AlphaFormat(), afDefined);

  ASSERT_TRUE(RotateBitmap(90, bitmap, clWhite, 1, nullptr));
  EXPECT_EQ(bitmap->Dpi(), (Resolution{200, 300}));
  EXPECT_NE(bitmap->Profile(), nullptr);
  EXPECT_FALSE(bitmap->Transparent());
}

TEST_F(RotateBitmapTest, ATurnedBitmapCountsAsModified) {
  for (float angle : {45.0f, 90.0f}) {
    auto bitmap = RandomBitmap(pf24bit, 20, 10);
    bitmap->SetModified(false);
    ASSERT_TRUE(RotateBitmap(angle, bitmap, 0, 1, nullptr));
    EXPECT_TRUE(bitmap->Modified()) << angle;
  }
}

// The automatic background.

TColor CornerColor(const TBitmap& bitmap) {
  return bitmap.PixelColor(0, 0);
}

HPALETTE PaletteOf(std::vector<tagPALETTEENTRY> entries) {
  return HPALETTE(entries);
}

TEST_F(RotateBitmapTest, TrueColorGetsNearWhiteAndBecomesTransparentInIt) {
  for (TPixelFormat format : {pf24bit, pf32bit}) {
    auto bitmap = RandomBitmap(format, 40, 30);
    ASSERT_TRUE(RotateBitmap(45, bitmap, -1, 2, nullptr));
    EXPECT_EQ(CornerColor(*bitmap), 0xFFFFFE);
    EXPECT_TRUE(bitmap->Transparent());
    EXPECT_EQ(bitmap->TransparentMode(), tmFixed);
    EXPECT_EQ(bitmap->TransparentColor(), 0xFFFFFE);
  }
}

TEST_F(RotateBitmapTest, AShortPaletteGetsNearWhiteAppended) {
  auto bytes = RandomBitmap(pf8bit, 40, 30);
  bytes->SetPalette(GrayPalette(100));
  ASSERT_TRUE(RotateBitmap(45, bytes, -1, 1, nullptr));
  EXPECT_EQ(bytes->Palette().Count(), 101);
  EXPECT_EQ(bytes->Palette().Entry(100), (tagPALETTEENTRY{254, 255, 255, 0}));
  EXPECT_EQ(CornerColor(*bytes), 0xFFFFFE);

  auto nibbles = RandomBitmap(pf4bit, 40, 30);
  nibbles->SetPalette(GrayPalette(15));
  ASSERT_TRUE(RotateBitmap(45, nibbles, -1, 1, nullptr));
  EXPECT_EQ(nibbles->Palette().Count(), 16);
  EXPECT_EQ(CornerColor(*nibbles), 0xFFFFFE);
  EXPECT_TRUE(nibbles->Transparent());
}

TEST_F(RotateBitmapTest, AFullPaletteGivesTheLargestColorNumberBelowWhite) {
  std::vector<tagPALETTEENTRY> entries(256, {255, 255, 255, 0});
  entries[7] = {255, 255, 100, 0};  // light, but blue decides
  entries[9] = {0, 0, 200, 0};
  auto bitmap = RandomBitmap(pf8bit, 40, 30);
  bitmap->SetPalette(PaletteOf(entries));
  ASSERT_TRUE(RotateBitmap(45, bitmap, -1, 1, nullptr));
  EXPECT_EQ(CornerColor(*bitmap), RGB(0, 0, 200));
  EXPECT_EQ(bitmap->TransparentColor(), RGB(0, 0, 200));
  EXPECT_EQ(bitmap->Palette().Count(), 256);
}

TEST_F(RotateBitmapTest, APaletteOfWhitesOnlyGivesBlack) {
  auto bitmap = RandomBitmap(pf8bit, 40, 30);
  bitmap->SetPalette(PaletteOf(std::vector<tagPALETTEENTRY>(256, {255, 255, 255, 0})));
  ASSERT_TRUE(RotateBitmap(45, bitmap, -1, 1, nullptr));
  EXPECT_EQ(bitmap->TransparentColor(), clBlack);
}

TEST_F(RotateBitmapTest, AMonoBitmapComesBackAs4BitWithNearWhite) {
  auto bitmap = RandomBitmap(pf1bit, 40, 30);
  ASSERT_TRUE(RotateBitmap(45, bitmap, -1, 1, nullptr));
  EXPECT_EQ(bitmap->PixelFormat(), pf4bit);
  EXPECT_EQ(CornerColor(*bitmap), 0xFFFFFE);
  EXPECT_TRUE(bitmap->Transparent());
  EXPECT_EQ(bitmap->TransparentColor(), 0xFFFFFE);
  for (int y = 0; y < bitmap->Height(); ++y)
    for (int x = 0; x < bitmap->Width(); ++x) {
      const TColor color = bitmap->PixelColor(x, y);
      ASSERT_TRUE(color == clBlack || color == clWhite || color == 0xFFFFFE);
    }
}

// A full palette of 16 entries, the first ones given, the others green.
std::vector<tagPALETTEENTRY> SixteenEntries(std::vector<tagPALETTEENTRY> first) {
  first.resize(16, {0, 128, 0, 0});
  return first;
}

TEST_F(RotateBitmapTest, AFullPaletteThatWasMonoGivesItsFirstSpareEntry) {
  constexpr tagPALETTEENTRY kBlack{0, 0, 0, 0}, kWhite{255, 255, 255, 0}, kRed{255, 0, 0, 0};
  const struct {
    std::vector<tagPALETTEENTRY> first;
    int spare;
  } cases[] = {{{kRed, kBlack, kWhite}, 0},
               {{kBlack, kRed, kWhite}, 1},
               {{kBlack, kBlack, kWhite}, 1},
               {{kWhite, kWhite, kBlack}, 1},
               {{kWhite, kBlack, kWhite, kBlack}, 2},
               {{kBlack, kWhite, kBlack, kRed}, 2},
               {{kBlack, kWhite}, 2}};
  for (const auto& [first, spare] : cases) {
    const std::vector<tagPALETTEENTRY> entries = SixteenEntries(first);
    const auto source = RandomBitmap(pf4bit, 4, 4);
    const auto target = RandomBitmap(pf4bit, 4, 4);
    target->SetPalette(PaletteOf(entries));
    EXPECT_EQ(detail::ChooseBackground({*source, *target, 0, 4, true, -1, 1, 45.0f}), 0xFFFFFE);
    ASSERT_EQ(target->Palette().Count(), 16);
    for (int i = 0; i < 16; ++i) {
      const tagPALETTEENTRY expected =
          i == spare ? tagPALETTEENTRY{254, 255, 255, 0} : entries[static_cast<size_t>(i)];
      EXPECT_EQ(target->Palette().Entry(i), expected) << "entry " << i << ", spare " << spare;
    }
    EXPECT_TRUE(target->Transparent());
    EXPECT_EQ(target->TransparentMode(), tmFixed);
    EXPECT_EQ(target->TransparentColor(), 0xFFFFFE);
  }
}

TEST_F(RotateBitmapTest, AFull4BitPaletteThatWasNotMonoGivesItsLargestColorNumber) {
  auto bitmap = RandomBitmap(pf4bit, 40, 30);
  bitmap->SetPalette(PaletteOf(SixteenEntries({{255, 255, 255, 0}, {255, 0, 0, 0}})));
  ASSERT_TRUE(RotateBitmap(45, bitmap, -1, 1, nullptr));
  EXPECT_EQ(bitmap->TransparentColor(), RGB(0, 128, 0));
  EXPECT_EQ(CornerColor(*bitmap), RGB(0, 128, 0));
}

TEST_F(RotateBitmapTest, AutomaticTransparencyStaysAutomaticUnderAGivenBackground) {
  auto bitmap = RandomBitmap(pf24bit, 40, 30);
  bitmap->SetTransparent(true);
  ASSERT_EQ(bitmap->TransparentMode(), tmAuto);
  ASSERT_TRUE(RotateBitmap(45, bitmap, 0x123456, 1, nullptr));
  EXPECT_TRUE(bitmap->Transparent());
  EXPECT_EQ(bitmap->TransparentMode(), tmAuto);
  EXPECT_EQ(bitmap->TransparentColor(), 0x123456);  // the bottom-left pixel
}

TEST_F(RotateBitmapTest, AMonoBitmapWithAGivenBackgroundStaysMono) {
  auto bitmap = RandomBitmap(pf1bit, 40, 30);
  ASSERT_TRUE(RotateBitmap(45, bitmap, clBlack, 1, nullptr));
  EXPECT_EQ(bitmap->PixelFormat(), pf1bit);
  EXPECT_EQ(CornerColor(*bitmap), clBlack);
  EXPECT_FALSE(bitmap->Transparent());
}

TEST_F(RotateBitmapTest, AGivenBackgroundIsTheNearestPaletteEntry) {
  auto bitmap = RandomBitmap(pf8bit, 40, 30);
  bitmap->SetPalette(GrayPalette(256));
  ASSERT_TRUE(RotateBitmap(45, bitmap, RGB(100, 100, 103), 1, nullptr));
  EXPECT_EQ(CornerColor(*bitmap), RGB(101, 101, 101));
}

TEST_F(RotateBitmapTest, OneThreadKeepsTheCallersQueueAlive) {
  auto bitmap = RandomBitmap(pf24bit, 40, 30);
  bool ran = false;
  ThreadQueue::Current().Post([&] { ran = true; });
  ASSERT_TRUE(RotateBitmap(45, bitmap, 0, 0, nullptr));
  EXPECT_TRUE(ran);
}

TEST_F(RotateBitmapTest, SeveralThreadsLeaveTheCallersQueueAlone) {
  bool ran = false;
  // Sixteen threads for the three rows of the second bitmap become one, which is a worker still.
  for (const auto& [width, height, threads] : {std::tuple{40, 30, 2}, std::tuple{3, 3, 16}}) {
    auto bitmap = RandomBitmap(pf8bit, width, height);
    ThreadQueue::Current().Post([&] { ran = true; });
    ASSERT_TRUE(RotateBitmap(180, bitmap, 0, threads, nullptr));
    EXPECT_FALSE(ran);
    while (!ran) ThreadQueue::Current().WaitAndDispatch();
    ran = false;
  }
}

TEST(RotateThreadTest, AWorkerThatAsksForAMissingRowEndsAloneAndKeepsTheError) {
  const auto source = RandomBitmap(pf24bit, 9, 9);
  TBitmap target;
  target.ResetPixels(pf24bit, 9, 9);
  std::vector<const uint8_t*> rows;
  for (int y = 0; y < 9; ++y) rows.push_back(std::as_const(*source).ScanLine(y));
  const auto shared = std::make_shared<const std::vector<const uint8_t*>>(rows);
  TManageThreads manager(6, 9, nullptr);
  std::vector<ThreadPtr<TRotateThread>> workers;
  for (size_t i = 0; i < 6; ++i)
    workers.push_back(MakeThread<TRotateThread>(manager, *source, target, 180.0f, shared, 3,
                                                manager.iBis[i], manager.iBis[i + 1] - 1, 0u));
  for (auto& worker : workers) worker->Start();
  for (auto& worker : workers) worker->WaitFor();
  for (size_t i = 0; i < 6; ++i) EXPECT_EQ(workers[i]->FatalException() != nullptr, i == 4) << i;
  EXPECT_THROW(std::rethrow_exception(workers[4]->FatalException()), RangeError);
  // nine rows present and the one that is missing
  EXPECT_EQ(manager.AnzProg, 10);
}

TEST_F(RotateBitmapTest, BandsBeyondTheLastRowStillGiveTheWholePicture) {
  // 9 rows by 6 threads at half a turn of an indexed bitmap
  const auto original = RandomBitmap(pf8bit, 12, 9);
  auto expected = original->Clone();
  ASSERT_TRUE(RotateBitmap(180, expected, 0, 1, nullptr));
  auto bitmap = original->Clone();
  ASSERT_TRUE(RotateBitmap(180, bitmap, 0, 6, nullptr));
  ExpectSame(RowsOf(*bitmap), RowsOf(*expected), "six threads");
  EXPECT_TRUE(messages_.empty());
}

TEST_F(RotateBitmapTest, TheFormThatThrowsTurnsAsTheOtherDoes) {
  for (const float angle : {0.0f, 30.0f, 90.0f, 400.0f}) {
    auto expected = std::make_unique<TBitmap>(test::GradientBitmap(pf24bit, 20, 13));
    std::unique_ptr<TBitmap> actual = expected->Clone();
    ASSERT_TRUE(RotateBitmap(angle, expected, clWhite, 2, nullptr));
    RotateBitmapOrThrow(angle, actual, clWhite, 2);
    EXPECT_TRUE(test::SamePixels(*expected, *actual)) << angle;
  }
}

TEST_F(RotateBitmapTest, TheFormThatThrowsSaysWhyAndShowsNothing) {
  for (const float angle : {90.0f, 45.0f}) {
    auto bitmap = std::make_unique<TBitmap>(test::GradientBitmap(pf24bit, 100, 80));
    const std::unique_ptr<TBitmap> before = bitmap->Clone();
    {
      const test::MemoryLimit limit(1000);
      EXPECT_THROW(RotateBitmapOrThrow(angle, bitmap, clWhite, 2), LimitError);
    }
    EXPECT_TRUE(test::SamePixels(*before, *bitmap));
  }
  std::unique_ptr<TBitmap> none;
  EXPECT_THROW(RotateBitmapOrThrow(30, none, clWhite, 1), UnsupportedError);
  auto bitmap = std::make_unique<TBitmap>(test::GradientBitmap(pf24bit, 3, 3));
  EXPECT_THROW(RotateBitmapOrThrow(NAN, bitmap, clWhite, 1), UnsupportedError);
  EXPECT_TRUE(messages_.empty());
}

TEST_F(RotateBitmapTest, TheSecondBitmapIsNotTouched) {
  auto bitmap = RandomBitmap(pf24bit, 12, 9);
  const auto second = RandomBitmap(pf24bit, 4, 4);
  const TestRows before = RowsOf(*second);
  ASSERT_TRUE(RotateBitmap(30, bitmap, 0, 1, second.get()));
  ExpectSame(RowsOf(*second), before, "second bitmap");
}

}  // namespace
}  // namespace rasterkit
