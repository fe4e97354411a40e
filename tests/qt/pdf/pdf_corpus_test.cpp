#include <set>

#include "tests/qt/pdf/pdf_fixture.h"
#include "tests/support/corpus.h"

namespace rasterkit {
namespace {

class PdfCorpus : public test::PdfTest {
 protected:
  void SetUp() override {
    if (test::CorpusFolder().empty()) GTEST_SKIP() << "no corpus";
  }

  /// Opens a file and draws its first pages; what happened, in words.
  std::string Walk(const std::string& path) {
    try {
      Document().LoadFromFile((test::CorpusFolder() / path).string());
    } catch (const Error& error) {
      EXPECT_NE(error.File(), "") << path;
      return error.Reason();
    }
    constexpr int kMostPages = 8;
    std::string faults;
    for (int i = 0; i < std::min(Document().PageCount(), kMostPages); ++i) {
      try {
        const PdfPageSize size = Document().PageSize(i);
        const TBitmap page = Export(i, 0.5);
        EXPECT_EQ(page.Width(), PdfPagePixels(size, 0.5).width) << path;
      } catch (const Error& error) {
        faults += error.Reason();
      }
    }
    return faults;
  }
};

TEST_F(PdfCorpus, EveryFile_Should_BeDrawnOrRefusedInWords_When_Opened) {
  // What every reader reads must come; these few are damaged or state no size.
  const std::set<std::string> known = {"pdf/pdfjs__boundingBox_invalid.pdf",
                                       "pdf/pdfjs__poppler-395-0-fuzzed.pdf"};
  int files = 0;
  for (const auto& entry : test::CorpusEntries("pdf")) {
    const std::string& path = entry.at("path");
    const std::string result = Walk(path);
    ++files;
    if (entry.at("exercises").find("needs a password") != std::string::npos) {
      EXPECT_EQ(result, "PDF: the file is encrypted and needs a password") << path;
    } else if (!known.contains(path)) {
      EXPECT_EQ(result, "") << path;
    } else {
      EXPECT_NE(result, "") << path;
    }
  }
  EXPECT_GT(files, 30);
}

TEST_F(PdfCorpus, FilesWithAForeignName_Should_GoByContent_When_Opened) {
  for (const auto& entry : test::CorpusEntries("wrongext")) {
    const std::string& path = entry.at("path");
    const bool isPdf = path.find("_is_pdf.") != std::string::npos;
    EXPECT_EQ(Walk(path), isPdf ? "" : "PDF: the file is not a PDF file") << path;
  }
}

TEST_F(PdfCorpus, PageSizes_Should_BeThoseOfTheIndex_When_ItHasThem) {
  for (const auto& entry : test::CorpusEntries("pdf")) {
    const std::string& facts = entry.at("facts");
    double width = 0, height = 0;
    int rotation = 0, pages = 0;
    const auto number = [&](const char* key, const char* format, auto*... values) {
      const size_t place = facts.find(key);
      return place != std::string::npos &&
             std::sscanf(facts.c_str() + place, format, values...) == sizeof...(values);
    };
    if (!number("page1_size", "page1_size=%lf x %lf", &width, &height)) continue;
    ASSERT_TRUE(number("page1_rotation", "page1_rotation=%d", &rotation));
    ASSERT_TRUE(number("; pages", "; pages=%d", &pages));
    const std::string& path = entry.at("path");
    Document().LoadFromFile((test::CorpusFolder() / path).string());
    EXPECT_EQ(Document().PageCount(), pages) << path;
    if (rotation % 180 != 0) std::swap(width, height);
    EXPECT_NEAR(Document().PageSize(0).width, width, 0.01) << path;
    EXPECT_NEAR(Document().PageSize(0).height, height, 0.01) << path;
  }
}

}  // namespace
}  // namespace rasterkit
