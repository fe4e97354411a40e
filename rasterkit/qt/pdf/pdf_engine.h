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

/// The drawing component with one file. Everything here, its creation and end included, belongs to
/// one thread. Errors are those of PdfDocument, without the name of the file.
class PdfEngine {
 public:
  /// Opens a file and returns the number of its pages.
  int Open(const std::string& fileName, const std::string& password);
  PdfPageSize PageSize(int index) const;
  /// The page on white, or nothing when `givenUp` became true. The pixels must have passed
  /// RequirePdfPage.
  std::optional<TBitmap> Draw(int index, double scale, PdfRotation rotation,
                              const std::atomic<bool>& givenUp) const;

 private:
  void Load(const std::shared_ptr<TStream>& stream, const std::string& password);
  QImage Render(int index, QSize size, PdfRotation rotation) const;

  /// The document reads from it until its own end.
  std::unique_ptr<StreamDevice> device_;
  std::unique_ptr<QPdfDocument> document_;
};

}  // namespace rasterkit
