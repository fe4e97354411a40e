#include <cmath>
#include <thread>

#include <sys/stat.h>

#include <rasterkit/qt/pdf/qt_pdf.h>

#include "tests/qt/pdf/pdf_fixture.h"

namespace rasterkit {
namespace {

using test::EncryptedPdf;
using test::PdfReader;

class PdfLoading : public test::PdfTest {};

#ifndef RASTERKIT_WORKER_FILE
TEST_F(PdfLoading, UseQtPdfInProcess_Should_FillTheFactory_When_Called) {
  const PdfDocumentMaker before = PdfDocumentFactory();
  UseQtPdfInProcess();
  EXPECT_NE(dynamic_cast<QtPdfDocument*>(CreatePdfDocument().get()), nullptr);
  PdfDocumentFactory() = nullptr;
  RasterkitUseQtPdfInProcess();
  EXPECT_NE(dynamic_cast<QtPdfDocument*>(CreatePdfDocument().get()), nullptr);
  PdfDocumentFactory() = before;
}
#endif

TEST_F(PdfLoading, PageCount_Should_BeZero_When_NothingIsOpen) {
  EXPECT_EQ(Document().PageCount(), 0);
  EXPECT_THROW(Document().PageSize(0), RangeError);
}

TEST_F(PdfLoading, PageCount_Should_CountThePages_When_OpenedOneAfterTheOther) {
  EXPECT_EQ(OpenPages({{}}).PageCount(), 1);
  EXPECT_EQ(OpenPages({{}, {}, {}}).PageCount(), 3);
}

TEST_F(PdfLoading, PageSize_Should_BeInPoints_When_PagesDiffer) {
  OpenPages({{"0 0 595.276 841.89"}, {"0 0 100 50"}, {"0 0 3370.39 2383.94"}});
  EXPECT_NEAR(Document().PageSize(0).width, 595.276, 1e-4);
  EXPECT_NEAR(Document().PageSize(0).height, 841.89, 1e-4);
  EXPECT_EQ(Document().PageSize(1).width, 100);
  EXPECT_EQ(Document().PageSize(1).height, 50);
  EXPECT_NEAR(Document().PageSize(2).width, 3370.39, 1e-3);
}

TEST_F(PdfLoading, PageSize_Should_IncludeTheTurn_When_PageIsTurned) {
  OpenPages({{"0 0 100 50", "", "", "/Rotate 90"},
             {"0 0 100 50", "", "", "/Rotate 180"},
             {"0 0 100 50", "", "", "/Rotate -90"}});
  EXPECT_EQ(Document().PageSize(0).width, 50);
  EXPECT_EQ(Document().PageSize(1).width, 100);
  EXPECT_EQ(Document().PageSize(2).width, 50);
}

TEST_F(PdfLoading, PageSize_Should_BeThatOfTheCropBox_When_ThereIsOne) {
  OpenPages({{"-10 -20 90 130", "", "0 0 72 36"}, {"100 200 172 344"}});
  EXPECT_EQ(Document().PageSize(0).width, 72);
  EXPECT_EQ(Document().PageSize(0).height, 36);
  EXPECT_EQ(Document().PageSize(1).width, 72);
  EXPECT_EQ(Document().PageSize(1).height, 144);
}

TEST_F(PdfLoading, PageSize_Should_Throw_When_ThereIsNoSuchPage) {
  OpenPages({{}});
  for (const int index : {-1, 1, 1000000}) {
    EXPECT_THROW(Document().PageSize(index), RangeError) << index;
    TBitmap bitmap;
    EXPECT_THROW(Document().ExportPage(index, 1, PdfRotation::none, bitmap), RangeError) << index;
  }
}

TEST_F(PdfLoading, LoadFromFile_Should_SayThatAPasswordIsNeeded_When_NoneIsGiven) {
  EXPECT_EQ(LoadError<PdfPasswordError>(EncryptedPdf(PdfReader::withPassword)),
            "PDF: the file is encrypted and needs a password");
}

TEST_F(PdfLoading, LoadFromFile_Should_SayThatThePasswordIsWrong_When_ItIs) {
  EXPECT_EQ(LoadError<PdfPasswordError>(EncryptedPdf(PdfReader::withPassword), "Secret"),
            "PDF: the password is wrong");
}

TEST_F(PdfLoading, LoadFromFile_Should_Decrypt_When_PasswordIsRightOrNotNeeded) {
  const auto upperLeftAndLowerLeft = [this] {
    const TBitmap page = Export(0, 0.72);
    return std::pair(page.PixelColor(1, 1), page.PixelColor(1, 70));
  };
  const std::pair<TColor, TColor> whiteAndRed = {0xFFFFFF, 0x0000FF};
  for (const char* password : {"secret", "owner"}) {
    Open(EncryptedPdf(PdfReader::withPassword), password);
    EXPECT_EQ(upperLeftAndLowerLeft(), whiteAndRed) << password;
  }
  for (const char* password : {"", "owner", "any other"}) {
    Open(EncryptedPdf(PdfReader::anybody), password);
    EXPECT_EQ(upperLeftAndLowerLeft(), whiteAndRed) << password;
  }
  Open(test::PdfText({{}}), "not needed");
}

TEST_F(PdfLoading, LoadFromFile_Should_SayUnsupported_When_ProtectionIsUnknown) {
  std::string bytes = EncryptedPdf(PdfReader::withPassword);
  bytes.replace(bytes.find("/Filter /Standard"), 17, "/Filter /Strange1");
  EXPECT_EQ(LoadError<UnsupportedError>(bytes), "PDF: unsupported encryption");
}

TEST_F(PdfLoading, LoadFromFile_Should_TellEmptyDamagedAndForeignApart_When_FileIsNone) {
  EXPECT_EQ(LoadError<FormatError>(""), "PDF: the file is empty");
  EXPECT_EQ(LoadError<FormatError>("\x89PNG\r\n\x1a\n"), "PDF: the file is not a PDF file");
  EXPECT_EQ(LoadError<FormatError>("x"), "PDF: the file is not a PDF file");
  EXPECT_EQ(LoadError<FormatError>("%PDF-1.7\nand nothing else"), "PDF: the file is damaged");
  EXPECT_EQ(LoadError<FormatError>(test::PdfText({})), "PDF: the file has no pages");
}

TEST_F(PdfLoading, LoadFromFile_Should_ThrowFileError_When_FileCannotBeRead) {
  EXPECT_THROW(Document().LoadFromFile(Folder() / "missing.pdf"), FileError);
  EXPECT_THROW(Document().LoadFromFile(Folder().Path().string()), FileError);
}

TEST_F(PdfLoading, LoadFromFile_Should_LeaveNoPages_When_TheNextFileIsBad) {
  OpenPages({{}, {}});
  EXPECT_EQ(LoadError<FormatError>("no PDF"), "PDF: the file is not a PDF file");
  EXPECT_THROW(Document().PageSize(0), RangeError);
  EXPECT_EQ(OpenPages({{}}).PageCount(), 1);
}

TEST_F(PdfLoading, LoadFromFile_Should_TakeAnyName_When_ItIsNoValidText) {
  const std::string file = Folder().Write("pl\xE4n \xF0\x9F\x97\xBA.PDF", test::PdfText({{}}));
  Document().LoadFromFile(file);
  EXPECT_EQ(Document().PageCount(), 1);
}

TEST_F(PdfLoading, LoadFromFile_Should_ReadToTheEnd_When_FileIsAPipe) {
  const std::string pipe = Folder() / "pipe";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  std::thread writer([&] { std::ofstream(pipe, std::ios::binary) << test::PdfText({{}, {}}); });
  Document().LoadFromFile(pipe);
  writer.join();
  EXPECT_EQ(Document().PageCount(), 2);
}

TEST_F(PdfLoading, LoadFromFile_Should_OverlookWhatComesBefore_When_MailPutLinesThere) {
  EXPECT_EQ(Open("Content-Type: application/pdf\r\n\r\n" + test::PdfText({{}})).PageCount(), 1);
}

}  // namespace
}  // namespace rasterkit
