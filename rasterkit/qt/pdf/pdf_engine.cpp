#include <algorithm>
#include <array>
#include <new>
#include <span>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include <rasterkit/codecs/codec_table.h>
#include <rasterkit/qt/pdf/pdf_engine.h>
#include <rasterkit/raster/white_paper.h>
#include <rasterkit/runtime/memory/page_release.h>

namespace rasterkit {
namespace {

/// Rows between two cancellation checks, and between two releases of memory to the system.
constexpr int kRowsAtOnce = 64;

/// A pipe has no size and cannot be read twice: its bytes are kept in memory.
std::unique_ptr<TStream> OpenStream(const std::string& fileName) {
  auto file = std::make_unique<TFileStream>(fileName);
  if (file->Size() > 0) return file;
  return std::make_unique<TMemoryStream>(file->ReadToEnd());
}

bool HasPdfMark(TStream& stream) {
  std::array<uint8_t, kSignatureBytes> start;
  stream.SetPosition(0);
  const size_t read = stream.Read(start);
  return FindCodec(PictureType::pdf)->matches(std::span(start).first(read));
}

[[noreturn]] void ThrowLoadError(QPdfDocument::Error error, bool hasPassword, bool hasMark) {
  switch (error) {
    case QPdfDocument::Error::IncorrectPassword:
      throw PdfPasswordError(hasPassword ? "PDF: the password is wrong"
                                         : "PDF: the file is encrypted and needs a password");
    case QPdfDocument::Error::UnsupportedSecurityScheme:
      throw UnsupportedError("PDF: unsupported encryption");
    default:
      throw FormatError(hasMark ? "PDF: the file is damaged" : "PDF: the file is not a PDF file");
  }
}

QPdfDocumentRenderOptions Options(PdfRotation rotation) {
  using Rotation = QPdfDocumentRenderOptions::Rotation;
  constexpr Rotation kRotations[] = {Rotation::None, Rotation::Clockwise90, Rotation::Clockwise180,
                                     Rotation::Clockwise270};
  QPdfDocumentRenderOptions options;
  options.setRotation(kRotations[static_cast<int>(rotation)]);
  // Stamps, filled-in forms and notes are part of the visible page.
  options.setRenderFlags(QPdfDocumentRenderOptions::RenderFlag::Annotations);
  return options;
}

void PutRowsOnWhite(const QImage& image, int first, int last, Raster& raster) {
  const auto width = static_cast<size_t>(image.width());
  for (int y = first; y < last; ++y) {
    uint8_t* row = raster.Row(y);
    PutOnWhite(image.constScanLine(y), width, row);
    std::fill(row + 3 * width, row + raster.Stride(), uint8_t{0});
  }
}

/// The engine's picture of four bytes per pixel shrinks while the raster of three grows, so that
/// both together never need more than the former. This requires rows that have not been written
/// yet.
bool MoveOntoWhite(QImage& image, const std::atomic<bool>& givenUp, Raster& raster) {
  uint8_t* const data = image.bits();
  const auto rowBytes = static_cast<size_t>(image.bytesPerLine());
  size_t released = 0;
  for (int y = 0; y < image.height(); y += kRowsAtOnce) {
    if (givenUp) return false;
    const int end = std::min(y + kRowsAtOnce, image.height());
    PutRowsOnWhite(image, y, end, raster);
    const size_t done = static_cast<size_t>(end) * rowBytes;
    ReleasePages(data + released, done - released);
    released = done;
  }
  return true;
}

Raster FreshRows(QSize size) {
  try {
    return {pf24bit, size.width(), size.height()};
  } catch (const LimitError&) {
    // The memory budget was checked before, so the system is out of memory.
    throw std::bad_alloc();
  }
}

}  // namespace

int PdfEngine::Open(const std::string& fileName, const std::string& password) {
  return Open(std::shared_ptr<TStream>(OpenStream(fileName)), password);
}

int PdfEngine::Open(const std::shared_ptr<TStream>& stream, const std::string& password) {
  if (stream->Size() == 0) throw FormatError("PDF: the file is empty");
  const bool hasMark = HasPdfMark(*stream);
  Load(stream, password);
  if (document_->error() == QPdfDocument::Error::IncorrectPassword && !password.empty()) {
    Load(stream, {});
  }
  // The engine reports no error for a file whose pages cannot be counted; for a file whose first
  // page is damaged it only sets the status.
  const auto error = document_->error();
  const bool isReady = document_->status() == QPdfDocument::Status::Ready;
  const int pages = document_->pageCount();
  if (isReady && error == QPdfDocument::Error::None && pages > 0) return pages;
  if (pages == 0 && error == QPdfDocument::Error::None && hasMark) {
    throw FormatError("PDF: the file has no pages");
  }
  ThrowLoadError(error, !password.empty(), hasMark);
}

void PdfEngine::Load(const std::shared_ptr<TStream>& stream, const std::string& password) {
  document_.reset();
  device_ = std::make_unique<StreamDevice>(stream);
  document_ = std::make_unique<QPdfDocument>();
  document_->setPassword(QString::fromStdString(password));
  document_->load(device_.get());
}

PdfPageSize PdfEngine::PageSize(int index) const {
  const QSizeF size = document_->pagePointSize(index);
  // The engine's answer for a page that is missing in the file.
  if (size == QSizeF()) throw FormatError(fmt::format("PDF: page {} is damaged", index + 1));
  return {size.width(), size.height()};
}

QImage PdfEngine::Render(int index, double scale, PdfRotation rotation) const {
  const PdfPixels pixels = PdfPagePixels(PageSize(index), scale, rotation);
  const QSize size(static_cast<int>(pixels.width), static_cast<int>(pixels.height));
  // The engine's answer does not tell whether it was out of memory.
  if (QImage(size, QImage::Format_ARGB32).isNull()) throw std::bad_alloc();
  QImage image = document_->render(index, size, Options(rotation));
  if (image.isNull()) throw FormatError(fmt::format("PDF: page {} is damaged", index + 1));
  if (image.format() == QImage::Format_ARGB32) return image;
  return std::move(image).convertToFormat(QImage::Format_ARGB32);
}

std::optional<TBitmap> PdfEngine::Draw(int index, double scale, PdfRotation rotation,
                                       const std::atomic<bool>& givenUp) const {
  if (givenUp) return std::nullopt;
  QImage image = Render(index, scale, rotation);
  if (givenUp) return std::nullopt;
  Raster raster = FreshRows(image.size());
  if (!MoveOntoWhite(image, givenUp, raster)) return std::nullopt;
  raster.resolution = {PdfResolution(scale), PdfResolution(scale)};
  return TBitmap(std::move(raster));
}

}  // namespace rasterkit
