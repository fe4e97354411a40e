#pragma once

#include <QImage>
#include <QPdfDocument>
#include <atomic>
#include <memory>
#include <optional>
#include <string>

#include <rasterkit/graphics/pdf_document.h>
#include <rasterkit/qt/pdf/stream_device.h>

namespace rasterkit {

/// Qt PDF with one open file. Must be created, used and destroyed on one thread. Throws the errors
/// of PdfDocument without the file name.
class PdfEngine {
 public:
  /// Opens a file and returns its number of pages.
  int Open(const std::string& fileName, const std::string& password);
  /// The same with the bytes of a stream that can be read at any position.
  int Open(const std::shared_ptr<TStream>& stream, const std::string& password);
  PdfPageSize PageSize(int index) const;
  /// Draws the page on a transparent background, ARGB with four bytes per pixel, with
  /// PdfPagePixels(PageSize(index), scale, rotation) pixels. The size must have passed
  /// RequirePdfPage.
  QImage Render(int index, double scale, PdfRotation rotation) const;
  /// Draws the page on white; returns nothing if `givenUp` became true. The size must have passed
  /// RequirePdfPage.
  std::optional<TBitmap> Draw(int index, double scale, PdfRotation rotation,
                              const std::atomic<bool>& givenUp) const;

 private:
  void Load(const std::shared_ptr<TStream>& stream, const std::string& password);

  /// Read by the document until the document is destroyed.
  std::unique_ptr<StreamDevice> device_;
  std::unique_ptr<QPdfDocument> document_;
};

}  // namespace rasterkit
