#pragma once

#include <memory>
#include <optional>
#include <stop_token>
#include <string>

#include <rasterkit/graphics/pdf_document.h>
#include <rasterkit/pictures/picture.h>
#include <rasterkit/runtime/files/file_facts.h>
#include <rasterkit/runtime/isolation.h>

namespace rasterkit {

/// Which picture of a file is opened, and how.
struct SourceRequest {
  /// Full name.
  std::string file;
  /// Counted from 1.
  int page = 1;
  /// Resolution at which a PDF page or a metafile is drawn; 0: the one that is remembered, or a
  /// smaller one if that needs too much memory.
  double dpi = 0;
  Isolation isolation = Isolation::none;
};

/// What is edited: a picture of a file that the library reads, a page of a TIFF or PDF file, a
/// metafile drawn at a resolution.
struct EditorSource {
  SourceRequest request;
  /// The file when its header was read.
  FileFacts facts;
  PictureType type = PictureType::unknown;
  int pages = 1;
  /// Resolution of the drawing; nothing for pictures that have pixels of their own.
  std::optional<double> dpi;
  /// Upright. Nothing for a PDF page that is not drawn yet.
  std::optional<Picture> picture;
  /// Of a PDF page; used by one thread at a time.
  std::shared_ptr<PdfDocument> pdf;
  PdfPageSize pageSize;

  /// Whether the pixels of the picture are in memory already.
  bool IsInMemory() const { return pdf != nullptr; }
};

/// Reads headers. Refuses a resolution that needs too much memory. Throws Error.
EditorSource OpenEditorSource(const SourceRequest& request);

/// The same picture at another resolution, not drawn yet. Throws LimitError, with need and limit,
/// if it needs too much memory.
EditorSource WithDpi(const EditorSource& source, double dpi);

/// Draws a PDF page that is not drawn yet; nothing for others. Throws Error, CanceledError.
void DrawPage(EditorSource& source, std::stop_token cancel);

}  // namespace rasterkit
