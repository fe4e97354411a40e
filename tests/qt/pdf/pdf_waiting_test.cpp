#include <atomic>
#include <random>
#include <stdexcept>

#include <fmt/format.h>

#include "tests/qt/pdf/pdf_fixture.h"
#include "tests/support/same_pixels.h"

namespace rasterkit {
namespace {

class PdfWaiting : public test::PdfTest {
 protected:
  /// A page that takes the engine a while: many long curves.
  void OpenSlowPage(int lines) {
    std::mt19937 random(11);
    std::string content;
    const auto place = [&] { return random() % 720; };
    for (int i = 0; i < lines; ++i) {
      content += fmt::format("{} {} m {} {} {} {} {} {} c S ", place(), place(), place(), place(),
                             place(), place(), place(), place());
    }
    OpenPages({{"0 0 720 720", content}, {"0 0 72 72", test::PdfRectangle("1 0 0", 0, 0, 72, 72)}});
  }
};

TEST_F(PdfWaiting, ExportPage_Should_AskAgainAndAgain_When_PageTakesLong) {
  OpenSlowPage(1000);
  int questions = 0;
  TBitmap asked;
  const auto count = [&] { return ++questions > 0; };
  ASSERT_TRUE(Document().ExportPage(0, 2, PdfRotation::none, asked, count));
  EXPECT_GT(questions, 2);
  EXPECT_TRUE(test::SamePixels(Export(0, 2), asked));
}

TEST_F(PdfWaiting, ExportPage_Should_LeaveTheBitmap_When_GivenUp) {
  OpenSlowPage(1000);
  TBitmap bitmap;
  bitmap.SetSize(3, 2);
  EXPECT_FALSE(Document().ExportPage(0, 2, PdfRotation::none, bitmap, [] { return false; }));
  EXPECT_EQ(bitmap.Width(), 3);
}

TEST_F(PdfWaiting, ExportPage_Should_DrawTheNextPage_When_OneWasGivenUp) {
  OpenSlowPage(300);
  TBitmap bitmap;
  ASSERT_FALSE(Document().ExportPage(0, 2, PdfRotation::none, bitmap, [] { return false; }));
  EXPECT_EQ(Export(1, 1).PixelColor(50, 50), 0x0000FFu);
  EXPECT_EQ(Export(0, 1).Width(), 1000);
}

TEST_F(PdfWaiting, Destructor_Should_NotWait_When_APageWasGivenUp) {
  OpenSlowPage(1000);
  for (int i = 0; i < 3; ++i) {
    const std::unique_ptr<PdfDocument> document = test::NewPdfDocument();
    document->LoadFromFile(Folder() / "test.pdf", "");
    TBitmap bitmap;
    EXPECT_FALSE(document->ExportPage(0, 1, PdfRotation::none, bitmap, [] { return false; }));
  }
  // What was left to itself goes on beside this.
  EXPECT_EQ(Export(1, 1).PixelColor(50, 50), 0x0000FFu);
}

TEST_F(PdfWaiting, ExportPage_Should_LetTheErrorThrough_When_TheQuestionThrows) {
  OpenSlowPage(1000);
  TBitmap bitmap;
  const auto throwing = []() -> bool { throw std::domain_error("from the host"); };
  EXPECT_THROW(Document().ExportPage(0, 2, PdfRotation::none, bitmap, throwing), std::domain_error);
  EXPECT_EQ(Export(1, 1).Width(), 100);
}

TEST_F(PdfWaiting, Document_Should_RefuseTheCall_When_ItIsWaiting) {
  OpenSlowPage(1000);
  TBitmap bitmap;
  std::vector<std::string> faults;
  const auto nested = [&] {
    try {
      TBitmap other;
      Document().ExportPage(0, 1, PdfRotation::none, other);
    } catch (const Error& error) {
      faults.push_back(error.Reason());
    }
    try {
      Document().LoadFromFile(Folder() / "test.pdf");
    } catch (const Error& error) {
      faults.push_back(error.Reason());
    }
    return faults.size() < 4;
  };
  Document().ExportPage(0, 2, PdfRotation::none, bitmap, nested);
  ASSERT_GE(faults.size(), 2u);
  EXPECT_EQ(faults.front(), "PDF: the file is being read already");
  EXPECT_EQ(faults.back(), "PDF: the file is being read already");
  EXPECT_EQ(Document().PageCount(), 2);
}

TEST_F(PdfWaiting, Documents_Should_GiveTheSamePixels_When_DrawnOnSeveralThreads) {
  OpenSlowPage(200);
  const TBitmap expected = Export(0, 1);
  std::atomic<int> same = 0;
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&] {
      const std::unique_ptr<PdfDocument> document = test::NewPdfDocument();
      document->LoadFromFile(Folder() / "test.pdf", "");
      TBitmap bitmap;
      document->ExportPage(0, 1, PdfRotation::none, bitmap);
      if (test::SamePixels(expected, bitmap)) ++same;
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(same, 4);
}

/// A process of its own that ends while the engine draws: the exit must wait, and not crash.
TEST_F(PdfWaiting, ProcessEnd_Should_WaitForTheEngine_When_APageWasGivenUp) {
  OpenSlowPage(1000);
  const std::string file = Folder() / "test.pdf";
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_EXIT(
      {
        {
          const std::unique_ptr<PdfDocument> document = test::NewPdfDocument();
          document->LoadFromFile(file, "");
          TBitmap bitmap;
          document->ExportPage(0, 1, PdfRotation::none, bitmap, [] { return false; });
        }
        std::exit(7);
      },
      testing::ExitedWithCode(7), "");
}

}  // namespace
}  // namespace rasterkit
