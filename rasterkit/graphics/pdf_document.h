#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/export.h>

/// PDF files, behind a port: what draws their pages is a large component that a host need not have.
/// librasterkit-pdf fills the factory (see <rasterkit/qt/pdf/qt_pdf.h>); without it the factory is
/// empty.
namespace rasterkit {

/// The file is encrypted: no password was given and it does not open without one, or the wrong one
/// was given; the text says which.
class RASTERKIT_EXPORT PdfPasswordError : public Error {
 public:
  using Error::Error;
};

/// A page as a reader sees it, its own turn included, in points: 72 are an inch.
struct PdfPageSize {
  double width = 0, height = 0;
};

/// A turn on top of the page's own.
enum class PdfRotation { none, clockwise90, clockwise180, clockwise270 };

/// An opened PDF file.
///
/// Belongs to one thread at a time, and a call from inside `PdfKeepGoing` is refused with an
/// `Error`. Pages are counted from 0. Every error names the file.
class RASTERKIT_EXPORT PdfDocument {
 public:
  /// Asked on the calling thread about every 10 ms while a call waits, the place to turn an event
  /// loop; false gives the work up. What it throws comes out of the call that asked.
  using PdfKeepGoing = std::function<bool()>;

  virtual ~PdfDocument();

  /// Opens a file in place of the one before. `password` is that of the reader or of the owner; a
  /// file without one takes any.
  ///
  /// Throws FileError when the file cannot be read; FormatError when it is empty, is no PDF, is
  /// damaged beyond use or has no page; PdfPasswordError; UnsupportedError for a protection that
  /// is not known. There are no pages then.
  virtual void LoadFromFile(const std::string& fileName, const std::string& password = {}) = 0;

  /// 0 while nothing is open.
  virtual int PageCount() const = 0;

  /// Throws RangeError when there is no such page, FormatError when it is damaged. What a file
  /// states is given as it is: it may be absurdly large or small.
  virtual PdfPageSize PageSize(int index) const = 0;

  /// Draws a page with its annotations on white into `bitmap`, which becomes 24-bit with
  /// `PdfPagePixels(PageSize(index), scale, rotation)` pixels, the resolution
  /// `PdfResolution(scale)` and `Transparent` off. At scale 1 there are 100 pixels to the inch.
  ///
  /// False when `keepGoing` gave the work up. Then and after an error `bitmap` is as it was. What
  /// was given up may go on unseen; the next call waits for its end.
  ///
  /// Throws RangeError when there is no such page or when `scale` is no number above 0; FormatError
  /// when the page is damaged; LimitError, before anything is drawn, when the page would be too
  /// large (see RequirePdfPage); std::bad_alloc when the system has no memory.
  virtual bool ExportPage(int index, double scale, PdfRotation rotation, TBitmap& bitmap,
                          const PdfKeepGoing& keepGoing = {}) = 0;
};

/// Makes documents; empty when this process has nothing that draws PDF pages. Set it before the
/// first call that uses it.
using PdfDocumentMaker = std::function<std::unique_ptr<PdfDocument>()>;
RASTERKIT_EXPORT PdfDocumentMaker& PdfDocumentFactory();

/// A document with nothing open. Throws UnsupportedError when the factory is empty.
RASTERKIT_EXPORT std::unique_ptr<PdfDocument> CreatePdfDocument();

/// What a drawn page takes.
struct PdfPixels {
  /// Each at least 1; as doubles, because a file may state a page of any size. Not finite when the
  /// page's size is not.
  double width = 1, height = 1;
  /// Memory while it is drawn, four bytes a pixel; the finished bitmap takes three quarters of it.
  double Bytes() const { return width * height * 4; }
};

/// Points times scale times 100 / 72, to the nearest pixel and a half up; turned by a quarter,
/// width and height change places. At scale 1.5 an inch is 150 pixels.
RASTERKIT_EXPORT PdfPixels PdfPagePixels(const PdfPageSize& page, double scale,
                                         PdfRotation rotation = PdfRotation::none);

/// Dots an inch at a scale: 100 times it, and whole where it was made from a whole number (0.29
/// becomes 29, not 28.999...96).
RASTERKIT_EXPORT double PdfResolution(double scale);

/// The most pixels in one direction: beyond it the drawing engine leaves out lines and shapes
/// without a word.
constexpr int kMostPdfPixels = 32000;

/// Throws LimitError, naming pixels and memory, for a page that cannot be drawn: more than
/// `kMostPdfPixels` in one direction, more memory than PictureMemoryLimit, or a size that is no
/// number above 0.
RASTERKIT_EXPORT void RequirePdfPage(const PdfPageSize& page, double scale,
                                     PdfRotation rotation = PdfRotation::none);

}  // namespace rasterkit
