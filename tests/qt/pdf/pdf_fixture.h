#pragma once

#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <rasterkit/graphics/pdf_document.h>
#include <rasterkit/qt/pdf/qt_pdf_document.h>
#include <rasterkit/runtime/worker/worker_program.h>

#include "tests/support/pdf_file.h"
#include "tests/support/temp_folder.h"

namespace rasterkit::test {

/// A document of the kind that this program tests.
inline std::unique_ptr<PdfDocument> NewPdfDocument() {
#ifdef RASTERKIT_WORKER_FILE
  rasterkit::detail::SetWorkerProgram(RASTERKIT_WORKER_FILE);
  return CreatePdfDocument();
#else
  return std::make_unique<QtPdfDocument>();
#endif
}

/// A folder for the files of one test, and the document that is tested.
class PdfTest : public testing::Test {
 protected:
  PdfDocument& Document() { return *document_; }
  const TempFolder& Folder() const { return folder_; }

  /// Writes the bytes and opens them.
  PdfDocument& Open(const std::string& bytes, const std::string& password = {}) {
    document_->LoadFromFile(folder_.Write("test.pdf", bytes), password);
    return *document_;
  }
  PdfDocument& OpenPages(const std::vector<PdfPageText>& pages) { return Open(PdfText(pages)); }

  /// The reason of the error of type `Expected` that opening the bytes throws.
  template <class Expected>
  std::string LoadError(const std::string& bytes, const std::string& password = {}) {
    const std::string file = folder_.Write("bad.pdf", bytes);
    try {
      document_->LoadFromFile(file, password);
    } catch (const Expected& error) {
      EXPECT_EQ(error.File(), file);
      EXPECT_EQ(document_->PageCount(), 0);
      return error.Reason();
    }
    return "no error";
  }

  TBitmap Export(int index, double scale, PdfRotation rotation = PdfRotation::none) {
    TBitmap bitmap;
    EXPECT_TRUE(document_->ExportPage(index, scale, rotation, bitmap));
    return bitmap;
  }

 private:
  TempFolder folder_;
  std::unique_ptr<PdfDocument> document_ = NewPdfDocument();
};

}  // namespace rasterkit::test
