#include "tool/pages/pdf_file.h"

#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/dynamic_library.h>

#include "tool/command/exit_code.h"
#include "tool/command/interruption.h"
#include "tool/command/limit_options.h"

namespace rasterkit::tool {

void UsePdfLibrary() {
  static const DynamicLibrary library("rasterkit-pdf", 0,
                                      "the component for PDF files is not installed");
  static const bool isUsed = (library.Entry<void()>("RasterkitUseQtPdf")(), true);
  static_cast<void>(isUsed);
}

std::unique_ptr<PdfDocument> OpenPdf(const std::string& file, const std::string& password) {
  try {
    UsePdfLibrary();
    auto document = CreatePdfDocument();
    const InterruptibleWait reading;
    document->LoadFromFile(file, password);
    return document;
  } catch (const Error& error) {
    throw Failure(exitInputUnreadable, file + ": " + ReasonWithOption(error));
  }
}

PdfPageSize SizeOfPage(const PdfDocument& document, const std::string& file, int page) {
  try {
    const InterruptibleWait reading;
    return document.PageSize(page - 1);
  } catch (const Error& error) {
    throw Failure(exitInputUnreadable, file + ": " + ReasonWithOption(error));
  }
}

}  // namespace rasterkit::tool
