#pragma once

#include <optional>
#include <string>
#include <vector>

#include <rasterkit/graphics/pdf_document.h>

namespace rasterkit::tool {

/// What `info` says about a PDF file. It has pages and no pixels of its own.
struct PdfFacts {
  /// Nothing where PDF files cannot be read, and for a pipe, which cannot be read twice.
  std::optional<int> pages;
  std::optional<PdfPageSize> firstPage;
};

/// Throws Failure(exitInputUnreadable) for a file that is encrypted or damaged. That the component
/// for PDF files is missing is a warning.
PdfFacts GatherPdfFacts(const std::string& file, std::vector<std::string>& warnings);

}  // namespace rasterkit::tool
