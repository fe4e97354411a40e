#include <random>

#include "tests/qt/pdf/pdf_fixture.h"

namespace rasterkit {
namespace {

class PdfHostile : public test::PdfTest {
 protected:
  /// Opens and draws; every result is accepted except a crash, a hang, an error without a message,
  /// or a page without pixels.
  void Survive(const std::string& bytes) {
    try {
      Open(bytes);
      for (int i = 0; i < std::min(Document().PageCount(), 3); ++i) {
        try {
          const TBitmap page = Export(i, 0.3);
          EXPECT_GT(page.Width(), 0);
          EXPECT_GT(page.Height(), 0);
        } catch (const Error& error) {
          EXPECT_NE(error.Reason(), "");
        }
      }
    } catch (const Error& error) {
      EXPECT_NE(error.Reason(), "");
    }
  }

  static std::string Sample() {
    return test::PdfText(
        {{"0 0 100 100", "BT /F1 20 Tf 5 5 Td (abc) Tj ET 1 0 0 rg 0 0 9 9 re f"},
         {"0 0 50 50", "q 2 0 0 2 0 0 cm 3 w 0 0 m 20 20 l S Q", "", "/Rotate 90"}});
  }
};

TEST_F(PdfHostile, Document_Should_Survive_When_FileIsCutShort) {
  const std::string sample = Sample();
  for (size_t length = 0; length < sample.size(); length += 7) Survive(sample.substr(0, length));
}

TEST_F(PdfHostile, Document_Should_Survive_When_BytesAreChanged) {
  const unsigned seed = 20;
  std::mt19937 random(seed);
  const std::string sample = Sample();
  for (int round = 0; round < 200; ++round) {
    SCOPED_TRACE(testing::Message() << "seed " << seed << ", round " << round);
    std::string bytes = sample;
    for (int i = 0; i < 6; ++i) {
      constexpr std::string_view kLikely = "0123456789-/<>[]() RRnobj";
      bytes[random() % bytes.size()] = kLikely[random() % kLikely.size()];
    }
    Survive(bytes);
  }
}

#ifdef RASTERKIT_WORKER_FILE
constexpr bool kOtherFilesStayReadable = true;
#else
constexpr bool kOtherFilesStayReadable = false;
#endif

/// A page tree that contains itself: the engine never returns. In a separate process, which is
/// lost if the engine is in it.
int ReadACircle(const std::string& file, const std::string& other) {
  const std::unique_ptr<PdfDocument> document = test::NewPdfDocument();
  try {
    document->LoadFromFile(file);
    return 1;
  } catch (const FormatError& error) {
    if (error.Reason() != "PDF: the file is damaged: reading it does not end") return 2;
  }
  try {
    const std::unique_ptr<PdfDocument> next = test::NewPdfDocument();
    next->LoadFromFile(other);
    return kOtherFilesStayReadable ? 7 : 3;
  } catch (const Error& error) {
    return error.File() == other && !kOtherFilesStayReadable ? 7 : 4;
  }
}

TEST_F(PdfHostile, LoadFromFile_Should_ComeBack_When_PagesGoRoundInCircles) {
  std::string circle = Sample();
  circle.replace(circle.find("/Kids [4 0 R"), 12, "/Kids [2 0 R");
  const std::string file = Folder().Write("circle.pdf", circle);
  const std::string other = Folder().Write("other.pdf", Sample());
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_EXIT(std::exit(ReadACircle(file, other)), testing::ExitedWithCode(7), "");
}

TEST_F(PdfHostile, Document_Should_Survive_When_TheCountOfPagesIsWrong) {
  for (const char* count : {"/Count 9", "/Count 0", "/Count -"}) {
    std::string bytes = Sample();
    bytes.replace(bytes.find("/Count 2"), 8, count);
    Survive(bytes);
  }
}

/// A file made for reading from a server says where its first page ends; cut before that place, the
/// engine would wait for bytes that never come.
TEST_F(PdfHostile, LoadFromFile_Should_NotWaitForEver_When_ALinearizedFileIsCut) {
  const std::string sample =
      "%PDF-1.4\n1 0 obj\n<< /Linearized 1 /L 99999 /H [700 100] /O 4 /E 90000 /N 2 /T 99000 >>\n"
      "endobj\n" +
      Sample().substr(9);
  Survive(sample);
  std::string padded = sample;
  const std::string length = std::to_string(sample.size());
  padded.replace(padded.find("99999"), 5, std::string(5 - length.size(), '0') + length);
  Survive(padded);
  for (size_t cut = 100; cut < padded.size(); cut += 50) Survive(padded.substr(0, cut));
}

TEST_F(PdfHostile, Document_Should_Survive_When_ContentNestsDeeply) {
  std::string content;
  for (int i = 0; i < 20000; ++i) content += "q ";
  content += std::string(20000, '[');
  OpenPages({{"0 0 72 72", content}});
  EXPECT_EQ(Export(0, 1).Width(), 100);
}

TEST_F(PdfHostile, Document_Should_Survive_When_TheFileShrinksWhileItIsOpen) {
  Open(Sample());
  Folder().Write("test.pdf", std::string("%PDF-1.4"));
  TBitmap bitmap;
  bool drawn = false;
  try {
    drawn = Document().ExportPage(1, 1, PdfRotation::none, bitmap);
    EXPECT_TRUE(drawn);
  } catch (const Error& error) {
    EXPECT_NE(error.Reason(), "");
    EXPECT_EQ(error.File(), Folder() / "test.pdf");
  }
  // The page as it was, or no page.
  EXPECT_EQ(bitmap.Width(), drawn ? 69 : 0);
  EXPECT_EQ(bitmap.Height(), drawn ? 69 : 0);
  // The next document is drawn as usual.
  Open(Sample());
  EXPECT_EQ(Export(0, 1).Width(), 139);
}

}  // namespace
}  // namespace rasterkit
