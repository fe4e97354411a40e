#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <rasterkit/graphics/pdf_document.h>

#include "tests/support/test_pictures.h"

namespace rasterkit::test {

/// What fake documents do, and the recorded calls.
struct PdfScript {
  /// For every opened file; a page of 72 x 36 points has 150 x 75 pixels at 150 dpi.
  std::vector<PdfPageSize> pages{{72, 36}};
  /// Replaces the drawing: returns false for a failed export, or throws.
  std::function<bool(const PdfDocument::PdfKeepGoing& keepGoing)> onExport;
  std::function<void(const std::string& fileName)> onLoad;
  std::function<void(int index)> onPageSize;
  /// How often a page asks whether to go on, every 5 ms.
  int patience = 0;

  int documents = 0;
  std::vector<std::string> loads;
  struct Export {
    int index;
    double scale;
    PdfRotation rotation;
  };
  std::vector<Export> exports;
};

/// What the fake draws: a gradient, with the page's number in its first pixel.
inline TBitmap PdfPicture(int index, double scale, const PdfPageSize& size = {72, 36}) {
  const PdfPixels pixels = PdfPagePixels(size, scale);
  TBitmap bitmap =
      GradientBitmap(pf24bit, static_cast<int>(pixels.width), static_cast<int>(pixels.height));
  bitmap.ScanLine(0)[0] = static_cast<uint8_t>(200 + index);
  return bitmap;
}

class FakePdf : public PdfDocument {
 public:
  explicit FakePdf(PdfScript& script) : script_(script) { ++script_.documents; }

  void LoadFromFile(const std::string& fileName, const std::string&) override {
    script_.loads.push_back(fileName);
    isOpen_ = false;
    if (script_.onLoad) script_.onLoad(fileName);
    isOpen_ = true;
  }
  int PageCount() const override { return isOpen_ ? static_cast<int>(script_.pages.size()) : 0; }
  PdfPageSize PageSize(int index) const override {
    if (index < 0 || index >= PageCount()) throw RangeError("no such page");
    if (script_.onPageSize) script_.onPageSize(index);
    return script_.pages[static_cast<size_t>(index)];
  }
  bool ExportPage(int index, double scale, PdfRotation rotation, TBitmap& bitmap,
                  const PdfKeepGoing& keepGoing) override {
    script_.exports.push_back({index, scale, rotation});
    const PdfPageSize size = PageSize(index);
    if (script_.onExport && !script_.onExport(keepGoing)) return false;
    for (int i = 0; i < script_.patience; ++i) {
      if (!keepGoing()) return false;
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    bitmap = PdfPicture(index, scale, size);
    bitmap.SetTransparent(true);
    return true;
  }

 private:
  PdfScript& script_;
  bool isOpen_ = false;
};

/// While it lives, every PDF file is a fake document.
class FakePdfPort {
 public:
  explicit FakePdfPort(PdfScript& script) : before_(PdfDocumentFactory()) {
    PdfDocumentFactory() = [&script] { return std::make_unique<FakePdf>(script); };
  }
  ~FakePdfPort() { PdfDocumentFactory() = before_; }
  FakePdfPort(const FakePdfPort&) = delete;
  FakePdfPort& operator=(const FakePdfPort&) = delete;

 private:
  PdfDocumentMaker before_;
};

}  // namespace rasterkit::test
