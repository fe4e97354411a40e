#pragma once

#include <optional>
#include <string>
#include <vector>

#include <rasterkit/graphics/pdf_document.h>

namespace rasterkit::tool {

/// What `info` prints about a PDF file, which has pages and no pixels of its own.
struct PdfFacts {
  /// Empty if PDF files cannot be read here, and for a pipe, which cannot be read twice.
  std::optional<int> pages;
  std::optional<PdfPageSize> firstPage;
};

/// Reads the facts. Throws Failure(exitInputUnreadable) if the file is encrypted or damaged. A
/// missing PDF component is a warning.
PdfFacts GatherPdfFacts(const std::string& file, std::vector<std::string>& warnings);

}  // namespace rasterkit::tool
