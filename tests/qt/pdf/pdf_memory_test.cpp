#include <new>

#include <sys/resource.h>

#include "tests/qt/pdf/pdf_fixture.h"
#include "tests/support/memory_limit.h"

namespace rasterkit {
namespace {

class PdfMemory : public test::PdfTest {
 protected:
  std::string Refusal(int index, double scale) {
    try {
      TBitmap bitmap;
      Document().ExportPage(index, scale, PdfRotation::none, bitmap);
    } catch (const LimitError& error) {
      EXPECT_EQ(error.File(), Folder() / "test.pdf");
      return error.Reason();
    }
    return "";
  }
};

TEST_F(PdfMemory, ExportPage_Should_NamePixelsAndMemory_When_BoxIsAbsurd) {
  OpenPages({{"0 0 14400 14400"}, {"0 0 100000 1"}});
  EXPECT_EQ(Refusal(0, 3),
            "PDF: at 300 dpi the page has 60000 x 60000 pixels and takes 13733 MiB; the most are "
            "32000 pixels in one direction and 4096 MiB");
  EXPECT_NE(Refusal(1, 1).find("138889 x 1 pixels"), std::string::npos) << Refusal(1, 1);
}

TEST_F(PdfMemory, ExportPage_Should_EndInWords_When_BoxIsNoneOrNegative) {
  OpenPages({{"0 0 0 0"},
             {"72 72 0 0"},
             {"0 0 -72 72"},
             {"0 0 nan 72"},
             {""},
             {"0 0"},
             {"0 0 0.00001 0.00001"},
             {"-1e38 -1e38 1e38 1e38"},
             {"0 0 10000000000 10000000000"}});
  for (int i = 0; i < Document().PageCount(); ++i) {
    try {
      const PdfPageSize size = Document().PageSize(i);
      TBitmap bitmap;
      EXPECT_TRUE(Document().ExportPage(i, 1, PdfRotation::none, bitmap)) << i;
      const PdfPixels pixels = PdfPagePixels(size, 1);
      EXPECT_EQ(bitmap.Width(), pixels.width) << i;
      EXPECT_EQ(bitmap.Height(), pixels.height) << i;
    } catch (const LimitError& error) {
      EXPECT_NE(error.Reason(), "") << i;
    } catch (const FormatError& error) {
      EXPECT_NE(error.Reason(), "") << i;
    }
  }
}

TEST_F(PdfMemory, ExportPage_Should_Refuse_When_TheLimitForPicturesIsSmall) {
  OpenPages({{"0 0 720 720"}});
  const test::MemoryLimit limit(3 << 20);
  EXPECT_NE(Refusal(0, 1).find("takes 4 MiB"), std::string::npos);
  EXPECT_EQ(Refusal(0, 0.8), "");
}

#if !defined(__SANITIZE_ADDRESS__)
#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define RASTERKIT_ENDLESS_MEMORY
#endif
#endif
#else
#define RASTERKIT_ENDLESS_MEMORY
#endif

#ifndef RASTERKIT_ENDLESS_MEMORY
/// 7 when a page of 1.6 GB ended as it should in 1 GiB, and a small one still came.
int DrawInOneGibibyte(const std::string& file) {
  const std::unique_ptr<PdfDocument> document = test::NewPdfDocument();
  document->LoadFromFile(file);
  constexpr rlim_t kMost = rlim_t{1} << 30;
  const rlimit limit{kMost, kMost};
  setrlimit(RLIMIT_AS, &limit);
  TBitmap bitmap;
  try {
    document->ExportPage(0, 2, PdfRotation::none, bitmap);
    return 1;
  } catch (const std::bad_alloc&) {
    return document->ExportPage(0, 0.1, PdfRotation::none, bitmap) ? 7 : 2;
  }
}

/// In a process of its own, as the limit stays.
TEST_F(PdfMemory, ExportPage_Should_ThrowBadAlloc_When_TheSystemHasNoMemory) {
  OpenPages({{"0 0 7200 7200"}});
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_EXIT(std::exit(DrawInOneGibibyte(Folder() / "test.pdf")), testing::ExitedWithCode(7), "");
}
#endif

}  // namespace
}  // namespace rasterkit
