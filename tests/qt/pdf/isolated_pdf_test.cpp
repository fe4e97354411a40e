#include <csignal>
#include <fstream>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <sys/wait.h>

#include <rasterkit/runtime/error_class.h>
#include <rasterkit/runtime/limits.h>

#include "tests/qt/pdf/pdf_fixture.h"
#include "tests/runtime/worker/child_count.h"
#include "tests/support/corpus.h"
#include "tests/support/memory_limit.h"
#include "tests/support/same_pixels.h"
#include "tests/support/sanitizers.h"

namespace rasterkit {
namespace {

using testing::HasSubstr;

class IsolatedPdf : public test::PdfTest {
 protected:
  /// A page that no engine finishes within a day.
  void OpenFlood() {
    std::string content;
    for (int i = 0; i < 200000; ++i) {
      content += "0 0 m 700 10 10 700 720 720 c 3 700 700 3 0 0 c B* ";
    }
    OpenPages({{"0 0 720 720", content}, {"0 0 72 72", test::PdfRectangle("1 0 0", 0, 0, 72, 72)}});
  }

  bool CanDrawPageTwo() { return Export(1, 1).PixelColor(50, 50) == 0x0000FFu; }

  /// What `ExportPage` of page 1 throws.
  template <class Expected>
  std::string DrawError() {
    TBitmap bitmap;
    bitmap.SetSize(3, 2);
    try {
      Document().ExportPage(0, 1, PdfRotation::none, bitmap);
    } catch (const Expected& error) {
      EXPECT_EQ(error.File(), Folder() / "test.pdf");
      EXPECT_EQ(bitmap.Width(), 3);
      return error.Reason();
    }
    return "no error";
  }
};

/// Few bytes that mean 10 to the power of 12 forms; the engine throws where nothing can catch it.
TEST_F(IsolatedPdf, ExportPage_Should_NameTheLimit_When_FormsNestForEver) {
  if (test::IsSanitized()) GTEST_SKIP() << "memory is not limited";
  const test::MemoryLimit limit(64 << 20);
  Open(test::NestedFormsPdf(12, 10));
  EXPECT_EQ(DrawError<LimitError>(),
            "PDF: reading the file takes more memory than the limit of 64 MiB");
  EXPECT_EQ(Document().PageCount(), 1);
}

TEST_F(IsolatedPdf, ExportPage_Should_End_When_TheTimeIsOver) {
  OpenFlood();
  Limits limits;
  limits.seconds = 0.2;
  {
    const LimitsScope scope(limits);
    EXPECT_THAT(DrawError<TimeLimitError>(), HasSubstr("0.2 seconds"));
  }
  EXPECT_TRUE(CanDrawPageTwo());
}

TEST_F(IsolatedPdf, ExportPage_Should_LeaveNoProcess_When_Canceled) {
  OpenFlood();
  TBitmap bitmap;
  int questions = 0;
  EXPECT_FALSE(
      Document().ExportPage(0, 10, PdfRotation::none, bitmap, [&] { return ++questions < 3; }));
  EXPECT_TRUE(test::HasNoChildrenSoon());
  EXPECT_TRUE(CanDrawPageTwo());
}

TEST_F(IsolatedPdf, ExportPage_Should_SayThatReadingEnded_When_TheProcessIsKilled) {
  OpenFlood();
  TBitmap bitmap;
  const auto kill = [] {
    for (const int child : test::Children()) ::kill(child, SIGSEGV);
    return true;
  };
  try {
    Document().ExportPage(0, 1, PdfRotation::none, bitmap, kill);
    ADD_FAILURE() << "no error";
  } catch (const FormatError& error) {
    EXPECT_EQ(error.File(), Folder() / "test.pdf");
    EXPECT_EQ(error.Reason(),
              "PDF: the file is damaged: reading it ended in an invalid memory access");
  }
  EXPECT_TRUE(CanDrawPageTwo());
}

TEST_F(IsolatedPdf, ExportPage_Should_StartAnotherProcess_When_AnIdleOneIsGone) {
  OpenPages({{}, {"0 0 72 72", test::PdfRectangle("1 0 0", 0, 0, 72, 72)}});
  test::EndChildren(SIGKILL);
  EXPECT_TRUE(CanDrawPageTwo());
}

TEST_F(IsolatedPdf, Documents_Should_AllWork_When_200AreOpen) {
  const std::string file = Folder().Write("one.pdf", test::PdfText({{"0 0 72 72"}}));
  std::vector<std::unique_ptr<PdfDocument>> documents;
  for (int i = 0; i < 200; ++i) {
    documents.push_back(test::NewPdfDocument());
    documents.back()->LoadFromFile(file);
    EXPECT_TRUE(test::HasAtMostChildrenSoon(std::max(std::thread::hardware_concurrency(), 1u)));
  }
  for (const auto& document : documents) {
    TBitmap page;
    EXPECT_TRUE(document->ExportPage(0, 0.1, PdfRotation::none, page));
  }
}

TEST_F(IsolatedPdf, Documents_Should_LeaveNothing_When_Closed) {
  const std::string file = Folder().Write("one.pdf", test::PdfText({{"0 0 72 72"}}));
  const std::string bad = Folder().Write("bad.pdf", "%PDF-1.7");
  const size_t files = test::OpenFiles();
  for (int i = 0; i < 20; ++i) {
    const auto document = test::NewPdfDocument();
    EXPECT_THROW(document->LoadFromFile(bad), FormatError);
    document->LoadFromFile(file);
    TBitmap page;
    EXPECT_TRUE(document->ExportPage(0, 1, PdfRotation::none, page));
    document->ExportPage(0, 1, PdfRotation::none, page, [] { return false; });
  }
  EXPECT_TRUE(test::HasNoChildrenSoon());
  EXPECT_EQ(test::OpenFiles(), files);
}

/// The system then forgets children at once.
int DrawWithoutChildSignals(const std::string& file) {
  std::signal(SIGCHLD, SIG_IGN);
  const auto document = test::NewPdfDocument();
  document->LoadFromFile(file);
  TBitmap page;
  if (!document->ExportPage(0, 1, PdfRotation::none, page)) return 1;
  test::EndChildren(SIGSEGV);
  if (!document->ExportPage(0, 1, PdfRotation::none, page)) return 2;
  return 7;
}

TEST_F(IsolatedPdf, Document_Should_Work_When_TheHostIgnoresSigchld) {
  const std::string file = Folder().Write("one.pdf", test::PdfText({{"0 0 72 72"}}));
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_EXIT(std::exit(DrawWithoutChildSignals(file)), testing::ExitedWithCode(7), "");
}

/// Ends in the middle of a page that takes forever, and leaves the number of its worker behind.
[[noreturn]] void EndWhileDrawing(const std::string& pdf, const std::string& numberFile) {
  const auto document = test::NewPdfDocument();
  document->LoadFromFile(pdf);
  TBitmap page;
  document->ExportPage(0, 10, PdfRotation::none, page, [&]() -> bool {
    std::ofstream(numberFile) << test::Children().at(0);
    _exit(7);
  });
  _exit(1);
}

TEST_F(IsolatedPdf, Worker_Should_End_When_TheHostIsGone) {
  OpenFlood();
  // The other process runs this test from its beginning and has a folder of its own.
  constexpr const char* kName = "RASTERKIT_TEST_NUMBER_FILE";
  setenv(kName, (Folder() / "number").c_str(), 0);
  const std::string numberFile = getenv(kName);
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_EXIT(EndWhileDrawing(Folder() / "test.pdf", numberFile), testing::ExitedWithCode(7), "");
  unsetenv(kName);
  int worker = 0;
  std::ifstream(numberFile) >> worker;
  ASSERT_GT(worker, 0);
  while (test::IsRunning(worker)) usleep(10000);
}

/// A host that collects every child that it sees.
int DrawWhileChildrenAreCollected(const std::string& file) {
  std::signal(SIGCHLD, [](int) {
    while (waitpid(-1, nullptr, WNOHANG) > 0) {
    }
  });
  for (int i = 0; i < 5; ++i) {
    const auto document = test::NewPdfDocument();
    document->LoadFromFile(file);
    TBitmap page;
    if (!document->ExportPage(0, 1, PdfRotation::none, page)) return 1;
  }
  return 7;
}

TEST_F(IsolatedPdf, Document_Should_Work_When_TheHostCollectsEveryChild) {
  const std::string file = Folder().Write("one.pdf", test::PdfText({{"0 0 72 72"}}));
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_EXIT(std::exit(DrawWhileChildrenAreCollected(file)), testing::ExitedWithCode(7), "");
}

TEST_F(IsolatedPdf, CreatePdfDocument_Should_NameThePath_When_ThereIsNoWorker) {
  rasterkit::detail::SetWorkerProgram("/nowhere/rasterkit-worker");
  try {
    CreatePdfDocument();
    ADD_FAILURE() << "no error";
  } catch (const PdfComponentError& error) {
    EXPECT_EQ(error.Reason(),
              "the component for PDF files is not installed: there is no "
              "/nowhere/rasterkit-worker");
  }
  rasterkit::detail::SetWorkerProgram(RASTERKIT_WORKER_FILE);
}

TEST_F(IsolatedPdf, ExportPage_Should_GiveTheSamePixels_When_DrawnInThisProcess) {
  OpenPages({{"0 0 300 200",
              "BT /F1 40 Tf 5 50 Td (Isolated) Tj ET 0.2 0.5 1 rg 10 10 90.5 30.25 re f "
              "0 0 m 300 200 l S"}});
  QtPdfDocument inProcess;
  inProcess.LoadFromFile(Folder() / "test.pdf", "");
  for (const double scale : {0.3, 1.0, 7.7}) {
    TBitmap expected;
    ASSERT_TRUE(inProcess.ExportPage(0, scale, PdfRotation::clockwise90, expected, {}));
    const TBitmap isolated = Export(0, scale, PdfRotation::clockwise90);
    EXPECT_TRUE(test::SamePixels(expected, isolated)) << scale;
    EXPECT_EQ(expected.Dpi(), isolated.Dpi());
    EXPECT_EQ(expected.PixelFormat(), isolated.PixelFormat());
  }
}

/// What drawing the first page gives, or the error.
std::string Outcome(PdfDocument& document, const std::string& file, TBitmap& page) {
  try {
    document.LoadFromFile(file);
    const PdfPageSize size = document.PageSize(0);
    document.ExportPage(0, 0.4, PdfRotation::none, page);
    return fmt::format("{} pages, {} x {}", document.PageCount(), size.width, size.height);
  } catch (const std::exception& error) {
    return std::string(ErrorClassName(error)) + " " + error.what();
  }
}

TEST_F(IsolatedPdf, EveryFile_Should_GiveTheSame_When_ReadInThisProcess) {
  if (test::CorpusFolder().empty()) GTEST_SKIP() << "no corpus";
  QtPdfDocument inProcess;
  for (const auto& entry : test::CorpusEntries("pdf")) {
    const std::string file = (test::CorpusFolder() / entry.at("path")).string();
    TBitmap expected, isolated;
    EXPECT_EQ(Outcome(Document(), file, isolated), Outcome(inProcess, file, expected));
    EXPECT_TRUE(test::SamePixels(expected, isolated)) << file;
  }
}

}  // namespace
}  // namespace rasterkit
