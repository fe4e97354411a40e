#include "tool/pages/pdf_file.h"

#include <rasterkit/runtime/errors.h>

#include "tool/command/exit_code.h"
#include "tool/command/interruption.h"
#include "tool/command/limit_options.h"

namespace rasterkit::tool {

std::unique_ptr<PdfDocument> OpenPdf(const std::string& file, const std::string& password) {
  try {
    auto document = CreatePdfDocument();
    const InterruptibleWait reading;
    document->LoadFromFile(file, password);
    return document;
  } catch (const PdfComponentError& error) {
    throw NoPdfComponent(file, error.Reason());
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
