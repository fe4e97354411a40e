#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include <rasterkit/graphics/pdf_document.h>
#include <rasterkit/runtime/memory/memory_budget.h>

namespace rasterkit {
namespace {

constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

std::string Refusal(const PdfPageSize& page, double scale,
                    PdfRotation rotation = PdfRotation::none) {
  try {
    RequirePdfPage(page, scale, rotation);
  } catch (const LimitError& error) {
    return error.Reason();
  }
  return "";
}

TEST(PdfPagePixels, PdfPagePixels_Should_Give100PixelsAnInch_When_ScaleIs1) {
  const PdfPixels pixels = PdfPagePixels({72, 144}, 1);
  EXPECT_EQ(pixels.width, 100);
  EXPECT_EQ(pixels.height, 200);
  EXPECT_EQ(PdfPagePixels({72, 144}, 1.5).width, 150);
}

TEST(PdfPagePixels, PdfPagePixels_Should_RoundToTheNearestAndHalvesUp_When_PageIsNoWholePixels) {
  // A4 at 150 dpi: 1240.16 and 1753.94.
  EXPECT_EQ(PdfPagePixels({595.276, 841.89}, 1.5).width, 1240);
  EXPECT_EQ(PdfPagePixels({595.276, 841.89}, 1.5).height, 1754);
  EXPECT_EQ(PdfPagePixels({0.36, 1.08}, 1).width, 1);
  EXPECT_EQ(PdfPagePixels({36, 108}, 0.05).width, 3);
  EXPECT_EQ(PdfPagePixels({36, 108}, 0.05).height, 8);
}

TEST(PdfPagePixels, PdfPagePixels_Should_GiveOnePixel_When_PageIsTiny) {
  EXPECT_EQ(PdfPagePixels({0.001, 3}, 0.1).width, 1);
  EXPECT_EQ(PdfPagePixels({0.001, 3}, 0.1).height, 1);
}

TEST(PdfPagePixels, PdfPagePixels_Should_ExchangeSides_When_TurnedByAQuarter) {
  for (const auto turn : {PdfRotation::clockwise90, PdfRotation::clockwise270}) {
    EXPECT_EQ(PdfPagePixels({72, 144}, 1, turn).width, 200);
    EXPECT_EQ(PdfPagePixels({72, 144}, 1, turn).height, 100);
  }
  EXPECT_EQ(PdfPagePixels({72, 144}, 1, PdfRotation::clockwise180).width, 100);
}

TEST(PdfResolution, PdfResolution_Should_BeTheWholeNumber_When_ScaleWasMadeFromOne) {
  for (int dotsPerInch = 1; dotsPerInch <= 100000; ++dotsPerInch) {
    ASSERT_EQ(PdfResolution(dotsPerInch / 100.0), dotsPerInch);
  }
  EXPECT_DOUBLE_EQ(PdfResolution(1.505), 150.5);
}

TEST(RequirePdfPage, RequirePdfPage_Should_BeContent_When_PageFits) {
  EXPECT_EQ(Refusal({2383.94, 3370.39}, 3), "");
  // 32000 pixels in one direction.
  EXPECT_EQ(Refusal({23040, 72}, 1), "");
  EXPECT_EQ(Refusal({72, 23040}, 1, PdfRotation::clockwise90), "");
}

TEST(RequirePdfPage, RequirePdfPage_Should_NamePixelsAndMemory_When_PageIsTooLong) {
  EXPECT_EQ(Refusal({23040.72, 72}, 1),
            "PDF: at 100 dpi the page has 32001 x 100 pixels and takes 13 MiB; the most are 32000 "
            "pixels in one direction and 4096 MiB");
  EXPECT_NE(Refusal({1e30, 1e30}, 1.5), "");
}

TEST(RequirePdfPage, RequirePdfPage_Should_NamePixelsAndMemory_When_MemoryIsBeyondTheLimit) {
  const uint64_t before = PictureMemoryLimit();
  SetPictureMemoryLimit(4 << 20);
  EXPECT_EQ(Refusal({720, 720}, 1), "");
  EXPECT_EQ(Refusal({1440, 720}, 1),
            "PDF: at 100 dpi the page has 2000 x 1000 pixels and takes 8 MiB; the most are 32000 "
            "pixels in one direction and 4 MiB");
  SetPictureMemoryLimit(before);
}

TEST(RequirePdfPage, RequirePdfPage_Should_Refuse_When_SizeIsNoNumberAboveZero) {
  for (const double size : {0.0, -1.0, kNotANumber, kInfinity, -kInfinity}) {
    EXPECT_NE(Refusal({size, 72}, 1), "") << size;
    EXPECT_NE(Refusal({72, size}, 1), "") << size;
  }
  EXPECT_EQ(Refusal({0, 72}, 1), "PDF: the page states an impossible size of 0 x 72 points");
}

class EmptyDocument : public PdfDocument {
 public:
  void LoadFromFile(const std::string&, const std::string&) override {}
  int PageCount() const override { return 0; }
  PdfPageSize PageSize(int) const override { return {}; }
  bool ExportPage(int, double, PdfRotation, TBitmap&, const PdfKeepGoing&) override { return true; }
};

TEST(CreatePdfDocument, CreatePdfDocument_Should_AskTheFactory_When_ThereIsOne) {
  const PdfDocumentMaker before = PdfDocumentFactory();
  PdfDocumentFactory() = nullptr;
  EXPECT_THROW(CreatePdfDocument(), UnsupportedError);
  PdfDocumentFactory() = [] { return std::make_unique<EmptyDocument>(); };
  EXPECT_NE(dynamic_cast<EmptyDocument*>(CreatePdfDocument().get()), nullptr);
  PdfDocumentFactory() = before;
}

}  // namespace
}  // namespace rasterkit
