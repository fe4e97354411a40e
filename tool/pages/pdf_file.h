#pragma once

#include <memory>
#include <string>

#include <rasterkit/graphics/pdf_document.h>

namespace rasterkit::tool {

/// Loads librasterkit-pdf on the first call. Throws UnsupportedError if it is not installed.
void UsePdfLibrary();

/// Opens a PDF file. Throws Failure(exitInputUnreadable), also if PDF files cannot be drawn here.
std::unique_ptr<PdfDocument> OpenPdf(const std::string& file, const std::string& password);

/// Returns the size of a page, counted from 1. Throws Failure(exitInputUnreadable).
PdfPageSize SizeOfPage(const PdfDocument& document, const std::string& file, int page);

}  // namespace rasterkit::tool
