#include <set>

#include <gtest/gtest.h>

#include <rasterkit/tifftobmp/wic_formats.h>

namespace rasterkit::detail {
namespace {

struct Row {
  WICPixelFormat format;
  BitmapTraits traits;
};

class WicFormats : public testing::TestWithParam<Row> {};

TEST_P(WicFormats, Row_Should_SayBitsMarkAndFloatFormat) {
  const auto& [format, traits] = GetParam();
  EXPECT_EQ(TraitsOf(format).bits, traits.bits);
  EXPECT_EQ(TraitsOf(format).mark, traits.mark);
  EXPECT_EQ(TraitsOf(format).floatFormat, traits.floatFormat);
}

constexpr FrameMark kPlain = FrameMark::none, kGray = FrameMark::gray, kAlpha = FrameMark::alpha;

constexpr Row kRows[] = {
    {GUID_WICPixelFormatBlackWhite, {1, kPlain, ffNoFloat}},
    {GUID_WICPixelFormat1bppIndexed, {1, kPlain, ffNoFloat}},
    {GUID_WICPixelFormat4bppIndexed, {4, kPlain, ffNoFloat}},
    {GUID_WICPixelFormat8bppIndexed, {8, kPlain, ffNoFloat}},
    {GUID_WICPixelFormat24bppBGR, {24, kPlain, ffNoFloat}},
    {GUID_WICPixelFormat24bppRGB, {24, kPlain, ffNoFloat}},
    {GUID_WICPixelFormat32bppBGR, {32, kPlain, ffNoFloat}},
    {GUID_WICPixelFormat32bppBGRA, {32, kAlpha, ffNoFloat}},
    {GUID_WICPixelFormat32bppGrayFloat, {32, kPlain, ffSingle}},
    {GUID_WICPixelFormat4bppGray, {4, kGray, ffNoFloat}},
    {GUID_WICPixelFormat8bppGray, {8, kGray, ffNoFloat}},
    {GUID_WICPixelFormat16bppBGR555, {16, kPlain, ffNoFloat}},
    {GUID_WICPixelFormat16bppBGR565, {16, kPlain, ffNoFloat}},
    {GUID_WICPixelFormat16bppGray, {16, kPlain, ffWord}},
    {GUID_WICPixelFormat16bppGrayFixedPoint, {16, kPlain, ffSmallInt}},
    {GUID_WICPixelFormat16bppGrayHalf, {16, kPlain, ffSmallInt}},
};

INSTANTIATE_TEST_SUITE_P(Table, WicFormats, testing::ValuesIn(kRows),
                         [](const auto& info) { return std::to_string(info.index); });

TEST(WicFormatsTable, Rows_Should_BeAllPixelFormats) {
  std::set<int> formats;
  for (const Row& row : kRows) formats.insert(row.format);
  EXPECT_EQ(formats.size(), size_t{GUID_WICPixelFormat16bppGrayHalf} + 1);
}

TEST(WicFormatsTable, ConvertedFrame_Should_HaveNoAlphaMark) {
  ImagingFrame frame;
  frame.format = GUID_WICPixelFormat32bppBGRA;
  EXPECT_EQ(TraitsOf(frame).mark, kAlpha);
  frame.isConverted = true;
  EXPECT_EQ(TraitsOf(frame), (BitmapTraits{32, kPlain, ffNoFloat}));
}

TEST(WicFormatsTable, FloatFormats_Should_KeepTheirNumbers) {
  EXPECT_EQ(ffNoFloat, 0);
  EXPECT_EQ(ffSingle, 1);
  EXPECT_EQ(ffWord, 2);
  EXPECT_EQ(ffSmallInt, 3);
}

}  // namespace
}  // namespace rasterkit::detail
