#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/export.h>

/// PDF files. They are read and drawn in a worker process, a program that is installed with the
/// library: a file that crashes the drawing engine, blocks it or uses up its memory ends only that
/// process. A host may fill a factory instead, for example to draw in its own process (see
/// <rasterkit/qt/pdf/qt_pdf.h>).
namespace rasterkit {

/// Thrown for an encrypted file if the password is missing or wrong; the text says which.
class RASTERKIT_EXPORT PdfPasswordError : public Error {
 public:
  using Error::Error;
};

/// Thrown if a part of Rasterkit that draws PDF pages is not installed: the worker program or
/// librasterkit-pdf. The text names its path.
class RASTERKIT_EXPORT PdfComponentError : public UnsupportedError {
 public:
  using UnsupportedError::UnsupportedError;
};

/// Size of a page as a reader sees it, its own rotation included, in points (1/72 inch).
struct PdfPageSize {
  double width = 0, height = 0;
};

/// Rotation in addition to the page's own.
enum class PdfRotation { none, clockwise90, clockwise180, clockwise270 };

/// An opened PDF file.
///
/// Use it from one thread at a time. A call from inside `PdfKeepGoing` throws an `Error`. Pages are
/// counted from 0. Every error names the file.
class RASTERKIT_EXPORT PdfDocument {
 public:
  /// Called on the calling thread about every 10 ms while a call waits, so that a host can run its
  /// event loop. Returning false cancels the work. An exception leaves through the waiting call.
  using PdfKeepGoing = std::function<bool()>;

  virtual ~PdfDocument();

  /// Opens a file and closes the one before. `password` is the user or the owner password; it is
  /// ignored if the file has none.
  ///
  /// Throws FileError if the file cannot be read; FormatError if it is empty, not a PDF, damaged
  /// beyond use or without pages; PdfPasswordError; UnsupportedError for an unknown protection;
  /// PdfComponentError. No file is open then.
  virtual void LoadFromFile(const std::string& fileName, const std::string& password = {}) = 0;

  /// Number of pages; 0 while no file is open.
  virtual int PageCount() const = 0;

  /// Size that the file states for a page; it may be absurdly large or small. Throws RangeError if
  /// there is no such page, FormatError if it is damaged.
  virtual PdfPageSize PageSize(int index) const = 0;

  /// Draws a page with its annotations on white into `bitmap`, which becomes 24-bit with
  /// `PdfPagePixels(PageSize(index), scale, rotation)` pixels, the resolution
  /// `PdfResolution(scale)` and `Transparent` off. Scale 1 means 100 pixels per inch.
  ///
  /// Returns false if `keepGoing` canceled the work. Then and after an error `bitmap` is unchanged.
  /// Canceled work is gone within 100 ms, except with documents that draw in this process: there it
  /// continues in the background, and the next call waits for its end.
  ///
  /// Throws RangeError if there is no such page or `scale` is not a finite number above 0;
  /// FormatError if the page is damaged; LimitError, before anything is drawn, if the page would be
  /// too large (see RequirePdfPage); LimitError and TimeLimitError if drawing takes more memory or
  /// time than allowed (see Limits); std::bad_alloc if the system is out of memory.
  virtual bool ExportPage(int index, double scale, PdfRotation rotation, TBitmap& bitmap,
                          const PdfKeepGoing& keepGoing = {}) = 0;
};

/// Makes documents; if empty, a worker process draws them. Set it before the first call that uses
/// it.
using PdfDocumentMaker = std::function<std::unique_ptr<PdfDocument>()>;
RASTERKIT_EXPORT PdfDocumentMaker& PdfDocumentFactory();

/// Makes a document without an open file. Throws PdfComponentError if there is no factory and the
/// worker program is not installed.
RASTERKIT_EXPORT std::unique_ptr<PdfDocument> CreatePdfDocument();

/// Pixels and memory of a drawn page.
struct PdfPixels {
  /// At least 1 each; as doubles, because a file may state a page of any size. Non-finite if the
  /// page size is non-finite.
  double width = 1, height = 1;
  /// Memory while drawing, four bytes per pixel; the finished bitmap takes three quarters of it.
  double Bytes() const { return width * height * 4; }
};

/// Size of a drawn page: points times scale times 100 / 72, rounded to the nearest pixel, halves
/// up. A quarter turn exchanges width and height. At scale 1.5 an inch is 150 pixels.
RASTERKIT_EXPORT PdfPixels PdfPagePixels(const PdfPageSize& page, double scale,
                                         PdfRotation rotation = PdfRotation::none);

/// Dots per inch at a scale: 100 times the scale. An integer if the scale was made from one (0.29
/// becomes 29, not 28.999...96).
RASTERKIT_EXPORT double PdfResolution(double scale);

/// Most pixels in one direction: beyond it the drawing engine silently leaves out lines and shapes.
constexpr int kMostPdfPixels = 32000;

/// Throws LimitError, which states pixels and memory, if a page cannot be drawn: more than
/// `kMostPdfPixels` in one direction, more memory than PictureMemoryLimit, or a size that is not a
/// finite number above 0.
RASTERKIT_EXPORT void RequirePdfPage(const PdfPageSize& page, double scale,
                                     PdfRotation rotation = PdfRotation::none);

}  // namespace rasterkit
