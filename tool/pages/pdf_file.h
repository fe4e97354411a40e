#pragma once

#include <memory>
#include <string>

#include <rasterkit/graphics/pdf_document.h>

namespace rasterkit::tool {

/// Opens librasterkit-pdf, the first time. Throws UnsupportedError when it is not installed.
void UsePdfLibrary();

/// Throws Failure(exitInputUnreadable), also when PDF files cannot be drawn here.
std::unique_ptr<PdfDocument> OpenPdf(const std::string& file, const std::string& password);

/// The size of a page, counted from 1. Throws Failure(exitInputUnreadable).
PdfPageSize SizeOfPage(const PdfDocument& document, const std::string& file, int page);

}  // namespace rasterkit::tool
