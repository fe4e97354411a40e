#pragma once

#include <memory>
#include <string>

#include <rasterkit/graphics/pdf_document.h>

#include "tool/command/exit_code.h"

namespace rasterkit::tool {

/// No PDF file can be drawn here.
class NoPdfComponent : public Failure {
 public:
  NoPdfComponent(const std::string& file, const std::string& reason)
      : Failure(exitInputUnreadable, file + ": " + reason), reason_(reason) {}
  const std::string& Reason() const { return reason_; }

 private:
  std::string reason_;
};

/// Opens a PDF file. Throws Failure(exitInputUnreadable), also NoPdfComponent.
std::unique_ptr<PdfDocument> OpenPdf(const std::string& file, const std::string& password);

/// Returns the size of a page, counted from 1. Throws Failure(exitInputUnreadable).
PdfPageSize SizeOfPage(const PdfDocument& document, const std::string& file, int page);

}  // namespace rasterkit::tool
