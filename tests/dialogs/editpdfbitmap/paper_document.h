#pragma once

#include <chrono>
#include <memory>
#include <string>
#include <thread>

#include <rasterkit/host/graphics/canvas.h>
#include <rasterkit/host/graphics/pdf_document.h>

/// Documents of pages drawn by rule, for windows that show them.
namespace rasterkit::test {

/// What the documents of a test are like.
struct Paper {
  int pages = 3;
  /// Points; 2 by 3 inches.
  PdfPageSize size{144, 216};
  /// How often a page asks whether to go on, every 5 ms.
  int patience = 0;
  /// Pages that were asked for so far.
  int exports = 0;
};

/// White, with a black square whose side grows with the page's number; so no two pages are alike,
/// and none is like its mirror image.
inline void DrawPaper(TBitmap& bitmap, const PdfPixels& pixels, int page) {
  bitmap.ResetPixels(pf24bit, static_cast<int>(pixels.width), static_cast<int>(pixels.height));
  TCanvas& canvas = bitmap.Canvas();
  canvas.Brush.Color = RGB(255, 255, 255);
  canvas.FillRect({0, 0, bitmap.Width(), bitmap.Height()});
  canvas.Brush.Color = RGB(200, 30, 60);
  const int side = bitmap.Width() / 8 * page;
  canvas.FillRect({5, 9, 5 + side, 9 + side});
}

class PaperDocument : public PdfDocument {
 public:
  explicit PaperDocument(Paper& paper) : paper_(paper) {}

  void LoadFromFile(const std::string& fileName, const std::string&) override {
    if (fileName.find("damaged") != std::string::npos) {
      throw FormatError("the file is damaged: " + fileName);
    }
    isOpen_ = true;
  }
  int PageCount() const override { return isOpen_ ? paper_.pages : 0; }
  PdfPageSize PageSize(int) const override { return paper_.size; }
  bool ExportPage(int index, double scale, PdfRotation rotation, TBitmap& bitmap,
                  const PdfKeepGoing& keepGoing) override {
    ++paper_.exports;
    for (int i = 0; i < paper_.patience; ++i) {
      if (!keepGoing()) return false;
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    DrawPaper(bitmap, PdfPagePixels(paper_.size, scale, rotation), index + 1);
    return true;
  }

 private:
  Paper& paper_;
  bool isOpen_ = false;
};

/// For as long as it lives, PDF files are such documents.
class PaperPort {
 public:
  explicit PaperPort(Paper& paper) : before_(PdfDocumentFactory()) {
    PdfDocumentFactory() = [&paper] { return std::make_unique<PaperDocument>(paper); };
  }
  ~PaperPort() { PdfDocumentFactory() = before_; }
  PaperPort(const PaperPort&) = delete;
  PaperPort& operator=(const PaperPort&) = delete;

 private:
  PdfDocumentMaker before_;
};

}  // namespace rasterkit::test
