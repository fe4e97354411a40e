#include "tests/reference/raster_operations.h"

#include <random>
#include <vector>

#include <gtest/gtest.h>

#include <rasterkit/drawing/ink/ternary_rows.h>

#include "tests/support/drawing_paper.h"

namespace rasterkit {
namespace {

using detail::CodeOf;
using detail::TernaryCode;

std::vector<uint32_t> RandomPixels(std::mt19937& random, size_t count) {
  std::vector<uint32_t> pixels(count);
  for (uint32_t& pixel : pixels) pixel = static_cast<uint32_t>(random());
  return pixels;
}

TEST(TernaryRow, Should_FollowTheTruthTable_When_AnyOfThe256CodesIsGiven) {
  std::mt19937 random(81);
  for (unsigned code = 0; code < 256; ++code) {
    const auto brush = RandomPixels(random, 37), source = RandomPixels(random, 37);
    const auto before = RandomPixels(random, 37);
    auto after = before;
    detail::TernaryRow(static_cast<TernaryCode>(code), brush.data(), source.data(), after.data(),
                       37);
    for (size_t i = 0; i < 37; ++i) {
      ASSERT_EQ(after[i], reference::TernaryOperation(code, brush[i], source[i], before[i]))
          << "code " << code << " pixel " << i;
    }
  }
}

TEST(TernaryCode, Should_DoWhatTheTwoOperandFunctionDoes_When_MadeOfAnyOfThe16) {
  const uint32_t pen = 0x0F33A5C3, picture = 0x3355C3A5, source = 0x12345678;
  for (unsigned number = 1; number <= 16; ++number) {
    uint32_t after = picture;
    detail::TernaryRow(CodeOf(static_cast<Rop2>(number)), &pen, &source, &after, 1);
    EXPECT_EQ(after, reference::BinaryOperation(number, pen, picture)) << number;
  }
  EXPECT_EQ(CodeOf(Rop2::copyPen), detail::kCopyBrush);
  EXPECT_EQ(CodeOf(Rop2::nop), 0xAA);
  EXPECT_EQ(CodeOf(static_cast<Rop2>(0)), detail::kCopyBrush);
  EXPECT_EQ(CodeOf(static_cast<Rop2>(17)), detail::kCopyBrush);
}

TEST(TernaryCode, Should_KnowItsOperands_When_ResultsDifferByThem) {
  for (unsigned code = 0; code < 256; ++code) {
    const auto differs = [&](uint32_t brush, uint32_t source, uint32_t picture) {
      return reference::TernaryOperation(code, 0x0F, 0x33, 0x55) !=
             reference::TernaryOperation(code, 0x0F ^ brush, 0x33 ^ source, 0x55 ^ picture);
    };
    const auto table = static_cast<TernaryCode>(code);
    EXPECT_EQ(detail::NeedsBrush(table), differs(0xFF, 0, 0)) << code;
    EXPECT_EQ(detail::NeedsSource(table), differs(0, 0xFF, 0)) << code;
    EXPECT_EQ(detail::NeedsPicture(table), differs(0, 0, 0xFF)) << code;
  }
}

TEST(MixRow, Should_RoundToTheNearest_When_AnyCoverageMixesAnyBytes) {
  for (int coverage = 0; coverage < 256; ++coverage) {
    for (int drawn = 0; drawn < 256; drawn += 5) {
      for (int picture = 0; picture < 256; picture += 3) {
        const uint32_t d = static_cast<uint32_t>(drawn) * 0x01010101;
        uint32_t p = static_cast<uint32_t>(picture) * 0x01010101;
        const auto c = static_cast<uint8_t>(coverage);
        detail::MixRow(&d, &c, &p, 1);
        const int sum = drawn * coverage + picture * (255 - coverage);
        const auto mean = static_cast<uint32_t>((2 * sum + 255) / 510);
        ASSERT_EQ(p, mean * 0x01010101) << drawn << ' ' << picture << ' ' << coverage;
      }
    }
  }
}

// The codes as seen in a drawing: whole pixels of known colors.

TEST(DeviceContextRop3, Should_CombineBrushSourceAndPicture_When_AnyOfThe256CodesIsBlitted) {
  const TColor brush = 0x0F0F0F, source = 0x333333, picture = 0x555555;
  Raster bitmap(pf24bit, 2, 2);
  FillRaster(bitmap, {0, 0, 2, 2}, source);
  test::DrawingPaper paper(4, 3);
  paper.Brush(brush);
  for (unsigned code = 0; code < 256; ++code) {
    FillRaster(paper.raster, {0, 0, 4, 3}, picture);
    paper.Dc().StretchBlt({1, 1, 3, 3}, {bitmap, {0, 0, 2, 2}}, code << 16);
    const auto wanted = static_cast<TColor>(
        reference::TernaryOperation(code, 0x0F0F0F, 0x333333, 0x555555) & 0xFFFFFF);
    EXPECT_EQ(paper.At(1, 1), wanted) << code;
    EXPECT_EQ(paper.At(2, 2), wanted) << code;
    EXPECT_EQ(paper.At(0, 0), picture);
    EXPECT_EQ(paper.At(3, 1), picture);
  }
}

TEST(DeviceContextRop2, Should_CombinePenAndPicture_When_AnyOfThe16IsSet) {
  test::DrawingPaper paper(4, 3);
  paper.Brush(0x0F33C3);
  paper.Pen(0x0F33C3);
  for (unsigned number = 1; number <= 16; ++number) {
    FillRaster(paper.raster, {0, 0, 4, 3}, 0x335599);
    paper.Dc().SetRop2(static_cast<Rop2>(number));
    const LogicalBrush brush{LogicalBrush::solid, 0x0F33C3, 0, nullptr, false};
    const RectD area{0, 0, 2, 2};
    paper.Dc().FillRgn({&area, 1}, RegionUnit::logical, brush);
    paper.Dc().MoveTo({0, 2});
    paper.Dc().LineTo({3, 2});
    const auto wanted =
        static_cast<TColor>(reference::BinaryOperation(number, 0x0F33C3, 0x335599) & 0xFFFFFF);
    EXPECT_EQ(paper.At(1, 1), wanted) << number;
    EXPECT_EQ(paper.At(2, 2), wanted) << number;
    EXPECT_EQ(paper.At(3, 2), 0x335599);
  }
}

}  // namespace
}  // namespace rasterkit
