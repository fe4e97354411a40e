#pragma once

#include <string>

#include <rasterkit/graphics/pdf_document.h>
#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/worker/worker_message.h>

/// Messages between this process and a worker that draws the pages of a PDF file.
namespace rasterkit::detail {

enum PdfKind : uint16_t {
  /// With the file; PdfOpen.
  kPdfOpen = kFirstPdfKind,
  /// The number of pages.
  kPdfOpened,
  /// The index of a page.
  kPdfMeasure,
  /// PdfPageSize.
  kPdfMeasured,
  /// PdfDraw.
  kPdfDraw,
  /// PdfDrawn. The worker keeps the rows.
  kPdfDrawn,
  /// PdfRows. Each row once, from top to bottom: the worker frees it.
  kPdfTakeRows,
  /// With memory: rows of a 24-bit picture.
  kPdfRows,
};

struct PdfDraw {
  int index = 0;
  double scale = 1;
  PdfRotation rotation = PdfRotation::none;
};

struct PdfDrawn {
  int width = 0, height = 0;
};

struct PdfRows {
  int first = 0, count = 0;
};

/// Each pair of functions writes and reads the body of a message; reading throws FormatError for an
/// invalid one.
RASTERKIT_EXPORT WorkerMessage PdfOpenMessage(const std::string& password, SystemFile file);
RASTERKIT_EXPORT std::string ReadPdfOpen(const WorkerMessage& message);
RASTERKIT_EXPORT WorkerMessage PdfOpenedMessage(int pages);
RASTERKIT_EXPORT int ReadPdfOpened(const WorkerMessage& message);
RASTERKIT_EXPORT WorkerMessage PdfMeasureMessage(int index);
RASTERKIT_EXPORT int ReadPdfMeasure(const WorkerMessage& message);
RASTERKIT_EXPORT WorkerMessage PdfMeasuredMessage(const PdfPageSize& size);
RASTERKIT_EXPORT PdfPageSize ReadPdfMeasured(const WorkerMessage& message);
RASTERKIT_EXPORT WorkerMessage PdfDrawMessage(const PdfDraw& draw);
RASTERKIT_EXPORT PdfDraw ReadPdfDraw(const WorkerMessage& message);
RASTERKIT_EXPORT WorkerMessage PdfDrawnMessage(const PdfDrawn& drawn);
RASTERKIT_EXPORT PdfDrawn ReadPdfDrawn(const WorkerMessage& message);
RASTERKIT_EXPORT WorkerMessage PdfTakeRowsMessage(const PdfRows& rows);
RASTERKIT_EXPORT PdfRows ReadPdfTakeRows(const WorkerMessage& message);
RASTERKIT_EXPORT WorkerMessage PdfRowsMessage(SystemFile memory);

}  // namespace rasterkit::detail
