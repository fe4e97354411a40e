#include "tool/reports/pdf_facts.h"

#include <filesystem>

#include <rasterkit/runtime/files/file_name.h>

#include "tool/command/exit_code.h"
#include "tool/pages/pdf_file.h"

namespace rasterkit::tool {

PdfFacts GatherPdfFacts(const std::string& file, std::vector<std::string>& warnings) {
  std::error_code ignored;
  if (!std::filesystem::is_regular_file(ToPath(file), ignored)) return {};
  std::unique_ptr<PdfDocument> document;
  try {
    document = OpenPdf(file, {});
  } catch (const NoPdfComponent& failure) {
    warnings.push_back("the pages were not counted: " + failure.Reason());
    return {};
  }
  PdfFacts facts;
  facts.pages = document->PageCount();
  try {
    facts.firstPage = SizeOfPage(*document, file, 1);
  } catch (const Failure&) {
    warnings.emplace_back("page 1 is damaged");
  }
  return facts;
}

}  // namespace rasterkit::tool
